#include "ScanResult.h"

#include <QStandardItem>

#include <utility>

ScanResult::~ScanResult()
{
    qDeleteAll(rootRow);
    for (const QList<QStandardItem*>& row : std::as_const(categoryRows))
        qDeleteAll(row);
}

ScanResult::ScanResult(ScanResult&& other) noexcept
{
    *this = std::move(other);
}

ScanResult& ScanResult::operator=(ScanResult&& other) noexcept
{
    std::swap(rootRow, other.rootRow);
    std::swap(categoryRows, other.categoryRows);
    std::swap(categories, other.categories);
    std::swap(biggestFiles, other.biggestFiles);
    std::swap(dataFiles, other.dataFiles);
    std::swap(totalSize, other.totalSize);
    std::swap(totalFiles, other.totalFiles);
    std::swap(totalFolders, other.totalFolders);
    std::swap(itemsScanned, other.itemsScanned);
    std::swap(totalSubFolders, other.totalSubFolders);
    std::swap(unreadable, other.unreadable);
    return *this;
}
