#pragma once

#include "DiskUsageGlobal.h"

#include <QList>

class QStandardItem;
class QStandardItemModel;

// The containers a scan fills. They belong to whoever shows the results; the
// worker writes into them from its thread until it emits resultReady().
struct ScanTargets {
    QStandardItemModel* folderModel = nullptr;
    QStandardItemModel* dataFilesModel = nullptr;
    QList<QStandardItem*>* rootRow = nullptr;
    QList<DiskUsageGlobal::TFileInfo>* biggestFiles = nullptr;
    QList<QList<DiskUsageGlobal::TMainDataFile>>* dataFiles = nullptr;
};
