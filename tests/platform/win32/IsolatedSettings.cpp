#include "../IsolatedSettings.h"

#include "SettingsBackend.h"
#include "UserFolders.h"
#include "win32/Win32Registry.h"

#include <windows.h>

IsolatedSettings::IsolatedSettings()
{
    const std::wstring key = L"Software\\TallyrootTests\\" + std::to_wstring(GetCurrentProcessId());
    platform::setSettingsKey(key);
    platform::setOneDriveKey(key);
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
    platform::setSettingsKey(L"Software\\Tallyroot");
    platform::setOneDriveKey(L"Environment");
}
