#include "../SettingsBackend.h"

#include "Win32Registry.h"

namespace platform {

bool readDwordValue(const std::wstring& valueName, std::uint32_t& value)
{
    DWORD data = 0;
    if (!win32::readDwordValue(HKEY_CURRENT_USER, settingsKey(), valueName, data))
        return false;
    value = data;
    return true;
}

bool readStringValue(const std::wstring& valueName, std::wstring& text)
{
    return win32::readStringValue(HKEY_CURRENT_USER, settingsKey(), valueName, text);
}

bool writeDwordValue(const std::wstring& valueName, std::uint32_t value)
{
    return win32::writeDwordValue(HKEY_CURRENT_USER, settingsKey(), valueName, value);
}

bool writeStringValue(const std::wstring& valueName, const std::wstring& text)
{
    return win32::writeStringValue(HKEY_CURRENT_USER, settingsKey(), valueName, text);
}

} // namespace platform
