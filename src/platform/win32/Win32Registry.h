#pragma once

#include <windows.h>

#include <string>

// The four registry helpers every module shares. Strings are REG_SZ, numbers
// REG_DWORD; a value of another type reads as missing.
namespace win32 {

[[nodiscard]] bool readDwordValue(HKEY root, const std::wstring& subKey,
                                  const std::wstring& valueName, DWORD& value);
[[nodiscard]] bool readStringValue(HKEY root, const std::wstring& subKey,
                                   const std::wstring& valueName, std::wstring& text);
// Both writes report whether the key could be opened or created, not whether
// the value was then set.
bool writeDwordValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName,
                     DWORD value);
bool writeStringValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName,
                      const std::wstring& text);

} // namespace win32
