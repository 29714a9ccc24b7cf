#include "BiggestFilesView.h"

#include "BiggestFilesModel.h"

using namespace BiggestFileColumn;

BiggestFilesView::BiggestFilesView(QWidget* parent)
    : ResultView(parent)
{
    setSelectionMode(QAbstractItemView::ExtendedSelection);
}

BiggestFilesView::~BiggestFilesView() = default;

void BiggestFilesView::showFiles(BiggestFilesModel* model)
{
    files = model;
    setModel(model);
    setColumnWidth(FileName, 300);
    setColumnWidth(LastAccess, 200);
    hideColumn(RawSize);
    showBesideSize(FileOnDisk, FileSize);
}

QString BiggestFilesView::selectedFilePath() const
{
    const QModelIndex row = selectedRow();
    return row.isValid() && files ? files->file(row.row()).filePath : QString();
}

QStringList BiggestFilesView::selectedFilePaths() const
{
    QStringList paths;
    if (!files || !selectionModel())
        return paths;
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    for (const QModelIndex& row : rows)
        paths << files->file(row.row()).filePath;
    return paths;
}

void BiggestFilesView::selectPath(const QString& path)
{
    if (!files || !selectionModel())
        return;
    for (int row = 0; row < files->rowCount(); ++row) {
        if (files->file(row).filePath == path) {
            setCurrentIndex(files->index(row, FileName));
            scrollTo(currentIndex());
            return;
        }
    }
    clearSelection();
}

void BiggestFilesView::selectionChanged(const QItemSelection& selected,
                                        const QItemSelection& deselected)
{
    ResultView::selectionChanged(selected, deselected);
    emit fileChosen(selectedFilePath());
}
