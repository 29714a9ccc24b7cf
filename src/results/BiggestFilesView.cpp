#include "BiggestFilesView.h"

#include "BiggestFilesModel.h"

using namespace BiggestFileColumn;

BiggestFilesView::BiggestFilesView(QWidget* parent)
    : ResultView(parent)
{}

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
