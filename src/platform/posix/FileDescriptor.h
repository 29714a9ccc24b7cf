#pragma once

#include <unistd.h>

#include <utility>

namespace posix {

// Owns one open file descriptor and closes it when it goes out of scope.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd)
        : fd(fd)
    {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept
        : fd(std::exchange(other.fd, -1))
    {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        if (this != &other) {
            reset();
            fd = std::exchange(other.fd, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return fd; }
    [[nodiscard]] bool isValid() const { return fd >= 0; }
    // Gives up ownership without closing.
    [[nodiscard]] int release() { return std::exchange(fd, -1); }
    // Closes now and reports whether the close succeeded (it can fail on write-back).
    bool close() { return ::close(std::exchange(fd, -1)) == 0; }

private:
    void reset()
    {
        if (fd >= 0)
            ::close(std::exchange(fd, -1));
    }

    int fd = -1;
};

} // namespace posix
