#pragma once

#include <string>
#include <vector>

namespace posix {

// The file systems of /proc/self/mountinfo that Tallyroot offers as disks:
// local block devices, each device once, in mount-point order.
class MountTable {
public:
    struct Mount {
        std::string device;     // major:minor
        std::string root;       // the part of the file system mounted here
        std::string mountPoint; // with its octal escapes undone
        std::string fileSystem;
        std::string source;
        bool readOnly = false;
    };

    [[nodiscard]] static std::vector<Mount> localDisks(const std::string& mountInfo);
    [[nodiscard]] static std::vector<Mount> parse(const std::string& mountInfo);
};

} // namespace posix
