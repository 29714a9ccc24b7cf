#include "../DirectoryListing.h"

#include "FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace platform {

namespace {

// Seconds from 1601-01-01 to 1970-01-01.
constexpr std::int64_t windowsEpochOffset = 11644473600;

std::uint64_t fileTimeOf(const timespec& time)
{
    const std::int64_t seconds = time.tv_sec + windowsEpochOffset;
    if (seconds < 0)
        return 0;
    return static_cast<std::uint64_t>(seconds) * 10000000u +
           static_cast<std::uint64_t>(time.tv_nsec) / 100u;
}

// st_blocks counts 512-byte units, whatever the file system's block size.
std::uint64_t allocatedBytes(const struct stat& info)
{
    return static_cast<std::uint64_t>(info.st_blocks) * 512u;
}

// fstat of an open folder, and where the system tells it (statx, Linux 5.8
// on), the mount it belongs to.
bool statFolder(int fd, struct stat& info, std::optional<std::uint64_t>& mount)
{
    struct statx extended {};
    if (statx(fd, "", AT_EMPTY_PATH, STATX_INO | STATX_BLOCKS | STATX_MNT_ID, &extended) != 0)
        return fstat(fd, &info) == 0;
    info.st_dev = makedev(extended.stx_dev_major, extended.stx_dev_minor);
    info.st_ino = extended.stx_ino;
    info.st_blocks = static_cast<blkcnt_t>(extended.stx_blocks);
    if (extended.stx_mask & STATX_MNT_ID)
        mount = extended.stx_mnt_id;
    return true;
}

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};

// Names are read a batch at a time and looked at in inode order, which on a
// spinning disk reads the inode table in one sweep rather than in name order,
// and costs nothing elsewhere; they are handed out in listing order.
constexpr std::size_t batchSize = 4096;

struct Listed {
    NativeString name;
    ino_t inode = 0;
    int error = 0; // of looking at it; ENOENT when it vanished
    bool isDirectory = false;
    std::uint64_t size = 0;
    std::uint64_t lastAccessTime = 0;
    std::uint64_t allocated = 0;
    std::uint64_t linkedFile = 0;

    void take(const struct stat& info)
    {
        isDirectory = S_ISDIR(info.st_mode);
        if (isDirectory)
            return;
        size = static_cast<std::uint64_t>(info.st_size);
        lastAccessTime = fileTimeOf(info.st_atim);
        allocated = allocatedBytes(info);
        linkedFile = info.st_nlink > 1 ? static_cast<std::uint64_t>(info.st_ino) : 0;
    }
};

} // namespace

struct DirectoryListing::State {
    std::unique_ptr<DIR, DirCloser> dir;
    int fd = -1; // owned by dir
    dev_t device = 0;
    ino_t inode = 0;
    std::optional<std::uint64_t> mount;
    std::vector<Listed> batch;
    std::size_t nextInBatch = 0;
    bool ended = false;

    // False at the end of the listing; a failure to read sets `failure`.
    bool readBatch(bool& failure);

    // Takes over an open folder descriptor; leaves one of another file system
    // closed, without failure, when a device is given.
    static void adopt(DirectoryListing& listing, posix::FileDescriptor fd, const dev_t* device)
    {
        struct stat info {};
        std::optional<std::uint64_t> mount;
        listing.failure = !fd.isValid() || !statFolder(fd.get(), info, mount);
        if (listing.failure || (device && info.st_dev != *device))
            return;
        listing.ownAllocation = allocatedBytes(info);
        DIR* dir = fdopendir(fd.get());
        listing.failure = !dir;
        if (listing.failure)
            return;
        listing.state = std::make_unique<State>();
        listing.state->fd = fd.release();
        listing.state->dir.reset(dir);
        listing.state->device = info.st_dev;
        listing.state->inode = info.st_ino;
        listing.state->mount = mount;
    }
};

DirectoryListing::DirectoryListing() = default;
DirectoryListing::~DirectoryListing() = default;
DirectoryListing::DirectoryListing(DirectoryListing&&) noexcept = default;
DirectoryListing& DirectoryListing::operator=(DirectoryListing&&) noexcept = default;

DirectoryListing DirectoryListing::open(const NativeString& path)
{
    DirectoryListing listing;
    State::adopt(listing,
                 posix::FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
                 nullptr);
    return listing;
}

DirectoryListing DirectoryListing::openChild(const NativeString& name) const
{
    return openDescendant({name});
}

