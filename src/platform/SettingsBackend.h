#pragma once

#include <cstdint>
#include <string>

// The application's own typed values: under HKEY_CURRENT_USER\Software\Tallyroot
// on Windows, in one settings file on Linux. A value of the other type reads as
// missing; nothing is ever deleted.
namespace platform {

[[nodiscard]] bool readDwordValue(const std::wstring& valueName, std::uint32_t& value);
[[nodiscard]] bool readStringValue(const std::wstring& valueName, std::wstring& text);
bool writeDwordValue(const std::wstring& valueName, std::uint32_t value);
bool writeStringValue(const std::wstring& valueName, const std::wstring& text);
// Where the values live, as the user would look for them.
[[nodiscard]] std::wstring settingsLocation();
// How many values there are: a stored count can promise no more than that.
[[nodiscard]] std::uint32_t storedValueCount();

// Writes made while a batch is open reach the system when the outermost batch
// ends; on Linux the settings file is then written once.
void beginSettingsBatch();
// Ends a batch; false when any write of it failed.
[[nodiscard]] bool endSettingsBatch();

// The registry key the values live under. Tests move it aside; on Linux the
// file's place follows XDG_CONFIG_HOME instead.
const std::wstring& settingsKey();
void setSettingsKey(const std::wstring& subKey);

} // namespace platform
