#pragma once

#include "CategoryMatcher.h"
#include "FileIdSet.h"
#include "ScanResult.h"

#include <cstdint>

// What a folder's subtree adds up to, counted as a walk meets its entries.
struct FolderTotals {
    quint64 size = 0;
    quint64 onDisk = 0; // starts with what the folder's own entry takes
    quint32 files = 0;
    quint32 folders = 0;

    void addFile(quint64 fileSize, quint64 fileOnDisk);
    void addSubfolder(const FolderTotals& subfolder);
    // Into the folder's node, and, for the scanned folder, the scan's totals.
    void storeIn(ScanTree::Node& node) const;
    void storeIn(ScanFigures& figures) const;
};

// What a scan counts of the files as it meets them, in walk order: the 20
// biggest files, each category's biggest files and its total, and the bytes a
// file of several names takes, counted at its first name only. A scan and a
// count made again after a change share it, so both come to the same figures.
class ScanTally {
public:
    // Counts into `figures`, whose categories (the catalogue) start at zero.
    explicit ScanTally(ScanFigures& figures);

    // Counts a file of the tree and notes its first category in its node;
    // gives the bytes on disk it adds to its folder.
    quint64 addFile(ScanTree& tree, ScanTree::Index file, std::uint64_t linkedFile);

private:
    void addBiggest(const ScanTree& tree, ScanTree::Index file);
    void addDataFile(ScanTree& tree, ScanTree::Index file);

    ScanFigures& figures;
    CategoryMatcher matcher;
    FileIdSet linkedFilesSeen;
    quint64 sizeFloor = 0;
    int dataFileIndex = 100;
};
