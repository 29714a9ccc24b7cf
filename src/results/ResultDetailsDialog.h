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
    explicit ResultDetailsDialog(QWidget* parent = nullptr);
    ~ResultDetailsDialog() override;

    // The list stays the caller's and must outlive the dialog.
    void setEntries(const QList<DiskUsageGlobal::TMainDataFile>* files);
    void fill();

private slots:
    void OnDataFileSectionClicked(int index);
    void on_explorerButton_clicked();
    void on_openFileButton_clicked();

private:
    [[nodiscard]] QModelIndex firstSelected() const;

    std::unique_ptr<Ui::ResultDetailsDialog> ui;
    QStandardItemModel model;
    const QList<DiskUsageGlobal::TMainDataFile>* files = nullptr;
    // The order of the last header click; the first click sorts ascending.
    bool descending = false;
};
