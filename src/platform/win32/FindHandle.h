#pragma once

#include <windows.h>

#include <utility>

namespace win32 {

// Owns one directory search handle and closes it with FindClose.
class FindHandle {
public:
    FindHandle() = default;
    explicit FindHandle(HANDLE handle)
        : handle(handle)
    {}
    ~FindHandle()
    {
        if (isValid())
            FindClose(handle);
    }
    FindHandle(FindHandle&& other) noexcept
        : handle(std::exchange(other.handle, INVALID_HANDLE_VALUE))
    {}
    FindHandle& operator=(FindHandle&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    FindHandle(const FindHandle&) = delete;
    FindHandle& operator=(const FindHandle&) = delete;

    [[nodiscard]] HANDLE get() const { return handle; }
    [[nodiscard]] bool isValid() const { return handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle = INVALID_HANDLE_VALUE;
};

} // namespace win32
