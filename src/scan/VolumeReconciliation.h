#pragma once

#include "ScanResult.h"
#include "platform/Volumes.h"

#include <QString>

#include <optional>

// How a scan of a volume's root compares with what the volume says is used,
// and what makes up the difference as far as the scan knows.
class VolumeReconciliation {
public:
    // None when the scanned folder is not the root of a volume.
    [[nodiscard]] static std::optional<VolumeReconciliation> of(const QString& scannedFolder,
                                                                const ScanFigures& result);
    VolumeReconciliation(const platform::VolumeRecord& volume, const ScanFigures& result);

    // One line: used on the volume, found by the scan, and what the rest is.
    [[nodiscard]] QString text() const;
    // The folders behind the counts in the line, for a tooltip.
    [[nodiscard]] QString details() const;

    [[nodiscard]] quint64 usedOnVolume() const { return used; }
    [[nodiscard]] quint64 reservedOnVolume() const { return reserved; }

private:
    quint64 used = 0;
    quint64 reserved = 0;
    quint64 found = 0;
    QStringList unreadable;
    QStringList elsewhere;
    int excluded = 0;
};
