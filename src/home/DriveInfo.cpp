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
    drive.name = QString::fromStdWString(volume.label) + " (" + driveName + ")";
    if (driveName.size() == 2 && driveName.at(1) == ':')
        drive.letter = driveName.at(0).toLatin1();
    drive.rootPath = QString::fromStdWString(volume.rootPath);
    drive.serialNumber = serialText(volume.serialNumber);
    drive.fileSystem = QString::fromStdWString(volume.fileSystem);
    drive.maxFileNameLength = QString::number(volume.maxComponentLength);

    const double totalGB = double(volume.totalBytes) / 1073741824.0;
    const double freeGB = double(volume.freeToCaller) / 1073741824.0;
    drive.freePercent = float(float(freeGB) * 100.0f / totalGB);
    drive.totalSpace = QString::number(totalGB, 'f', 2) + " GB";
    drive.freeSpace = QString::number(freeGB, 'f', 2) + " GB";
    drive.freePercentText = QString::number(drive.freePercent, 'f', 2) + "%";

    drive.totalClusters = QString::number(volume.totalClusters);
    drive.freeClusters = QString::number(volume.freeClusters);
    drive.sectorsPerCluster = QString::number(volume.sectorsPerCluster);
    drive.bytesPerSector = QString::number(volume.bytesPerSector);
    for (std::size_t i = 0; i < featureTable.size(); ++i)
        drive.features[i] = (volume.flags & featureTable[i].flag) != 0;
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
    return QStringLiteral("%1 free of %2 (%3)").arg(freeSpace, totalSpace, freePercentText);
}

int DriveInfo::usedPercent() const
{
    return static_cast<int>(100 - freePercent);
}

QString DriveInfo::scanPath() const
{
    return letter ? rootPath.chopped(1) : rootPath;
}
