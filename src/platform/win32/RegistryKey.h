#pragma once

#include <windows.h>

namespace win32 {

// Owns one open registry key and closes it when it goes out of scope.
class RegistryKey {
public:
    RegistryKey() = default;
    ~RegistryKey()
    {
        if (handle)
            RegCloseKey(handle);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    HKEY* receive() { return &handle; }
    [[nodiscard]] HKEY get() const { return handle; }

private:
    HKEY handle = nullptr;
};

} // namespace win32
