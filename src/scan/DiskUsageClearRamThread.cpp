#include "DiskUsageClearRamThread.h"

#include "FolderColumn.h"

#include <QStandardItemModel>

namespace {
constexpr int categoryIndexColumn = 5;
} // namespace

DiskUsageClearRamThread::DiskUsageClearRamThread(QObject* parent, QStandardItemModel* folderModel,
                                                 QStandardItemModel* dataFilesModel,
                                                 QStandardItemModel* biggestFilesModel)
    : QThread(parent)
    , folderModel(folderModel)
    , biggestFilesModel(biggestFilesModel)
    , dataFilesModel(dataFilesModel)
{}

void DiskUsageClearRamThread::run()
{
    setPriority(QThread::HighPriority);
    folderModel->sort(FolderColumn::Index, Qt::AscendingOrder);
    emit updateScanProgress();
    folderModel->clear();
    emit updateScanProgress();
    dataFilesModel->sort(categoryIndexColumn, Qt::AscendingOrder);
    emit updateScanProgress();
    dataFilesModel->clear();
    emit updateScanProgress();
    biggestFilesModel->clear();
    emit updateScanProgress();
    emit processFinish();
}
