#pragma once

#include "scan/DiskUsageGlobal.h"

#include <QDialog>
#include <QStandardItemModel>
#include <QStringList>

#include <memory>
#include <utility>

namespace Ui {
class ResultDetailsDialog;
}

class QTreeView;

// Lists the kept files of one file-type category, and shows one in the file
// manager or opens it.
class ResultDetailsDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ResultDetailsDialog)

public:
    ResultDetailsDialog(const QList<DiskUsageGlobal::TMainDataFile>& files, QWidget* parent);
    ~ResultDetailsDialog() override;

    // Shows these files instead, in the order chosen.
    void setFiles(const QList<DiskUsageGlobal::TMainDataFile>& files);
    [[nodiscard]] QTreeView* filesView() const;
    // Every selected file's path, in the order of the rows.
    [[nodiscard]] QStringList selectedPaths() const;

private:
    void fill(const QList<DiskUsageGlobal::TMainDataFile>& files);
    [[nodiscard]] static QString pathOf(const QModelIndex& row);
    void onSectionClicked(int index);
    void onShowInFileManager();
    void onOpenFile();
    // The selected file's path; empty without a selection.
    [[nodiscard]] QString selectedPath() const;

    std::unique_ptr<Ui::ResultDetailsDialog> ui;
    QStandardItemModel model;
    // The order of the last header click; the first click sorts ascending.
    bool descending = false;
    // The column and order of the last header click; none yet: by size.
    std::pair<int, Qt::SortOrder> lastSort{-1, Qt::DescendingOrder};
};
