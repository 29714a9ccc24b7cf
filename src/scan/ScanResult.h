#pragma once

#include "DiskUsageGlobal.h"
#include "settings/FileTypeCategory.h"

#include <QList>
#include <QStringList>

class QStandardItem;

// What one scan hands back. It owns its rows until they are put into models;
// rows still held when it is destroyed are deleted with it.
struct ScanResult {
    ScanResult() = default;
    ~ScanResult();
    ScanResult(ScanResult&& other) noexcept;
    ScanResult& operator=(ScanResult&& other) noexcept;
    ScanResult(const ScanResult&) = delete;
    ScanResult& operator=(const ScanResult&) = delete;

    // The scanned folder's nine cells; every other folder row hangs below the
    // first. Empty only when the scan never started.
    QList<QStandardItem*> rootRow;
    // One row per category in catalogue order; a disabled category's row has
    // no name cell, so that later categories keep their row numbers.
    QList<QList<QStandardItem*>> categoryRows;
    // The catalogue the scan sorted by, each category with its total.
    QList<FileTypeCategory> categories;
    QList<DiskUsageGlobal::TFileInfo> biggestFiles;
    QList<QList<DiskUsageGlobal::TMainDataFile>> dataFiles;
    quint64 totalSize = 0;
    quint32 totalFiles = 0;
    quint32 totalFolders = 0; // the scanned folder not counted
    int itemsScanned = 0;     // every entry met, files and folders
    int totalSubFolders = 0;  // the scanned folder's own subfolders, plus one
    QStringList unreadable;   // folders that could not be listed, in walk order
};
