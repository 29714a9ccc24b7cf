#include "DiskUsageGlobal.h"

#include "platform/FileTime.h"

#include <QDateTime>

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
    if (!platform::fileTimeToCalendar(fileTime, utc))
        return {};
    const QDateTime shown(QDate(utc.year, utc.month, utc.day),
                          QTime(utc.hour, utc.minute, utc.second, utc.millisecond));
    return shown.toString(Qt::TextDate);
}

QString extensionKey(const QString& fileName)
{
    const qsizetype dot = fileName.indexOf('.');
    return dot < 0 ? QStringLiteral(".") : fileName.mid(dot);
}

} // namespace DiskUsageGlobal
