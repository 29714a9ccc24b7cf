#include "../IsolatedSettings.h"

#include "SettingsBackend.h"

#include <windows.h>

IsolatedSettings::IsolatedSettings()
{
    const std::wstring key = L"Software\\TallyrootTests\\" + std::to_wstring(GetCurrentProcessId());
    platform::setSettingsKey(key);
}

IsolatedSettings::~IsolatedSettings()
{
    RegDeleteTreeW(HKEY_CURRENT_USER, platform::settingsKey().c_str());
    platform::setSettingsKey(L"Software\\Tallyroot");
}
