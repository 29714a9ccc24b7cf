#include "../Volumes.h"

#include "BlockDevices.h"
#include "MountTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#include <map>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

namespace platform {

namespace {

using namespace VolumeFlag;

constexpr std::uint32_t posixNames = CaseSensitiveSearch | CasePreservedNames | UnicodeOnDisk;
constexpr std::uint32_t posixFiles = PersistentAcls | SparseFiles | HardLinks | ExtendedAttributes;

std::string featureName(const std::string& fileSystem)
{
    return fileSystem == "ntfs3" || fileSystem == "fuseblk" ? std::string("ntfs") : fileSystem;
}

// What each file system offers, in the terms of the Windows flags; none for a
// file system this table does not describe.
std::optional<std::uint32_t> featuresOf(const std::string& fileSystem)
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
    const auto found = features.find(featureName(fileSystem));
    return found == features.end() ? std::nullopt : std::optional(found->second);
}

// The flags that the table above can tell; the others are Windows' own.
std::uint32_t knownFeaturesOf(const std::string& fileSystem)
{
    if (!featuresOf(fileSystem))
        return ReadOnlyVolume;
    const std::uint32_t known =
        posixNames | posixFiles | VolumeQuotas | FileCompression | Encryption | ReadOnlyVolume;
    return featureName(fileSystem) == "ntfs" ? known | NamedStreams | ReparsePoints | ObjectIds
                                             : known;
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
std::optional<std::uint32_t> serialOf(const QString& device)
{
    const QString digits = diskLinkName("uuid", device).remove('-').left(8);
    bool ok = false;
    const std::uint32_t serial = digits.toUInt(&ok, 16);
    return ok ? std::optional(serial) : std::nullopt;
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

std::optional<VolumeRecord> recordOf(const posix::MountTable::Mount& mount)
{
    struct statvfs figures {};
    // A mount point that vanished is no disk to offer.
    if (statvfs(mount.mountPoint.c_str(), &figures) != 0)
        return std::nullopt;
    VolumeRecord volume;
    volume.drive = wide(mount.mountPoint);
    volume.rootPath = volume.drive;
    const QString source = QString::fromStdString(mount.source);
    volume.label = diskLinkName("label", source).toStdWString();
    volume.device = source.startsWith('/') ? source.toStdWString() : std::wstring();
    const std::optional<std::uint32_t> serial = serialOf(source);
    volume.serialNumber = serial.value_or(0);
    volume.hasSerialNumber = serial.has_value();
    volume.maxComponentLength = static_cast<std::uint32_t>(figures.f_namemax);
    volume.flags = featuresOf(mount.fileSystem).value_or(0) |
                   (mount.readOnly || (figures.f_flag & ST_RDONLY) ? ReadOnlyVolume : 0);
    volume.knownFlags = knownFeaturesOf(mount.fileSystem);
    volume.fileSystem = wide(mount.fileSystem);
    volume.freeToCaller = std::uint64_t{figures.f_bavail} * figures.f_frsize;
    volume.reservedBytes = std::uint64_t{figures.f_bfree - figures.f_bavail} * figures.f_frsize;
    volume.totalBytes = std::uint64_t{figures.f_blocks} * figures.f_frsize;
    volume.totalClusters = figures.f_blocks;
    volume.freeClusters = figures.f_bavail;
    volume.bytesPerSector = logicalSectorSize(mount.device);
    volume.sectorsPerCluster = figures.f_frsize / volume.bytesPerSector;
    return volume;
}

std::string mountInfo()
{
    QFile file(QStringLiteral("/proc/self/mountinfo"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

} // namespace

std::vector<VolumeRecord> fixedVolumes()
{
    std::vector<VolumeRecord> volumes;
    for (const auto& mount : posix::MountTable::localDisks(mountInfo())) {
        if (std::optional<VolumeRecord> volume = recordOf(mount))
            volumes.push_back(std::move(*volume));
    }
    return volumes;
}

std::optional<VolumeRecord> volumeRootedAt(const std::wstring& path)
{
    const std::string canonical =
        QFileInfo(QString::fromStdWString(path)).canonicalFilePath().toStdString();
    // A later mount on the same point hides the earlier ones.
    const std::vector<posix::MountTable::Mount> mounts = posix::MountTable::parse(mountInfo());
    for (auto mount = mounts.rbegin(); mount != mounts.rend(); ++mount) {
        if (!canonical.empty() && mount->mountPoint == canonical)
            return recordOf(*mount);
    }
    return std::nullopt;
}

std::optional<bool> seeksAreSlow(const NativeString& folder)
{
    struct stat info {};
    if (stat(folder.c_str(), &info) != 0)
        return std::nullopt;
    return posix::seeksAreSlow(QStringLiteral("/sys/dev/block"), major(info.st_dev),
                               minor(info.st_dev));
}

} // namespace platform
