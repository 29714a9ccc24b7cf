// The same cases run against each directory-listing backend: real folders on
// Linux, and under Wine the folder-handle listing of real folders.

#include "DirectoryListing.h"
#include "FileTime.h"
#include "MiniTest.h"
#include "Volumes.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace fs = std::filesystem;
using platform::DirectoryEntry;
using platform::DirectoryListing;
using platform::NativeString;

namespace {

// A folder of its own under the system's temporary folder, removed at the end.
struct ScratchFolder {
    fs::path path;
    ScratchFolder()
    {
        const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        path = fs::temp_directory_path() / ("tallyroot-listing-" + std::to_string(stamp));
        fs::create_directories(path);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

void makeFile(const fs::path& path, std::uintmax_t size)
{
    {
        std::ofstream create(path);
    }
    fs::resize_file(path, size);
}

std::map<NativeString, DirectoryEntry> listAll(DirectoryListing listing)
{
    std::map<NativeString, DirectoryEntry> entries;
    DirectoryEntry entry;
    while (listing.next(entry))
        entries[entry.name] = entry;
    return entries;
}

std::uint64_t nowAsFileTime()
{
    const auto unix = std::chrono::system_clock::now().time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(unix).count();
    return static_cast<std::uint64_t>(seconds + 11644473600) * 10000000u;
}

} // namespace

TEST_CASE(listsFilesAndFoldersWithTheirSizes)
{
    ScratchFolder scratch;
    const fs::path unicode = fs::u8path(u8"\u00dcbung \u65e5\u672c");
    makeFile(scratch.path / "empty.txt", 0);
    makeFile(scratch.path / "archive.tar.gz", 12345);
    // Past four gigabytes the size needs both halves of the Windows record.
    makeFile(scratch.path / "big.iso", 5'000'000'123ull);
    makeFile(scratch.path / unicode, 7);
    fs::create_directory(scratch.path / "sub folder; with.dots");
    {
        std::ofstream written(scratch.path / "written.bin", std::ios::binary);
        written << std::string(10000, 'w');
    }

    const auto entries = listAll(DirectoryListing::open(scratch.path.native()));
    CHECK(entries.size() == 6);
    CHECK(entries.count(NativeString(fs::path(".").native())) == 0);
    CHECK(entries.count(NativeString(fs::path("..").native())) == 0);
    CHECK(entries.at(fs::path("empty.txt").native()).size == 0);
    CHECK(entries.at(fs::path("archive.tar.gz").native()).size == 12345);
    CHECK(entries.at(fs::path("big.iso").native()).size == 5'000'000'123ull);
    // What a file takes on disk: whole blocks for what was written, fewer than
    // its length for a file only extended (sparse on Linux, and under Wine).
    const std::uint64_t written = entries.at(fs::path("written.bin").native()).allocated;
    CHECK(written >= 10000 && written % 512 == 0);
    CHECK(entries.at(fs::path("big.iso").native()).allocated < 5'000'000'123ull);
    CHECK(entries.at(unicode.native()).size == 7);
    CHECK(!entries.at(unicode.native()).isDirectory);
    const DirectoryEntry& folder = entries.at(fs::path("sub folder; with.dots").native());
    CHECK(folder.isDirectory);
    CHECK(folder.size == 0);
}

// Two names of one file are told to be one file, two files are not.
TEST_CASE(hardLinkedNamesAreOneFile)
{
    ScratchFolder scratch;
    makeFile(scratch.path / "first", 100);
    makeFile(scratch.path / "other", 100);
    std::error_code error;
    fs::create_hard_link(scratch.path / "first", scratch.path / "second", error);
    CHECK(!error);
    auto entries = listAll(DirectoryListing::open(scratch.path.native()));
    const std::uint64_t first = entries[fs::path("first").native()].linkedFile;
    CHECK(first != 0);
    CHECK(entries[fs::path("second").native()].linkedFile == first);
    CHECK(entries[fs::path("other").native()].linkedFile != first);
}

TEST_CASE(lastAccessIsAFileTime)
{
    ScratchFolder scratch;
    makeFile(scratch.path / "touched", 1);
    const auto entries = listAll(DirectoryListing::open(scratch.path.native()));
    const std::uint64_t now = nowAsFileTime();
    const std::uint64_t twoDays = 2ull * 86400 * 10000000;
    const std::uint64_t accessed = entries.at(fs::path("touched").native()).lastAccessTime;
    CHECK(accessed + twoDays > now);
    CHECK(accessed < now + twoDays);
}

TEST_CASE(childrenOpenRelativeToTheirParent)
{
    ScratchFolder scratch;
    fs::create_directories(scratch.path / "a" / "b");
    makeFile(scratch.path / "a" / "b" / "leaf", 3);
    makeFile(scratch.path / "a" / "file", 1);

    const DirectoryListing root = DirectoryListing::open(scratch.path.native());
    DirectoryListing a = root.openChild(fs::path("a").native());
    CHECK(a.isOpen());
    DirectoryListing b = a.openChild(fs::path("b").native());
    CHECK(b.isOpen());
    const auto leaves = listAll(std::move(b));
    CHECK(leaves.size() == 1);
    CHECK(leaves.count(fs::path("leaf").native()) == 1);

    CHECK(!a.openChild(fs::path("file").native()).isOpen());
    CHECK(!a.openChild(fs::path("missing").native()).isOpen());

    // Several levels down in one call, the same way.
    const NativeString nameA = fs::path("a").native();
    const NativeString nameB = fs::path("b").native();
    CHECK(listAll(root.openDescendant({nameA, nameB})).count(fs::path("leaf").native()) == 1);
    CHECK(!root.openDescendant({nameB, nameA}).isOpen());
    CHECK(!root.openDescendant({nameA, fs::path("file").native()}).isOpen());
}

// A drive handed over as its letter and colon (as the cards hand it) is its
// root, wherever the program's current folder is; "C:" alone would be the
// current folder on drive C.
TEST_CASE(aDriveIsItsRoot)
{
    const std::vector<platform::VolumeRecord> volumes = platform::fixedVolumes();
    CHECK(!volumes.empty());
    if (volumes.empty())
        return;
    const std::wstring& root = volumes.front().rootPath;
    const std::wstring drive = root.size() == 3 && root[1] == L':' ? root.substr(0, 2) : root;
    ScratchFolder scratch;
    makeFile(scratch.path / "only-here", 1);
    const fs::path before = fs::current_path();
    fs::current_path(scratch.path);
    const auto asGiven = listAll(DirectoryListing::open(fs::path(drive).native()));
    fs::current_path(before);
    CHECK(asGiven.count(fs::path("only-here").native()) == 0);
    CHECK(asGiven.size() == listAll(DirectoryListing::open(fs::path(root).native())).size());
    CHECK(DirectoryListing::isFolder(fs::path(drive).native()));
}

TEST_CASE(aMissingFolderIsNotOpen)
{
    ScratchFolder scratch;
    DirectoryListing listing = DirectoryListing::open((scratch.path / "gone").native());
    CHECK(!listing.isOpen());
    DirectoryEntry entry;
    CHECK(!listing.next(entry));
    CHECK(!listing.openChild(fs::path("x").native()).isOpen());
}

TEST_CASE(fileTimesBecomeCalendarFields)
{
    struct Case {
        std::uint64_t ticks;
        platform::CalendarTime expected;
    };
    const Case cases[] = {
        {0, {1601, 1, 1, 0, 0, 0, 0}},
        {116444736000000000ull, {1970, 1, 1, 0, 0, 0, 0}},
        {133536836967890000ull, {2024, 2, 29, 12, 34, 56, 789}},
        {134392718810000000ull, {2026, 11, 16, 3, 4, 41, 0}},
        {2650467743999990000ull, {9999, 12, 31, 23, 59, 59, 999}},
    };
    for (const Case& c : cases) {
        platform::CalendarTime t;
        CHECK(platform::fileTimeToCalendar(c.ticks, t));
        CHECK(t.year == c.expected.year && t.month == c.expected.month && t.day == c.expected.day);
        CHECK(t.hour == c.expected.hour && t.minute == c.expected.minute &&
              t.second == c.expected.second && t.millisecond == c.expected.millisecond);
    }
    platform::CalendarTime unused;
    CHECK(!platform::fileTimeToCalendar(0x8000000000000000ull, unused));
}

int main()
{
    return minitest::runAll("DirectoryListingTest");
}
