#pragma once

#include "scan/DiskUsageGlobal.h"

#include <QDialog>
#include <QStandardItemModel>

#include <memory>

namespace Ui {
class ResultDetailsDialog;
}

// Lists the kept files of one file-type category, and shows one in the file
// manager or opens it.
class ResultDetailsDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ResultDetailsDialog)

public:
    ResultDetailsDialog(const QList<DiskUsageGlobal::TMainDataFile>& files, QWidget* parent);
    ~ResultDetailsDialog() override;

private:
    void fill(const QList<DiskUsageGlobal::TMainDataFile>& files);
    void onSectionClicked(int index);
    void onShowInFileManager();
    void onOpenFile();
    // The selected file's path; empty without a selection.
    [[nodiscard]] QString selectedPath() const;

    std::unique_ptr<Ui::ResultDetailsDialog> ui;
    QStandardItemModel model;
    // The order of the last header click; the first click sorts ascending.
    bool descending = false;
};
