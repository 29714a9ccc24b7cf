#include "../Volumes.h"

#include "OwnedHandle.h"

#include <windows.h>
#include <winioctl.h>

namespace platform {

namespace {

// root: "C:\", or a folder where a volume is mounted, with its backslash.
VolumeRecord readVolume(const std::wstring& root)
{
    VolumeRecord volume;
    const bool letterRoot = root.size() == 3 && root[1] == L':';
    volume.drive = letterRoot ? root.substr(0, 2) : root;
    volume.rootPath = root;
    wchar_t label[510] = {};
    wchar_t fileSystem[510] = {};
    DWORD serial = 0;
    DWORD maxComponent = 0;
    DWORD flags = 0;
    // The result is not checked: a volume that does not answer keeps empty fields.
    GetVolumeInformationW(volume.rootPath.c_str(), label, 510, &serial, &maxComponent, &flags,
                          fileSystem, 510);
    volume.label = label;
    volume.serialNumber = serial;
    volume.maxComponentLength = maxComponent;
    volume.flags = flags;
    volume.fileSystem = std::wstring(fileSystem).substr(0, 255);

    ULARGE_INTEGER freeToCaller{};
    ULARGE_INTEGER total{};
    GetDiskFreeSpaceExW(volume.rootPath.c_str(), &freeToCaller, &total, nullptr);
    volume.freeToCaller = freeToCaller.QuadPart;
    volume.totalBytes = total.QuadPart;

    DWORD sectorsPerCluster = 0;
    DWORD bytesPerSector = 0;
    DWORD freeClusters = 0;
    DWORD totalClusters = 0;
    GetDiskFreeSpaceW(volume.rootPath.c_str(), &sectorsPerCluster, &bytesPerSector, &freeClusters,
                      &totalClusters);
    volume.sectorsPerCluster = sectorsPerCluster;
    volume.bytesPerSector = bytesPerSector;
    volume.freeClusters = freeClusters;
    volume.totalClusters = totalClusters;
    return volume;
}

} // namespace

std::vector<VolumeRecord> fixedVolumes()
{
    std::vector<VolumeRecord> volumes;
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
        const wchar_t root[] = {letter, L':', L'\\', L'\0'};
        if (GetDriveTypeW(root) == DRIVE_FIXED)
            volumes.push_back(readVolume(root));
    }
    return volumes;
}

std::optional<VolumeRecord> volumeRootedAt(const std::wstring& path)
{
    std::wstring root = path;
    if (root.empty())
        return std::nullopt;
    if (root.back() != L'\\' && root.back() != L'/')
        root += L'\\';
    wchar_t volumePath[MAX_PATH + 1] = {};
    if (!GetVolumePathNameW(root.c_str(), volumePath, MAX_PATH + 1) ||
        CompareStringOrdinal(volumePath, -1, root.c_str(), -1, TRUE) != CSTR_EQUAL)
        return std::nullopt;
    return readVolume(volumePath);
}

// The volume's device is asked, which needs no access rights to it.
std::optional<bool> seeksAreSlow(const NativeString& folder)
{
    wchar_t volumePath[MAX_PATH + 1] = {};
    wchar_t volumeName[MAX_PATH + 1] = {};
    if (!GetVolumePathNameW(folder.c_str(), volumePath, MAX_PATH + 1) ||
        !GetVolumeNameForVolumeMountPointW(volumePath, volumeName, MAX_PATH + 1))
        return std::nullopt;
    // "\\?\Volume{…}\" names the volume's root; without the backslash, its device.
    std::wstring device = volumeName;
    if (!device.empty() && device.back() == L'\\')
        device.pop_back();
    const win32::FileHandle volume(CreateFileW(
        device.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!volume.isValid())
        return std::nullopt;
    STORAGE_PROPERTY_QUERY query{};
    query.PropertyId = StorageDeviceSeekPenaltyProperty;
    query.QueryType = PropertyStandardQuery;
    DEVICE_SEEK_PENALTY_DESCRIPTOR penalty{};
    DWORD returned = 0;
    if (!DeviceIoControl(volume.get(), IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, &penalty,
                         sizeof penalty, &returned, nullptr) ||
        returned < sizeof penalty)
        return std::nullopt;
    return penalty.IncursSeekPenalty != FALSE;
}

} // namespace platform
