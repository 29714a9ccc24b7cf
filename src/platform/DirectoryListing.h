#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// File names as the operating system gives them: UTF-16 on Windows, bytes on
// Linux (which need not be valid UTF-8).
#ifdef _WIN32
using NativeString = std::wstring;
#else
using NativeString = std::string;
#endif
using NativeStringView = std::basic_string_view<NativeString::value_type>;

struct DirectoryEntry {
    NativeString name;
    std::uint64_t size = 0; // bytes; 0 for a folder
    // 100-nanosecond ticks since 1601-01-01 UTC, as Windows keeps file times.
    std::uint64_t lastAccessTime = 0;
    // Bytes the file takes on disk: blocks allocated, which a sparse or
    // compressed file has fewer of, and a small file may have none of.
    std::uint64_t allocated = 0;
    // What tells a file of several names (hard links) from others, never 0:
    // on Linux its inode, for a file of more than one name; on Windows, which
    // lists no link count, a number from the volume and its file ID, for every
    // file of an NTFS volume. 0 for a file that is never met twice.
    std::uint64_t linkedFile = 0;
    bool isDirectory = false;
    bool isLink = false; // a junction or directory link, entered as a folder (Windows)
};

// Which folder a path leads to, as the file system knows it: device and inode
// on Linux, volume serial number and file ID on Windows.
struct FolderIdentity {
    std::uint64_t volume = 0;
    std::uint64_t file = 0;
    bool operator==(const FolderIdentity&) const = default;
};

// One folder being listed. Entries come in file-system order, "." and ".."
// left out. A folder that cannot be listed is simply not open.
class DirectoryListing {
public:
    DirectoryListing();
    ~DirectoryListing();
    DirectoryListing(DirectoryListing&&) noexcept;
    DirectoryListing& operator=(DirectoryListing&&) noexcept;

    // The folder at a path as the user gave it.
    [[nodiscard]] static DirectoryListing open(const NativeString& path);
    // A folder met in this listing, opened relative to this one. Links are
    // never followed, and on Linux a folder of another file system is not
    // opened (it is shown, but not entered).
    [[nodiscard]] DirectoryListing openChild(const NativeString& name) const;
    // The folder reached from this one through each name in turn, every step
    // taken as openChild takes it, so that no path grows past the system's
    // limit on its length.
    [[nodiscard]] DirectoryListing openDescendant(const std::vector<NativeStringView>& names) const;

    [[nodiscard]] bool isOpen() const;
    // The open folder's identity, where opening it told it (Linux); none on
    // Windows, where a listing does not open the folder itself.
    [[nodiscard]] std::optional<FolderIdentity> identity() const;
    // The mount the open folder belongs to, where the system tells it
    // (Linux 5.8 on); none elsewhere. A folder can be one of the folders
    // above it only where the way down crosses into another mount.
    [[nodiscard]] std::optional<std::uint64_t> mount() const;
    // The bytes the folder itself takes on disk, where the system told them
    // (Linux, also for a folder met but not readable); 0 elsewhere.
    [[nodiscard]] std::uint64_t allocated() const;
    // Raises the limit on listings this process may hold open at once as far
    // as the system lets it (Linux: the limit on open files), and returns it.
    static std::size_t raiseOpenLimit();
    // Whether a path leads to a folder (following links).
    [[nodiscard]] static bool isFolder(const NativeString& path);
    // Asks the system for the identity of the folder at a path; none when it
    // cannot tell.
    [[nodiscard]] static std::optional<FolderIdentity> identityOf(const NativeString& path);
    // True when the folder could not be opened or its reading broke off. A
    // folder on another file system, which is not entered on purpose, has not
    // failed.
    [[nodiscard]] bool failed() const;
    // False at the end of the listing, or when reading failed.
    bool next(DirectoryEntry& entry);

private:
    struct State;
    std::unique_ptr<State> state;
    bool failure = false;
    std::uint64_t ownAllocation = 0;
};

} // namespace platform
