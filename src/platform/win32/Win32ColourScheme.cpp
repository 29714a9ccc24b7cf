#include "Win32ColourScheme.h"

#include "Win32Registry.h"

namespace win32 {

platform::ColourScheme appsColourScheme(HKEY root, const std::wstring& subKey)
{
    DWORD light = 1;
    if (!readDwordValue(root, subKey, L"AppsUseLightTheme", light))
        return platform::ColourScheme::Unknown;
    return light == 0 ? platform::ColourScheme::Dark : platform::ColourScheme::Light;
}

} // namespace win32

namespace platform {

ColourScheme desktopColourScheme()
{
    return win32::appsColourScheme(
        HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize");
}

} // namespace platform
