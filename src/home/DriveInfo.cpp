#include "DriveInfo.h"

using namespace platform::VolumeFlag;

const std::array<DriveInfo::Feature, 19> DriveInfo::featureTable{{
    {"Case is Preserved", CasePreservedNames},
    {"Case Sensitive", CaseSensitiveSearch},
    {"File Compression Support", FileCompression},
    {"Named Streams Support", NamedStreams},
    {"Preserves and Enforces ACLs", PersistentAcls},
    {"Read Only Volume", ReadOnlyVolume},
    {"Single Sequential Write Support", SequentialWriteOnce},
    {"Encrypted File System Support", Encryption},
    {"Extended Attributes Support", ExtendedAttributes},
    {"Hard Links Support", HardLinks},
    {"Object Identifiers Support", ObjectIds},
    {"Open by FileID Support", OpenByFileId},
    {"Re-parse Points Support", ReparsePoints},
    {"Sparse Files Support", SparseFiles},
    {"Transactions Support", Transactions},
    {"Update Sequence Number Journals Support", UsnJournal},
    {"Unicode in File Names Support", UnicodeOnDisk},
    {"Volume is Compressed", VolumeIsCompressed},
    {"Disk Quotas Support", VolumeQuotas},
}};

QString DriveInfo::serialText(quint32 serial)
{
    QString text = QStringLiteral("%1").arg(serial, 4, 16, QChar(' '));
    text.insert(4, '-');
    return text.toUpper();
}

DriveInfo DriveInfo::fromVolume(const platform::VolumeRecord& volume)
{
    DriveInfo drive;
    const QString driveName = QString::fromStdWString(volume.drive);
    const QString device = QString::fromStdWString(volume.device);
    // A mount point without a label names itself, and its device stands in brackets.
    drive.name = volume.label.empty() && !device.isEmpty()
                     ? driveName + " (" + device + ")"
                     : QString::fromStdWString(volume.label) + " (" + driveName + ")";
    if (driveName.size() == 2 && driveName.at(1) == ':')
        drive.letter = driveName.at(0).toLatin1();
    drive.rootPath = QString::fromStdWString(volume.rootPath);
    drive.serialNumber =
        volume.hasSerialNumber ? serialText(volume.serialNumber) : QStringLiteral("n/a");
    drive.fileSystem = QString::fromStdWString(volume.fileSystem);
    drive.maxFileNameLength = QString::number(volume.maxComponentLength);

    const auto gigabytes = [](std::uint64_t bytes) { return double(bytes) / 1073741824.0; };
    const auto text = [](double gigabytes) { return QString::number(gigabytes, 'f', 2) + " GB"; };
    // As df counts: what is reserved is neither the user's data nor free to the user.
    const double usableGB = gigabytes(volume.totalBytes - volume.reservedBytes);
    const double freeGB = gigabytes(volume.freeToCaller);
    drive.freePercent = float(float(freeGB) * 100.0f / usableGB);
    drive.totalSpace = text(gigabytes(volume.totalBytes));
    drive.usableSpace = text(usableGB);
    drive.freeSpace = text(freeGB);
    if (volume.reservedBytes > 0)
        drive.reservedSpace = text(gigabytes(volume.reservedBytes));
    drive.freePercentText = QString::number(drive.freePercent, 'f', 2) + "%";

    drive.totalClusters = QString::number(volume.totalClusters);
    drive.freeClusters = QString::number(volume.freeClusters);
    drive.sectorsPerCluster = QString::number(volume.sectorsPerCluster);
    drive.bytesPerSector = QString::number(volume.bytesPerSector);
    for (std::size_t i = 0; i < featureTable.size(); ++i) {
        drive.features[i] = (volume.flags & featureTable[i].flag) != 0;
        drive.featureKnown[i] = (volume.knownFlags & featureTable[i].flag) != 0;
    }
    return drive;
}

QList<DriveInfo> DriveInfo::readDrives()
{
    QList<DriveInfo> drives;
    for (const auto& volume : platform::fixedVolumes())
        drives.append(fromVolume(volume));
    return drives;
}

QString DriveInfo::sizeText() const
{
    return QStringLiteral("%1 free of %2 (%3)").arg(freeSpace, usableSpace, freePercentText);
}

QString DriveInfo::sizeDetails() const
{
    return reservedSpace.isEmpty()
               ? QString()
               : QStringLiteral("%1 in all, of which %2 is reserved for the system")
                     .arg(totalSpace, reservedSpace);
}

int DriveInfo::usedPercent() const
{
    return static_cast<int>(100 - freePercent);
}

QString DriveInfo::scanPath() const
{
    return letter ? rootPath.chopped(1) : rootPath;
}
