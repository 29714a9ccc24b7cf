#include "../Volumes.h"

#include "MountTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <map>
#include <sys/statvfs.h>

namespace platform {

namespace {

using namespace VolumeFlag;

constexpr std::uint32_t posixNames = CaseSensitiveSearch | CasePreservedNames | UnicodeOnDisk;
constexpr std::uint32_t posixFiles = PersistentAcls | SparseFiles | HardLinks | ExtendedAttributes;

// What each file system offers, in the terms of the Windows flags.
std::uint32_t featuresOf(const std::string& fileSystem)
{
    static const std::map<std::string, std::uint32_t> features{
        {"ext2", posixNames | posixFiles | VolumeQuotas},
        {"ext3", posixNames | posixFiles | VolumeQuotas},
        {"ext4", posixNames | posixFiles | VolumeQuotas | Encryption},
        {"xfs", posixNames | posixFiles | VolumeQuotas},
        {"btrfs", posixNames | posixFiles | VolumeQuotas | FileCompression},
        {"f2fs", posixNames | posixFiles | VolumeQuotas | FileCompression | Encryption},
        {"zfs", posixNames | posixFiles | VolumeQuotas | FileCompression | Encryption},
        {"vfat", CasePreservedNames | UnicodeOnDisk},
        {"exfat", CasePreservedNames | UnicodeOnDisk},
        {"ntfs", CasePreservedNames | UnicodeOnDisk | PersistentAcls | SparseFiles | HardLinks |
                     NamedStreams | FileCompression | ReparsePoints | ObjectIds | VolumeQuotas},
    };
    const std::string name =
        fileSystem == "ntfs3" || fileSystem == "fuseblk" ? std::string("ntfs") : fileSystem;
    const auto found = features.find(name);
    return found == features.end() ? CaseSensitiveSearch | CasePreservedNames : found->second;
}

std::wstring wide(const std::string& text)
{
    return QString::fromStdString(text).toStdWString();
}

// The name under /dev/disk/by-KIND that links to the device, udev's escapes undone.
QString diskLinkName(const QString& kind, const QString& device)
{
    const QString target = QFileInfo(device).canonicalFilePath();
    const QDir links(QStringLiteral("/dev/disk/by-") + kind);
    for (const QFileInfo& link : links.entryInfoList(QDir::System | QDir::Files)) {
        if (link.canonicalFilePath() == target && !target.isEmpty())
            return link.fileName().replace(QStringLiteral("\\x20"), QStringLiteral(" "));
    }
    return {};
}

// The file-system UUID's first eight hex digits stand for a Windows serial.
std::uint32_t serialOf(const QString& device)
{
    const QString digits = diskLinkName("uuid", device).remove('-').left(8);
    bool ok = false;
    const std::uint32_t serial = digits.toUInt(&ok, 16);
    return ok ? serial : 0;
}

std::uint64_t logicalSectorSize(const std::string& device)
{
    const QString node =
        QFileInfo(QStringLiteral("/sys/dev/block/") + QString::fromStdString(device))
            .canonicalFilePath();
    // A partition's queue is its disk's.
    const QString disk = QFile::exists(node + "/partition") ? QFileInfo(node).path() : node;
    QFile size(disk + "/queue/logical_block_size");
    if (!size.open(QIODevice::ReadOnly))
        return 512;
    const std::uint64_t bytes = size.readAll().trimmed().toULongLong();
    return bytes > 0 ? bytes : 512;
}

} // namespace

std::vector<VolumeRecord> fixedVolumes()
{
    QFile mountInfo(QStringLiteral("/proc/self/mountinfo"));
    if (!mountInfo.open(QIODevice::ReadOnly))
        return {};
    std::vector<VolumeRecord> volumes;
    for (const auto& mount : posix::MountTable::localDisks(mountInfo.readAll().toStdString())) {
        struct statvfs figures {};
        // A mount point that vanished is no disk to offer.
        if (statvfs(mount.mountPoint.c_str(), &figures) != 0)
            continue;
        VolumeRecord volume;
        volume.drive = wide(mount.mountPoint);
        volume.rootPath = volume.drive;
        const QString source = QString::fromStdString(mount.source);
        volume.label = diskLinkName("label", source).toStdWString();
        volume.serialNumber = serialOf(source);
        volume.maxComponentLength = static_cast<std::uint32_t>(figures.f_namemax);
        volume.flags = featuresOf(mount.fileSystem) |
                       (mount.readOnly || (figures.f_flag & ST_RDONLY) ? ReadOnlyVolume : 0);
        volume.fileSystem = wide(mount.fileSystem);
        volume.freeToCaller = std::uint64_t{figures.f_bavail} * figures.f_frsize;
        volume.totalBytes = std::uint64_t{figures.f_blocks} * figures.f_frsize;
        volume.totalClusters = figures.f_blocks;
        volume.freeClusters = figures.f_bavail;
        volume.bytesPerSector = logicalSectorSize(mount.device);
        volume.sectorsPerCluster = figures.f_frsize / volume.bytesPerSector;
        volumes.push_back(std::move(volume));
    }
    return volumes;
}

} // namespace platform
