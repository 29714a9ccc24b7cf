#include "ScanFile.h"

#include "GzipDevice.h"
#include "ScanFileReader.h"
#include "ScanJsonWriter.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSysInfo>

namespace {

QString failureText(const ScanFileReader& reader, const QString& name)
{
    using Failure = ScanFileReader::Failure;
    switch (reader.failure()) {
    case Failure::NotAScan:
        return QStringLiteral("%1 is not a Tallyroot scan.").arg(name);
    case Failure::OlderFormat:
        return QStringLiteral("%1 is from an older Tallyroot that kept only the folders of a "
                              "scan, not its files; it cannot be opened.")
            .arg(name);
    case Failure::NewerFormat:
        return QStringLiteral("%1 is from a newer Tallyroot (format %2); this version opens "
                              "format %3.")
            .arg(name)
            .arg(reader.format())
            .arg(ScanFile::formatVersion);
    case Failure::CutShort:
        return QStringLiteral("%1 is cut short: it ends in the middle of the scan.").arg(name);
    case Failure::Damaged:
        return QStringLiteral("%1 is damaged: it stops making sense at byte %2 of the scan.")
            .arg(name)
            .arg(reader.offset());
    case Failure::Cancelled:
        return QStringLiteral("Opening %1 was cancelled.").arg(name);
    case Failure::None:
        break;
    }
    return {};
}

} // namespace

ScanFile::Opened ScanFile::read(const QString& path, const std::atomic<bool>* cancel)
{
    const QString name = QDir::toNativeSeparators(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, QStringLiteral("%1 could not be opened: %2").arg(name, file.errorString())};
    GzipDevice data(file);
    data.open(QIODevice::ReadOnly);
    ScanFileReader reader(data, cancel);
    std::optional<ScanResult> scan = reader.read();
    if (!scan)
        return {{}, failureText(reader, name)};
    scan->openedFrom = path;
    return {std::move(*scan), {}};
}

bool ScanFile::write(const QString& path, const ScanResult& result, bool compressed)
{
    if (!result.tree)
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const ScanJsonWriter writer(result.tree->rootPath(), result);
    bool written = false;
    if (compressed) {
        GzipDevice data(file);
        written = data.open(QIODevice::WriteOnly) && writer.write(data) && data.finish();
    } else {
        written = writer.write(file);
    }
    if (!written)
        file.cancelWriting();
    return file.commit() && written;
}

QString ScanFile::localHost()
{
    return QSysInfo::machineHostName();
}
