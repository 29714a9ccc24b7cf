#pragma once

#include <windows.h>

#include <utility>

namespace win32 {

// Owns one handle and gives it back with the call that closes its kind.
template <BOOL(WINAPI* Close)(HANDLE)> class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(HANDLE handle)
        : handle(handle)
    {}
    ~OwnedHandle()
    {
        if (isValid())
            Close(handle);
    }
    OwnedHandle(OwnedHandle&& other) noexcept
        : handle(std::exchange(other.handle, INVALID_HANDLE_VALUE))
    {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    OwnedHandle(const OwnedHandle&) = delete;
    OwnedHandle& operator=(const OwnedHandle&) = delete;

    [[nodiscard]] HANDLE get() const { return handle; }
    [[nodiscard]] bool isValid() const { return handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle = INVALID_HANDLE_VALUE;
};

// A file or folder opened with CreateFileW, closed with CloseHandle.
using FileHandle = OwnedHandle<CloseHandle>;

} // namespace win32
