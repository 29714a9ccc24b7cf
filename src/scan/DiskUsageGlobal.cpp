#include "DiskUsageGlobal.h"

#include "platform/FileTime.h"
#include "platform/NativeText.h"

#include <QDateTime>

#include <QLoggingCategory>
#include <charconv>
#include <limits>

Q_LOGGING_CATEGORY(lcScanRecords, "tallyroot.scan", QtInfoMsg)

namespace DiskUsageGlobal {

QString sizeText(double bytes)
{
    const double gibibytes = bytes * 9.313225746154785e-10;
    if (gibibytes >= 1.0)
        return QString::number(gibibytes, 'f', 2) + QLatin1String(" GB");
    const double mebibytes = bytes * 9.5367431640625e-7;
    if (mebibytes >= 1.0)
        return QString::number(mebibytes, 'f', 2) + QLatin1String(" MB");
    return QString::number(bytes * 0.0009765625, 'f', 2) + QLatin1String(" KB");
}

QString lastAccessText(quint64 fileTime)
{
    platform::CalendarTime utc;
    if (!platform::fileTimeToCalendar(fileTime, utc)) {
        qCDebug(lcScanRecords) << "Error";
        return {};
    }
    const QDateTime shown(QDate(utc.year, utc.month, utc.day),
                          QTime(utc.hour, utc.minute, utc.second, utc.millisecond));
    return shown.toString(Qt::TextDate);
}

QString extensionKey(const QString& fileName)
{
    const qsizetype dot = fileName.indexOf('.');
    return dot < 0 ? QStringLiteral(".") : fileName.mid(dot);
}

namespace {

void appendNumber(platform::NativeString& text, qint64 number)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    text.append(digits, end);
}

} // namespace

QString childSummary(const QList<TMaxDataItem>& ranked, int childRows)
{
    // Room for every name and number at once: one allocation per folder.
    std::size_t length = 12;
    for (const TMaxDataItem& item : ranked)
        length += item.name.size() + 24;
    platform::NativeString summary;
    summary.reserve(length);
    for (const TMaxDataItem& item : ranked) {
        summary += item.name;
        summary += ':';
        appendNumber(summary, item.size);
        summary += ':';
        appendNumber(summary, item.kind);
        summary += ';';
    }
    appendNumber(summary, childRows);
    return platform::toQString(summary);
}

namespace {

// Reads the entries from `from` on, each no larger than `limit`; true when the
// rest of the text is read as a whole summary.
bool parseEntries(const QString& text, qsizetype from, quint64 limit, QList<SummaryEntry>& entries)
{
    bool isNumber = false;
    text.mid(from).toInt(&isNumber);
    if (isNumber)
        return true; // the row count ends the summary
    if (entries.size() == childSummaryLimit)
        return false;
    // An entry ends in ":size:kind;"; the name is everything before its first
    // colon that starts such an ending.
    for (qsizetype colon = text.indexOf(':', from); colon >= 0;
         colon = text.indexOf(':', colon + 1)) {
        const qsizetype sizeEnd = text.indexOf(':', colon + 1);
        if (sizeEnd < 0 || sizeEnd + 2 >= text.size() || text.at(sizeEnd + 2) != ';')
            continue;
        const QChar kind = text.at(sizeEnd + 1);
        bool isSize = false;
        const quint64 size = text.mid(colon + 1, sizeEnd - colon - 1).toULongLong(&isSize);
        if (!isSize || size > limit || (kind != '0' && kind != '1') ||
            !text.at(colon + 1).isDigit())
            continue;
        entries.append({text.mid(from, colon - from), size, kind == '1'});
        if (parseEntries(text, sizeEnd + 3, size, entries))
            return true;
        entries.removeLast();
    }
    return false;
}

} // namespace

QList<SummaryEntry> parseChildSummary(const QString& summary)
{
    QList<SummaryEntry> entries;
    if (!parseEntries(summary, 0, std::numeric_limits<quint64>::max(), entries))
        entries.clear();
    return entries;
}

void registerMetaTypes()
{
    qRegisterMetaType<QList<TFileInfo>>("QList<DiskUsageGlobal::TFileInfo>");
    qRegisterMetaType<QList<TMainDataFile>>("QList<DiskUsageGlobal::TMainDataFile>");
}

} // namespace DiskUsageGlobal
