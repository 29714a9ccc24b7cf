#pragma once

#include <QList>
#include <QString>

#include <limits>

// The records one scan produces, and the helpers every consumer shares.
namespace DiskUsageGlobal {

// One of the biggest files of a scan. Consumers derive the name, size text and
// time text from filePath, size and lastAccessTime.
struct TFileInfo {
    QString fileName;
    QString sizeText;
    QString filePath;
    quint64 size = 0;
    quint64 lastAccessTime = 0; // FILETIME ticks
    quint64 onDisk = 0;
};

// One file of an enabled file-type category.
struct TMainDataFile {
    QString fileName;
    QString sizeText;
    QString lastAccessText;
    QString filePath; // the folder holding the file
    qint64 size = 0;
    qint32 index = 0;
};

constexpr qsizetype biggestFilesLimit = 20;
constexpr qsizetype dataFilesLimit = 20;

// Bytes as " GB", " MB" or " KB" with two decimals, in binary multiples; there
// is no byte unit, so 512 bytes read "0.50 KB".
[[nodiscard]] QString sizeText(double bytes);
// A file time in Qt's text date form. The UTC fields are shown as they are,
// without a shift to the local zone. Empty when the time cannot be expressed.
[[nodiscard]] QString lastAccessText(quint64 fileTime);
// "." followed by everything after the first dot of the name; "." without one.
[[nodiscard]] QString extensionKey(const QString& fileName);
// Sparse files can claim up to 2^63 bytes each: a total that would pass the
// largest value stays at it rather than wrap.
template <typename Number> void addSaturating(Number& total, Number amount)
{
    if (__builtin_add_overflow(total, amount, &total))
        total = std::numeric_limits<Number>::max();
}
// Keeps the `limit` largest entries, largest first: a new entry goes before the
// first strictly smaller one, so ties keep the earlier entry in front. The
// entry is made only when it will be kept. True when it was kept.
template <typename Entry, typename Size, typename Make>
bool offerRanked(QList<Entry>& list, Size size, qsizetype limit, Make&& make)
{
    if (list.size() >= limit && !(list.constLast().size < size))
        return false;
    qsizetype position = 0;
    while (position < list.size() && !(list.at(position).size < size))
        ++position;
    list.insert(position, make());
    if (list.size() > limit)
        list.removeLast();
    return true;
}

} // namespace DiskUsageGlobal
