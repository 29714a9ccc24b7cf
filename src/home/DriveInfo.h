#pragma once

#include "platform/Volumes.h"

#include <QList>
#include <QString>

#include <array>

// What the home screen knows of one local disk, as its card and its details
// dialog show it.
struct DriveInfo {
    struct Feature {
        const char* name;
        std::uint32_t flag;
    };
    // The file-system features, in the order the details dialog lists them.
    static const std::array<Feature, 19> featureTable;

    // Label and drive: "System (C:)"; on Linux without a label, the mount
    // point and the device: "/ (/dev/sda2)".
    QString name;
    char letter = 0; // the drive letter on Windows; none on Linux
    QString rootPath;
    QString serialNumber;
    QString fileSystem;
    QString maxFileNameLength;
    QString totalSpace;
    QString freeSpace;
    // Linux: the space kept for the system, and what is left for the user
    // (used and free), which the card shows. Empty where nothing is reserved.
    QString reservedSpace;
    QString usableSpace;
    float freePercent = 0;
    QString freePercentText;
    QString totalClusters;
    QString freeClusters;
    QString sectorsPerCluster;
    QString bytesPerSector;
    std::array<bool, 19> features{};
    // Which features the platform can tell for this volume; the others do
    // not apply and are not listed.
    std::array<bool, 19> featureKnown{};

    [[nodiscard]] static DriveInfo fromVolume(const platform::VolumeRecord& volume);
    [[nodiscard]] static QList<DriveInfo> readDrives();
    // Lower-case hex at least four wide (blank-padded), "-" after the fourth
    // character, upper-cased: 1A2B-3C4D, AB12-CD, BEEF-.
    [[nodiscard]] static QString serialText(quint32 serial);

    // "12.50 GB free of 100.00 GB (12.50%)"; on Linux of the usable space.
    [[nodiscard]] QString sizeText() const;
    // What the size text leaves out: the reserved space; empty when none.
    [[nodiscard]] QString sizeDetails() const;
    // What a scan of the disk is given: "C:" for C:\, the mount point on Linux.
    [[nodiscard]] QString scanPath() const;
    // The used share in whole percent, for the card's bar.
    [[nodiscard]] int usedPercent() const;
};
