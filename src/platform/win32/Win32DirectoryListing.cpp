#include "../DirectoryListing.h"

#include "OwnedHandle.h"

#include <windows.h>

namespace platform {

struct DirectoryListing::State {
    std::wstring path;
    win32::FindHandle find;
    WIN32_FIND_DATAW data{};
    bool pending = false; // data holds FindFirstFileW's entry, not yet returned
};

namespace {

bool isDotOrDotDot(const wchar_t* name)
{
    return (name[0] == L'.' && name[1] == L'\0') ||
           (name[0] == L'.' && name[1] == L'.' && name[2] == L'\0');
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

std::wstring searchPattern(const std::wstring& path)
{
    return systemPath(path) + L"\\*";
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
    // The basic information class leaves out the short 8.3 name, and the large
    // fetch asks for many entries per call: the same entries, fewer round trips.
    state->find = win32::FindHandle(FindFirstFileExW(searchPattern(path).c_str(), FindExInfoBasic,
                                                     &state->data, FindExSearchNameMatch, nullptr,
                                                     FIND_FIRST_EX_LARGE_FETCH));
    DirectoryListing listing;
    if (state->find.isValid()) {
        state->pending = true;
        listing.state = std::move(state);
    } else {
        // A folder with no entry at all (a drive's empty root) is not a failure.
        listing.failure = GetLastError() != ERROR_FILE_NOT_FOUND;
    }
    return listing;
}

DirectoryListing DirectoryListing::openChild(const NativeString& name) const
{
    return state ? open(state->path + L"\\" + name) : DirectoryListing();
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

std::optional<FolderIdentity> DirectoryListing::identityOf(const NativeString& path)
{
    // Backup semantics open a folder; no access is asked for, only its information.
    const win32::FileHandle folder(CreateFileW(
        systemPath(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information{};
    if (!folder.isValid() || !GetFileInformationByHandle(folder.get(), &information))
        return std::nullopt;
    return FolderIdentity{information.dwVolumeSerialNumber,
                          (std::uint64_t{information.nFileIndexHigh} << 32) +
                              information.nFileIndexLow};
}

// Search handles are kernel objects, limited only by memory.
std::size_t DirectoryListing::openLimit()
{
    return std::size_t(1) << 20;
}

bool DirectoryListing::failed() const
{
    return failure;
}

bool DirectoryListing::next(DirectoryEntry& entry)
{
    if (!state)
        return false;
    for (;;) {
        if (!state->pending && !FindNextFileW(state->find.get(), &state->data)) {
            failure = failure || GetLastError() != ERROR_NO_MORE_FILES;
            return false;
        }
        state->pending = false;
        const WIN32_FIND_DATAW& data = state->data;
        if (isDotOrDotDot(data.cFileName))
            continue;
        entry.name.assign(data.cFileName);
        entry.isDirectory = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.isLink = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        entry.size = (std::uint64_t{data.nFileSizeHigh} << 32) + data.nFileSizeLow;
        entry.lastAccessTime = (std::uint64_t{data.ftLastAccessTime.dwHighDateTime} << 32) +
                               data.ftLastAccessTime.dwLowDateTime;
        return true;
    }
}

} // namespace platform
