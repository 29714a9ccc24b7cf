#pragma once

#include "../ColourScheme.h"

#include <windows.h>

#include <string>

namespace win32 {

// What AppsUseLightTheme under the key says: 0 is dark, any other number
// light; Unknown when the value is missing or not a DWORD.
[[nodiscard]] platform::ColourScheme appsColourScheme(HKEY root, const std::wstring& subKey);

} // namespace win32
