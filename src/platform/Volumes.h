#pragma once

#include "DirectoryListing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The local disks the user can scan: fixed drives on Windows, mounted local
// block-device file systems on Linux.
namespace platform {

// File-system feature flags, with the bit values Windows gives them.
namespace VolumeFlag {
constexpr std::uint32_t CaseSensitiveSearch = 0x00000001;
constexpr std::uint32_t CasePreservedNames = 0x00000002;
constexpr std::uint32_t UnicodeOnDisk = 0x00000004;
constexpr std::uint32_t PersistentAcls = 0x00000008;
constexpr std::uint32_t FileCompression = 0x00000010;
constexpr std::uint32_t VolumeQuotas = 0x00000020;
constexpr std::uint32_t SparseFiles = 0x00000040;
constexpr std::uint32_t ReparsePoints = 0x00000080;
constexpr std::uint32_t VolumeIsCompressed = 0x00008000;
constexpr std::uint32_t ObjectIds = 0x00010000;
constexpr std::uint32_t Encryption = 0x00020000;
constexpr std::uint32_t NamedStreams = 0x00040000;
constexpr std::uint32_t ReadOnlyVolume = 0x00080000;
constexpr std::uint32_t SequentialWriteOnce = 0x00100000;
constexpr std::uint32_t Transactions = 0x00200000;
constexpr std::uint32_t HardLinks = 0x00400000;
constexpr std::uint32_t ExtendedAttributes = 0x00800000;
constexpr std::uint32_t OpenByFileId = 0x01000000;
constexpr std::uint32_t UsnJournal = 0x02000000;
} // namespace VolumeFlag

struct VolumeRecord {
    std::wstring drive;    // "C:" on Windows, the mount point on Linux
    std::wstring rootPath; // "C:\" on Windows, the mount point on Linux
    std::wstring label;    // empty when the volume has none
    std::wstring device;   // the block device on Linux, when known
    std::uint32_t serialNumber = 0;
    bool hasSerialNumber = true; // false where the volume has none to tell (Linux)
    std::uint32_t maxComponentLength = 0;
    std::uint32_t flags = 0;
    // The flags this platform can tell for the volume; the others do not apply.
    std::uint32_t knownFlags = 0xffffffff;
    std::wstring fileSystem;
    std::uint64_t freeToCaller = 0; // bytes the user may still write
    // Free, but kept for the system (Linux: root's reserved blocks); 0 on Windows.
    std::uint64_t reservedBytes = 0;
    std::uint64_t totalBytes = 0;
    std::uint64_t totalClusters = 0;
    std::uint64_t freeClusters = 0;
    std::uint64_t sectorsPerCluster = 0;
    std::uint64_t bytesPerSector = 0;
};

// In drive-letter order on Windows, in mount-point order on Linux.
[[nodiscard]] std::vector<VolumeRecord> fixedVolumes();
// The volume whose root the path is (a drive's root, a mount point), of any
// kind; none for a folder inside a volume.
[[nodiscard]] std::optional<VolumeRecord> volumeRootedAt(const std::wstring& path);
// Whether the disk that holds a folder pays for seeks (a spinning disk); none
// when the system cannot tell, as for a virtual disk or a file system of no
// disk of its own.
[[nodiscard]] std::optional<bool> seeksAreSlow(const NativeString& folder);

} // namespace platform
