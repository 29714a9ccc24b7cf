#pragma once

#include "DiskUsageGlobal.h"
#include "ScanTree.h"
#include "settings/FileTypeCategory.h"

#include <QDateTime>
#include <QList>
#include <QStringList>

#include <memory>

// What one scan hands back besides its tree: plain values, moved as they are.
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
    // Whose scan it is: the machine it was made on and when its walk ended
    // (UTC), and the file it was read from when it was not made here.
    QString host;
    QDateTime scannedAt;
    QString openedFrom;

    // Made by this program now, so the tree stands for what is on disk.
    [[nodiscard]] bool isLive() const { return openedFrom.isEmpty(); }
};

// What one scan hands back. The tree is shared, read-only, by the views that
// show it; it goes when the last of them lets go.
struct ScanResult : ScanFigures {
    // Every folder and file met; null only when the scan never started.
    std::shared_ptr<const ScanTree> tree;
};
