#include "../IsolatedSettings.h"

#include "SettingsBackend.h"

#include <windows.h>

IsolatedSettings::IsolatedSettings()
{
    const std::wstring key = L"Software\\TallyrootTests\\" + std::to_wstring(GetCurrentProcessId());
    platform::setSettingsKey(key);
}

void IsolatedSettings::clear()
{
    RegDeleteTreeW(HKEY_CURRENT_USER, platform::settingsKey().c_str());
}

IsolatedSettings::~IsolatedSettings()
{
    clear();
    platform::setSettingsKey(L"Software\\Tallyroot");
}
