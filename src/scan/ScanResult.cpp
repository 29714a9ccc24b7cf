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

// The rows change hands by swapping, so that those this result held are
// deleted with the other.
ScanResult& ScanResult::operator=(ScanResult&& other) noexcept
{
    ScanFigures::operator=(std::move(other));
    std::swap(rootRow, other.rootRow);
    std::swap(categoryRows, other.categoryRows);
    return *this;
}
