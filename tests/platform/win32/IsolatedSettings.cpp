#include "../IsolatedSettings.h"

#include "SettingsBackend.h"
#include "UserFolders.h"
#include "win32/Win32Registry.h"

#include <windows.h>

#include <filesystem>
#include <system_error>

IsolatedSettings::IsolatedSettings()
{
    const std::wstring key = L"Software\\TallyrootTests\\" + std::to_wstring(GetCurrentProcessId());
    platform::setSettingsKey(key);
    platform::setOneDriveKey(key);
    // The program's data, such as the scans it keeps, goes to a folder of
    // the test's own.
    std::error_code error;
    const std::filesystem::path data =
        std::filesystem::temp_directory_path(error) /
        (L"tallyroot-data-" + std::to_wstring(GetCurrentProcessId()));
    std::filesystem::create_directories(data, error);
    location = data.string();
    _wputenv_s(L"LOCALAPPDATA", data.c_str());
}

void IsolatedSettings::setOneDrivePath(const platform::NativeString& path)
{
    if (path.empty())
        RegDeleteKeyValueW(HKEY_CURRENT_USER, platform::settingsKey().c_str(), L"OneDrive");
    else
        win32::writeStringValue(HKEY_CURRENT_USER, platform::settingsKey(), L"OneDrive", path);
}

void IsolatedSettings::clear()
{
    RegDeleteTreeW(HKEY_CURRENT_USER, platform::settingsKey().c_str());
}

IsolatedSettings::~IsolatedSettings()
{
    clear();
    std::error_code error;
    std::filesystem::remove_all(location, error);
    platform::setSettingsKey(L"Software\\Tallyroot");
    platform::setOneDriveKey(L"Environment");
}
