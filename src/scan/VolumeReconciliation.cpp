#include "VolumeReconciliation.h"

#include "DiskUsageGlobal.h"

namespace {

QString sizeText(quint64 bytes)
{
    return DiskUsageGlobal::sizeText(double(bytes));
}

QString counted(qsizetype count, const char* one, const char* many)
{
    return count == 1 ? QString::fromLatin1(one) : QString::fromLatin1(many).arg(count);
}

QStringList listed(const QString& heading, const QStringList& paths)
{
    constexpr int shown = 25;
    if (paths.isEmpty())
        return {};
    QStringList lines{heading};
    for (const QString& path : paths.mid(0, shown))
        lines << QStringLiteral("  ") + path;
    if (paths.size() > shown)
        lines << QStringLiteral("  and %1 more").arg(paths.size() - shown);
    return lines;
}

} // namespace

std::optional<VolumeReconciliation> VolumeReconciliation::of(const QString& scannedFolder,
                                                             const ScanFigures& result)
{
    const std::optional<platform::VolumeRecord> volume =
        platform::volumeRootedAt(scannedFolder.toStdWString());
    if (!volume)
        return std::nullopt;
    return VolumeReconciliation(*volume, result);
}

VolumeReconciliation::VolumeReconciliation(const platform::VolumeRecord& volume,
                                           const ScanFigures& result)
    : reserved(volume.reservedBytes)
    , found(result.totalOnDisk)
    , unreadable(result.unreadable)
    , elsewhere(result.elsewhere)
    , excluded(result.excludedFolders)
{
    // As df counts it: neither what is free to the user nor what is reserved.
    const quint64 unused = volume.freeToCaller + volume.reservedBytes;
    used = volume.totalBytes > unused ? volume.totalBytes - unused : 0;
}

QString VolumeReconciliation::text() const
{
    const int share = used > 0 ? int(100.0 * double(found) / double(used) + 0.5) : 100;
    QString line = QStringLiteral("Volume: %1 used, %2 found on disk by this scan (%3%).")
                       .arg(sizeText(used), sizeText(found))
                       .arg(share);
    if (found < used) {
        QStringList parts;
        if (!unreadable.isEmpty())
            parts << counted(unreadable.size(), "1 folder not readable", "%1 folders not readable");
        if (!elsewhere.isEmpty())
            parts << counted(elsewhere.size(), "1 other file system not entered",
                             "%1 other file systems not entered");
        if (excluded > 0)
            parts << counted(excluded, "1 excluded folder", "%1 excluded folders");
        parts << QStringLiteral("the file system's own data");
        line += QStringLiteral(" The other %1: %2.").arg(sizeText(used - found), parts.join(", "));
    }
    if (reserved > 0)
        line += QStringLiteral(" %1 more is reserved for the system.").arg(sizeText(reserved));
    return line;
}

QString VolumeReconciliation::details() const
{
    return (listed(QStringLiteral("Not readable:"), unreadable) +
            listed(QStringLiteral("Other file systems, not entered:"), elsewhere))
        .join('\n');
}
