#include "Win32Registry.h"

#include "../DebugLog.h"
#include "RegistryKey.h"

#include <vector>

namespace win32 {

bool readDwordValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName,
                    DWORD& value)
{
    DWORD data = 0;
    DWORD size = sizeof(data);
    const LSTATUS status = RegGetValueW(root, subKey.c_str(), valueName.c_str(), RRF_RT_REG_DWORD,
                                        nullptr, &data, &size);
    if (status != ERROR_SUCCESS) {
        platform::debugLog(subKey + L" : " + valueName + L" : Cannot read DWORD from registry.");
        return false;
    }
    value = data;
    return true;
}

bool readStringValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName,
                     std::wstring& text)
{
    text.clear();
    RegistryKey key;
    if (RegOpenKeyExW(root, subKey.c_str(), 0, KEY_READ, key.receive()) != ERROR_SUCCESS)
        return false;

    DWORD size = 0;
    LSTATUS status =
        RegGetValueW(key.get(), nullptr, valueName.c_str(), RRF_RT_REG_SZ, nullptr, nullptr, &size);
    if (status == ERROR_SUCCESS) {
        // RegGetValueW reports bytes, terminating null included.
        std::vector<wchar_t> buffer(size / sizeof(wchar_t) + 1, L'\0');
        status = RegGetValueW(key.get(), nullptr, valueName.c_str(), RRF_RT_REG_SZ, nullptr,
                              buffer.data(), &size);
        if (status == ERROR_SUCCESS)
            text.assign(buffer.data());
    }
    if (status != ERROR_SUCCESS) {
        platform::debugLog(L"error");
        return false;
    }
    return true;
}

namespace {

bool writeValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName, DWORD type,
                const void* data, DWORD size)
{
    RegistryKey key;
    if (RegCreateKeyExW(root, subKey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                        nullptr, key.receive(), nullptr) != ERROR_SUCCESS)
        return false;
    if (RegSetValueExW(key.get(), valueName.c_str(), 0, type, static_cast<const BYTE*>(data),
                       size) == ERROR_SUCCESS)
        platform::debugLog(L"true");
    return true;
}

} // namespace

bool writeDwordValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName,
                     DWORD value)
{
    return writeValue(root, subKey, valueName, REG_DWORD, &value, sizeof(value));
}

bool writeStringValue(HKEY root, const std::wstring& subKey, const std::wstring& valueName,
                      const std::wstring& text)
{
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return writeValue(root, subKey, valueName, REG_SZ, text.c_str(), bytes);
}

} // namespace win32
