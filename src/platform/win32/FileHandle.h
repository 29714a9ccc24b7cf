#pragma once

#include <windows.h>

#include <utility>

namespace win32 {

// Owns one handle from CreateFileW and closes it with CloseHandle.
class FileHandle {
public:
    explicit FileHandle(HANDLE handle)
        : handle(handle)
    {}
    ~FileHandle()
    {
        if (isValid())
            CloseHandle(handle);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    [[nodiscard]] HANDLE get() const { return handle; }
    [[nodiscard]] bool isValid() const { return handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle = INVALID_HANDLE_VALUE;
};

} // namespace win32
