#include "../Volumes.h"

#include <windows.h>

namespace platform {

namespace {

VolumeRecord readVolume(wchar_t letter)
{
    VolumeRecord volume;
    volume.drive = std::wstring{letter, L':'};
    volume.rootPath = volume.drive + L"\\";
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
            volumes.push_back(readVolume(letter));
    }
    return volumes;
}

} // namespace platform
