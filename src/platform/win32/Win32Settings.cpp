#include "../SettingsBackend.h"

#include "RegistryKey.h"
#include "Win32Registry.h"

#include <atomic>

namespace platform {

namespace {

// The registry takes each value as it comes; a batch only remembers failures.
std::atomic<int> batchDepth{0};
std::atomic<bool> batchFailed{false};

bool noted(bool written)
{
    if (!written && batchDepth > 0)
        batchFailed = true;
    return written;
}

} // namespace

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
    return noted(win32::writeDwordValue(HKEY_CURRENT_USER, settingsKey(), valueName, value));
}

bool writeStringValue(const std::wstring& valueName, const std::wstring& text)
{
    return noted(win32::writeStringValue(HKEY_CURRENT_USER, settingsKey(), valueName, text));
}

std::wstring settingsLocation()
{
    return L"HKEY_CURRENT_USER\\" + settingsKey();
}

std::uint32_t storedValueCount()
{
    win32::RegistryKey key;
    DWORD values = 0;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, settingsKey().c_str(), 0, KEY_READ, key.receive()) !=
            ERROR_SUCCESS ||
        RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values,
                         nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        return 0;
    return values;
}

void beginSettingsBatch()
{
    if (batchDepth++ == 0)
        batchFailed = false;
}

bool endSettingsBatch()
{
    --batchDepth;
    return !batchFailed;
}

} // namespace platform