DirectoryListing DirectoryListing::openDescendant(const std::vector<NativeStringView>& names) const
{
    if (!state || names.empty())
        return {};
    // The folders on the way are only passed through: O_PATH opens them cheaply.
    const int passFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    posix::FileDescriptor step;
    int from = state->fd;
    for (std::size_t index = 0; index + 1 < names.size() && from >= 0; ++index) {
        step = posix::FileDescriptor(::openat(from, NativeString(names[index]).c_str(), passFlags));
        from = step.get();
    }
    const NativeString last(names.back());
    const int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    DirectoryListing listing;
    State::adopt(listing,
                 posix::FileDescriptor(from >= 0 ? ::openat(from, last.c_str(), flags) : -1),
                 &state->device);
    // A folder that cannot be read still takes its blocks.
    struct stat info {};
    if (listing.failure && from >= 0 &&
        fstatat(from, last.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(info.st_mode))
        listing.ownAllocation = allocatedBytes(info);
    return listing;
}

bool DirectoryListing::isOpen() const
{
    return state != nullptr;
}

std::optional<FolderIdentity> DirectoryListing::identity() const
{
    if (!state)
        return std::nullopt;
    return FolderIdentity{static_cast<std::uint64_t>(state->device),
                          static_cast<std::uint64_t>(state->inode)};
}

std::optional<std::uint64_t> DirectoryListing::mount() const
{
    return state ? state->mount : std::nullopt;
}

bool DirectoryListing::isFolder(const NativeString& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::optional<FolderIdentity> DirectoryListing::identityOf(const NativeString& path)
{
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        return std::nullopt;
    return FolderIdentity{static_cast<std::uint64_t>(info.st_dev),
                          static_cast<std::uint64_t>(info.st_ino)};
}

std::uint64_t DirectoryListing::allocated() const
{
    return ownAllocation;
}

// A walk holds open folders on its way down and ahead of it; let a deep tree
// use every descriptor the system allows this process.
std::size_t DirectoryListing::raiseOpenLimit()
{
    static std::once_flag once;
    std::call_once(once, [] {
        rlimit limit{};
        if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
            limit.rlim_cur = limit.rlim_max;
            setrlimit(RLIMIT_NOFILE, &limit);
        }
    });
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return std::size_t(1) << 20;
    return static_cast<std::size_t>(limit.rlim_cur);
}

bool DirectoryListing::failed() const
{
    return failure;
}

bool DirectoryListing::State::readBatch(bool& failure)
{
    batch.clear();
    nextInBatch = 0;
    while (!ended && batch.size() < batchSize) {
        // readdir tells an error from the end only through errno.
        errno = 0;
        const dirent* found = readdir(dir.get());
        if (!found) {
            failure = failure || errno != 0;
            ended = true;
            break;
        }
        const char* name = found->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        batch.push_back(
            {.name = name, .inode = found->d_ino, .isDirectory = found->d_type == DT_DIR});
    }
    std::vector<Listed*> byInode;
    byInode.reserve(batch.size());
    for (Listed& listed : batch) {
        // A folder's own size and time count nowhere, and what it takes on
        // disk comes with opening it: no need to look at it here.
        if (!listed.isDirectory)
            byInode.push_back(&listed);
    }
    std::sort(byInode.begin(), byInode.end(),
              [](const Listed* one, const Listed* other) { return one->inode < other->inode; });
    for (Listed* listed : byInode) {
        struct stat info {};
        if (fstatat(fd, listed->name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0)
            listed->take(info);
        else
            listed->error = errno;
    }
    if (ended && batch.empty())
        batch.shrink_to_fit();
    return !batch.empty();
}

bool DirectoryListing::next(DirectoryEntry& entry)
{
    if (!state)
        return false;
    for (;;) {
        if (state->nextInBatch == state->batch.size() && !state->readBatch(failure))
            return false;
        Listed& listed = state->batch[state->nextInBatch++];
        // An entry that vanished since the folder was read is not there any
        // more; one that cannot be looked at (a folder that may be listed but
        // not searched) leaves the folder not read in full.
        if (listed.error != 0) {
            failure = failure || listed.error != ENOENT;
            continue;
        }
        entry.name = std::move(listed.name);
        entry.isDirectory = listed.isDirectory;
        entry.size = listed.size;
        entry.lastAccessTime = listed.lastAccessTime;
        entry.allocated = listed.allocated;
        entry.linkedFile = listed.linkedFile;
        return true;
    }
}

} // namespace platform
