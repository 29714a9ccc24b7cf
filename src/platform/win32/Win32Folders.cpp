#include "../UserFolders.h"

#include "../DebugLog.h"
#include "Win32Registry.h"

#include <shlobj.h>
#include <windows.h>

#include <vector>

namespace platform {

namespace {

int csidlOf(SpecialFolder which)
{
    switch (which) {
    case SpecialFolder::Documents:
        return CSIDL_PERSONAL;
    case SpecialFolder::Music:
        return CSIDL_MYMUSIC;
    case SpecialFolder::Pictures:
        return CSIDL_MYPICTURES;
    case SpecialFolder::Videos:
        return CSIDL_MYVIDEO;
    case SpecialFolder::Profile:
        break;
    }
    return CSIDL_PROFILE;
}

std::wstring& oneDriveKey()
{
    static std::wstring key = L"Environment";
    return key;
}

} // namespace

void setOneDriveKey(const std::wstring& subKey)
{
    oneDriveKey() = subKey;
}

std::wstring specialFolderPath(SpecialFolder which)
{
    wchar_t path[MAX_PATH] = {};
    if (SHGetFolderPathW(nullptr, csidlOf(which), nullptr, 0, path) != S_OK)
        return {};
    return path;
}

std::wstring downloadsFolderPath()
{
    std::wstring path;
    (void)win32::readStringValue(
        HKEY_CURRENT_USER,
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
        L"{374DE290-123F-4565-9164-39C4925E467B}", path);
    return path;
}

std::wstring oneDriveFolderPath()
{
    std::wstring path;
    (void)win32::readStringValue(HKEY_CURRENT_USER, oneDriveKey(), L"OneDrive", path);
    return path;
}

std::wstring windowsFolderPath()
{
    std::vector<wchar_t> buffer(32767, L'\0');
    if (GetWindowsDirectoryW(buffer.data(), static_cast<UINT>(buffer.size())) == 0)
        debugLog(L"GetWindowsDirectory");
    return buffer.data();
}

} // namespace platform
