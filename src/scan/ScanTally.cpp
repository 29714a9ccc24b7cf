#include "ScanTally.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using DiskUsageGlobal::TFileInfo;
using DiskUsageGlobal::TMainDataFile;

void FolderTotals::addFile(quint64 fileSize, quint64 fileOnDisk)
{
    ++files;
    DiskUsageGlobal::addSaturating(size, fileSize);
    DiskUsageGlobal::addSaturating(onDisk, fileOnDisk);
}

void FolderTotals::addSubfolder(const FolderTotals& subfolder)
{
    DiskUsageGlobal::addSaturating(size, subfolder.size);
    DiskUsageGlobal::addSaturating(onDisk, subfolder.onDisk);
    files += subfolder.files;
    folders += subfolder.folders;
}

void FolderTotals::storeIn(ScanTree::Node& node) const
{
    node.size = size;
    node.onDisk = onDisk;
    node.files = files;
    node.folders = folders;
}

void FolderTotals::storeIn(ScanFigures& figures) const
{
    figures.totalSize = size;
    figures.totalOnDisk = onDisk;
    figures.totalFiles = files;
    figures.totalFolders = folders;
}

ScanTally::ScanTally(ScanFigures& counted)
    : figures(counted)
    , matcher(counted.categories)
{
    figures.dataFiles.resize(figures.categories.size());
    for (FileTypeCategory& category : figures.categories)
        category.totalSize = 0;
}

quint64 ScanTally::addFile(ScanTree& tree, ScanTree::Index file, std::uint64_t linkedFile)
{
    addBiggest(tree, file);
    addDataFile(tree, file);
    const bool counts = linkedFile == 0 || linkedFilesSeen.insert(linkedFile);
    return counts ? tree.node(file).onDisk : 0;
}

void ScanTally::addBiggest(const ScanTree& tree, ScanTree::Index file)
{
    const ScanTree::Node& node = tree.node(file);
    if (node.size <= sizeFloor)
        return;
    QList<TFileInfo>& biggest = figures.biggestFiles;
    const bool kept =
        DiskUsageGlobal::offerRanked(biggest, node.size, DiskUsageGlobal::biggestFilesLimit, [&] {
            return TFileInfo{{}, {}, tree.path(file), node.size, node.lastAccessTime, node.onDisk};
        });
    // The floor rises only when a full list turned a file away, so it can
    // lag behind the 20th entry; the list itself stays right.
    if (!kept && biggest.size() == DiskUsageGlobal::biggestFilesLimit)
        sizeFloor = biggest.constLast().size;
}

void ScanTally::addDataFile(ScanTree& tree, ScanTree::Index file)
{
    ScanTree::Node& node = tree.node(file);
    const CategoryMatcher::Indexes* categories = matcher.match(tree.name(file));
    node.category = ScanTree::noCategory;
    if (!categories)
        return;
    node.category = std::uint8_t(std::min(categories->constFirst(), int(ScanTree::noCategory)));
    const auto size = static_cast<qint64>(node.size);
    for (int category : *categories) {
        const int index = dataFileIndex++;
        DiskUsageGlobal::offerRanked(
            figures.dataFiles[category], size, DiskUsageGlobal::dataFilesLimit, [&] {
                return TMainDataFile{tree.nameText(file),
                                     DiskUsageGlobal::sizeText(double(size)),
                                     DiskUsageGlobal::lastAccessText(node.lastAccessTime),
                                     QDir::toNativeSeparators(QFileInfo(tree.path(file)).path()),
                                     size,
                                     index};
            });
        DiskUsageGlobal::addSaturating(figures.categories[category].totalSize, size);
    }
}
