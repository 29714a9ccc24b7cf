#include "MountTable.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace posix {

namespace {

// Spaces, tabs, newlines and backslashes in paths come as \040, \011, \012, \134.
std::string unescape(const std::string& field)
{
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const auto digits = field.begin() + long(i) + 1;
        const bool octal =
            field[i] == '\\' && i + 3 < field.size() &&
            std::all_of(digits, digits + 3, [](char c) { return c >= '0' && c <= '7'; });
        if (octal) {
            out += static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

bool hasOption(const std::string& options, const std::string& option)
{
    std::istringstream list(options);
    std::string item;
    while (std::getline(list, item, ','))
        if (item == option)
            return true;
    return false;
}

// Images and discs are not disks to clean up.
bool isImage(const MountTable::Mount& mount)
{
    static const std::set<std::string> imageTypes{"squashfs", "erofs", "iso9660", "udf", "cramfs"};
    return imageTypes.count(mount.fileSystem) > 0 ||
           (mount.source.rfind("/dev/loop", 0) == 0 && mount.readOnly);
}

} // namespace

std::vector<MountTable::Mount> MountTable::parse(const std::string& mountInfo)
{
    std::vector<Mount> mounts;
    std::istringstream lines(mountInfo);
    std::string line;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string id, parent, device, root, mountPoint, options, field;
        if (!(fields >> id >> parent >> device >> root >> mountPoint >> options))
            continue;
        while (fields >> field && field != "-") {
        } // optional fields
        Mount mount;
        std::string superOptions;
        if (field != "-" || !(fields >> mount.fileSystem >> mount.source))
            continue;
        fields >> superOptions;
        mount.device = device;
        mount.root = unescape(root);
        mount.mountPoint = unescape(mountPoint);
        mount.source = unescape(mount.source);
        mount.readOnly = hasOption(options, "ro") || hasOption(superOptions, "ro");
        mounts.push_back(std::move(mount));
    }
    return mounts;
}

std::vector<MountTable::Mount> MountTable::localDisks(const std::string& mountInfo)
{
    std::vector<Mount> disks;
    for (Mount& mount : parse(mountInfo)) {
        if (mount.source.rfind("/dev/", 0) == 0 && !isImage(mount))
            disks.push_back(std::move(mount));
    }
    // Each device once: its whole file system (root "/") before bind mounts of
    // a part of it, then the shortest mount point.
    std::stable_sort(disks.begin(), disks.end(), [](const Mount& a, const Mount& b) {
        if ((a.root == "/") != (b.root == "/"))
            return a.root == "/";
        return a.mountPoint < b.mountPoint;
    });
    std::set<std::string> seen;
    std::vector<Mount> unique;
    for (Mount& mount : disks) {
        if (seen.insert(mount.device).second)
            unique.push_back(std::move(mount));
    }
    std::sort(unique.begin(), unique.end(),
              [](const Mount& a, const Mount& b) { return a.mountPoint < b.mountPoint; });
    return unique;
}

} // namespace posix
