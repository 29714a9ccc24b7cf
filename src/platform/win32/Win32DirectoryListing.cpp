#include "../DirectoryListing.h"

#include "OwnedHandle.h"

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>

namespace platform {

// The folder is opened as a handle and read in large batches of entries that
// carry each file's allocation as well as its size. A listing read to its end
// lets go of the handle and the batch: it may stay open a long while for its
// subfolders, which open by path.
struct DirectoryListing::State {
    static constexpr DWORD bufferBytes = 256 * 1024;
    std::wstring path;
    win32::FileHandle folder;
    // Mixed into each file ID where the volume's file IDs name one file each
    // (NTFS); 0 elsewhere, where files are not told apart by their IDs.
    std::uint64_t volumeKey = 0;
    // 8-byte aligned, as the records in it are.
    std::unique_ptr<std::uint64_t[]> buffer{new std::uint64_t[bufferBytes / 8]};
    const FILE_ID_BOTH_DIR_INFO* record = nullptr; // the next to return; none: read a batch

    // False at the end of the listing, or when reading failed.
    bool readBatch()
    {
        if (buffer && GetFileInformationByHandleEx(folder.get(), FileIdBothDirectoryInfo,
                                                   buffer.get(), bufferBytes)) {
            record = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(buffer.get());
            return true;
        }
        const DWORD error = buffer ? GetLastError() : ERROR_NO_MORE_FILES;
        buffer.reset();
        folder = {};
        SetLastError(error);
        return false;
    }
    // The record after the current one, or none when the batch is done.
    void advance()
    {
        record = record->NextEntryOffset == 0
                     ? nullptr
                     : reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(
                           reinterpret_cast<const char*>(record) + record->NextEntryOffset);
    }
};

namespace {

bool isDotOrDotDot(const std::wstring& name)
{
    return name == L"." || name == L"..";
}

bool isSeparator(wchar_t c)
{
    return c == L'\\' || c == L'/';
}

// Past MAX_PATH a path only works in its extended form: \\?\C:\... for a drive
// path, \\?\UNC\server\share\... for a share. That form takes no forward
// slashes and no doubled separators.
std::wstring systemPath(const std::wstring& path)
{
    // "C:" alone is the current folder on drive C; a drive is meant whole.
    if (path.size() == 2 && path[1] == L':')
        return path + L'\\';
    const bool drivePath = path.size() >= 2 && path[1] == L':';
    const bool sharePath =
        path.size() > 2 && isSeparator(path[0]) && isSeparator(path[1]) && path[2] != L'?';
    if (path.size() + 2 < MAX_PATH || !(drivePath || sharePath))
        return path;
    std::wstring extended = sharePath ? L"\\\\?\\UNC\\" : L"\\\\?\\";
    for (wchar_t c : sharePath ? path.substr(2) : path) {
        if (c == L'/')
            c = L'\\';
        if (c != L'\\' || extended.back() != L'\\')
            extended += c;
    }
    return extended;
}

// A number for the volume of an open folder, never 0, when its file IDs name
// one file each: NTFS, whose IDs are the file's own record. Others (FAT's are
// made up from the place of a name, ReFS's do not fit 64 bits) give 0.
// The file system is asked once a volume.
std::uint64_t volumeKeyOf(HANDLE folder)
{
    static std::mutex mutex;
    static std::map<DWORD, bool> uniqueIds;
    BY_HANDLE_FILE_INFORMATION information{};
    if (!GetFileInformationByHandle(folder, &information))
        return 0;
    const DWORD serial = information.dwVolumeSerialNumber;
    std::lock_guard lock(mutex);
    auto known = uniqueIds.find(serial);
    if (known == uniqueIds.end()) {
        wchar_t fileSystem[MAX_PATH + 1] = {};
        const bool ntfs = GetVolumeInformationByHandleW(folder, nullptr, 0, nullptr, nullptr,
                                                        nullptr, fileSystem, MAX_PATH + 1) &&
                          std::wstring(fileSystem) == L"NTFS";
        known = uniqueIds.emplace(serial, ntfs).first;
    }
    return known->second ? (std::uint64_t{serial} | 1u) * 0x9e3779b97f4a7c15ull : 0;
}

// Backup semantics open a folder as a handle.
win32::FileHandle openFolder(const std::wstring& path, DWORD access)
{
    return win32::FileHandle(CreateFileW(
        systemPath(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

} // namespace

DirectoryListing::DirectoryListing() = default;
DirectoryListing::~DirectoryListing() = default;
DirectoryListing::DirectoryListing(DirectoryListing&&) noexcept = default;
DirectoryListing& DirectoryListing::operator=(DirectoryListing&&) noexcept = default;

DirectoryListing DirectoryListing::open(const NativeString& path)
{
    auto state = std::make_unique<State>();
    state->path = path;
    state->folder = openFolder(path, FILE_LIST_DIRECTORY);
    if (state->folder.isValid())
        state->volumeKey = volumeKeyOf(state->folder.get());
    DirectoryListing listing;
    // The first batch tells a folder from a file, which opens all the same; a
    // folder with nothing in it at all (a drive's empty root) has no batch.
    if (state->folder.isValid() && (state->readBatch() || GetLastError() == ERROR_NO_MORE_FILES))
        listing.state = std::move(state);
    else
        listing.failure = true;
    return listing;
}

DirectoryListing DirectoryListing::openChild(const NativeString& name) const
{
    return openDescendant({name});
}

DirectoryListing DirectoryListing::openDescendant(const std::vector<NativeStringView>& names) const
{
    if (!state)
        return {};
    std::wstring path = state->path;
    for (NativeStringView name : names)
        path.append(L"\\").append(name);
    return open(path);
}

bool DirectoryListing::isOpen() const
{
    return state != nullptr;
}

std::optional<FolderIdentity> DirectoryListing::identity() const
{
    return std::nullopt;
}

std::optional<std::uint64_t> DirectoryListing::mount() const
{
    return std::nullopt;
}

bool DirectoryListing::isFolder(const NativeString& path)
{
    const DWORD attributes = GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::optional<FolderIdentity> DirectoryListing::identityOf(const NativeString& path)
{
    // No access is asked for, only the folder's information.
    const win32::FileHandle folder = openFolder(path, 0);
    BY_HANDLE_FILE_INFORMATION information{};
    if (!folder.isValid() || !GetFileInformationByHandle(folder.get(), &information))
        return std::nullopt;
    return FolderIdentity{information.dwVolumeSerialNumber,
                          (std::uint64_t{information.nFileIndexHigh} << 32) +
                              information.nFileIndexLow};
}

// Folder handles are kernel objects, limited only by memory.
std::size_t DirectoryListing::raiseOpenLimit()
{
    return std::size_t(1) << 20;
}

std::uint64_t DirectoryListing::allocated() const
{
    return ownAllocation;
}

bool DirectoryListing::failed() const
{
    return failure;
}

bool DirectoryListing::next(DirectoryEntry& entry)
{
    if (!state)
        return false;
    for (;; state->advance()) {
        if (!state->record && !state->readBatch()) {
            failure = failure || GetLastError() != ERROR_NO_MORE_FILES;
            return false;
        }
        const FILE_ID_BOTH_DIR_INFO& data = *state->record;
        entry.name.assign(data.FileName, data.FileNameLength / sizeof(wchar_t));
        if (isDotOrDotDot(entry.name))
            continue;
        entry.isDirectory = (data.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.isLink = (data.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        entry.size = entry.isDirectory ? 0 : std::uint64_t(data.EndOfFile.QuadPart);
        entry.allocated = entry.isDirectory ? 0 : std::uint64_t(data.AllocationSize.QuadPart);
        // The listing has no link count: every file of a volume whose IDs tell
        // files apart is a candidate.
        const auto fileId = std::uint64_t(data.FileId.QuadPart);
        entry.linkedFile = entry.isDirectory || state->volumeKey == 0 || fileId == 0
                               ? 0
                               : fileId ^ state->volumeKey;
        entry.lastAccessTime = std::uint64_t(data.LastAccessTime.QuadPart);
        state->advance();
        return true;
    }
}

} // namespace platform
