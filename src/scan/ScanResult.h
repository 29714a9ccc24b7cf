#pragma once

#include "DiskUsageGlobal.h"
#include "settings/FileTypeCategory.h"

#include <QList>
#include <QStringList>

class QStandardItem;

// What one scan hands back besides its rows: plain values, moved as they are.
struct ScanFigures {
    // The catalogue the scan sorted by, each category with its total.
    QList<FileTypeCategory> categories;
    QList<DiskUsageGlobal::TFileInfo> biggestFiles;
    QList<QList<DiskUsageGlobal::TMainDataFile>> dataFiles;
    quint64 totalSize = 0;
    quint64 totalOnDisk = 0; // hard-linked files counted once
    quint32 totalFiles = 0;
    quint32 totalFolders = 0; // the scanned folder not counted
    int itemsScanned = 0;     // every entry met, files and folders
    int totalSubFolders = 0;  // the scanned folder's own subfolders, plus one
    QStringList unreadable;   // folders that could not be listed, in walk order
    QStringList elsewhere;    // folders on other file systems, not entered
    int excludedFolders = 0;  // left out by the exclusions, OneDrive's included
};

// What one scan hands back. It owns its rows until they are put into models;
// rows still held when it is destroyed are deleted with it.
struct ScanResult : ScanFigures {
    ScanResult() = default;
    ~ScanResult();
    ScanResult(ScanResult&& other) noexcept;
    ScanResult& operator=(ScanResult&& other) noexcept;
    ScanResult(const ScanResult&) = delete;
    ScanResult& operator=(const ScanResult&) = delete;

    // The scanned folder's cells; every other folder row hangs below the
    // first. Empty only when the scan never started.
    QList<QStandardItem*> rootRow;
    // One row per category in catalogue order; a disabled category's row has
    // no name cell, so that later categories keep their row numbers.
    QList<QList<QStandardItem*>> categoryRows;
};
