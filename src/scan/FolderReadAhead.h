#pragma once

#include "platform/DirectoryListing.h"

#include <QString>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

// Lists the folders of a tree ahead of a walk that takes them one at a time,
// depth first, in listing order. Reader threads list what the walk will need
// next: each takes, of the folders known and not yet read, the one the walk
// meets first. The walk takes each folder as it was read, whichever thread
// read it, so the walk's results do not depend on the number of readers. A
// folder the walk needs before any reader has started it is read on the
// walk's thread. What is read but not yet taken is bounded in folders and in
// bytes.
class FolderReadAhead {
public:
    struct Entry {
        std::uint64_t size = 0;
        std::uint64_t lastAccessTime = 0;
        std::uint64_t allocated = 0;
        std::uint64_t linkedFile = 0; // see platform::DirectoryEntry
        std::uint32_t nameOffset = 0;
        std::uint32_t nameLength = 0;
        bool isDirectory = false;
    };

    // A folder and the folders above it, as far as loops are concerned.
    struct Ancestry {
        std::optional<platform::FolderIdentity> identity;
        QString rootPath;            // only the scanned folder's
        platform::NativeString name; // none for the scanned folder
        std::weak_ptr<platform::DirectoryListing> listing;
        std::size_t depth = 0;
        std::uint32_t ordinal = 0; // among its parent's subfolders
        // Where the way down last crossed into another mount (or a link):
        // this folder or the nearest above. Only a folder above it can be
        // the same as this one or one below it in the same mount.
        std::optional<std::uint64_t> mount;
        const Ancestry* crossing = nullptr;
        std::shared_ptr<const Ancestry> parent;

        // Made with free() as the deleter, which lets go of the folders above
        // one at a time: a deep tree's chain would overflow the stack if each
        // freed the next.
        static std::shared_ptr<Ancestry> make();

    private:
        static void free(const Ancestry* ancestry);
    };

    // One folder of the tree. Its name is set when its parent is read; the
    // rest when it is read itself.
    struct Folder {
        platform::NativeString name;
        // Kept only while an exclusion could still match below it (always for
        // the scanned folder): no full path per folder otherwise.
        QString path;
        bool excluded = false; // never read, never entered
        bool isLink = false;
        bool opened = false;
        bool loops = false;          // the same folder as one above it: not entered
        bool failed = false;         // could not be opened, or its reading broke off
        bool elsewhere = false;      // on another file system: shown, not entered
        std::uint64_t allocated = 0; // the folder's own bytes on disk
        std::vector<Entry> entries;
        platform::NativeString names; // every entry's name, one after the other
        // One per folder entry, in listing order. The walk moves each out as
        // it enters it, so that a finished folder is freed at once.
        std::vector<std::shared_ptr<Folder>> subfolders;

        [[nodiscard]] platform::NativeStringView nameOf(const Entry& entry) const
        {
            return platform::NativeStringView(names).substr(entry.nameOffset, entry.nameLength);
        }

    private:
        friend class FolderReadAhead;
        enum State { Waiting, Reading, Read };
        std::atomic<int> state{Waiting};
        // The parent's open listing, to open this one from; let go once open.
        // None when too many listings were open as the parent was read.
        std::shared_ptr<platform::DirectoryListing> parentListing;
        // With the ordinal, where the walk meets the folder. Set before the
        // folder is made known to the readers and never changed after, as
        // readers compare folders by it.
        std::shared_ptr<const Ancestry> parentAncestry;
        std::uint32_t ordinal = 0; // among its parent's subfolders
        std::size_t bytes = 0;
    };
    using FolderPtr = std::shared_ptr<Folder>;
    // Which folders, by their full paths, are left out of the walk: those
    // whose path begins with one of a few prefixes, none of them `reach` or
    // more long, so that no path that long need be made for it.
    struct Exclusion {
        std::function<bool(const QString& path)> excludes;
        qsizetype reach = 0;
    };

    // readers: threads that read ahead; 1 or less reads only on the walk's thread.
    // listed, when given, counts the entries read so far, while they are
    // read, so that a folder of a million entries shows progress before the
    // walk meets the first of them.
    FolderReadAhead(const QString& root, int readers, Exclusion excluded,
                    std::atomic<int>* listed = nullptr);
    ~FolderReadAhead();
    FolderReadAhead(const FolderReadAhead&) = delete;
    FolderReadAhead& operator=(const FolderReadAhead&) = delete;

    [[nodiscard]] FolderPtr root() const { return rootFolder; }
    // Waits until the folder is read, or reads it now; then its entries and
    // subfolders are the walk's.
    void take(Folder& folder);
    // The walk is done with the folder: frees its entries and subfolders, and
    // so makes room for more reading.
    void release(Folder& folder);

private:
    void readerLoop();
    // The next folder to read, once there is room to read it; null when stopping.
    [[nodiscard]] FolderPtr nextToRead();
    void makeKnown(const Folder& folder);
    [[nodiscard]] static bool metLater(const FolderPtr& one, const FolderPtr& other);
    static void free(std::vector<FolderPtr> folders);
    void read(Folder& folder);
    [[nodiscard]] std::shared_ptr<platform::DirectoryListing> open(Folder& folder) const;
    [[nodiscard]] static platform::DirectoryListing reopen(const Folder& folder);
    [[nodiscard]] static bool leadsToAncestor(const Ancestry& folder, bool isLink);
    [[nodiscard]] static QString pathOf(const Ancestry& folder);
    void addSubfolder(Folder& folder, const platform::NativeString& name, bool isLink,
                      const std::shared_ptr<platform::DirectoryListing>& listing,
                      const std::shared_ptr<const Ancestry>& ancestry);
    [[nodiscard]] bool roomToRead() const;

    Exclusion excluded;
    std::atomic<int>* const listed;
    const bool readingAhead;
    // A folder read ahead keeps its listing open until its subfolders are
    // open, so the read-ahead stays well inside the limit on open listings.
    const std::size_t maxFoldersHeld;
    const std::size_t lowFoldersHeld;
    // Beyond this many open listings, a folder's subfolders are opened along
    // their path from a folder above, so that a deep tree with a sibling at
    // every level needs no more descriptors than a shallow one.
    const std::size_t maxListingsOpen;
    // Shared with each listing's deleter.
    std::shared_ptr<std::atomic<std::size_t>> listingsOpen;
    FolderPtr rootFolder;
    std::atomic<bool> stopping{false};
    // Read and not yet released by the walk.
    std::atomic<std::size_t> foldersHeld{0};
    std::atomic<std::size_t> bytesHeld{0};

    // Only the folders waiting to be read, and the readers asleep, go under
    // the lock; the walk waiting for a folder has a lock of its own.
    std::mutex mutex;
    std::condition_variable readerWake;
    // A heap: the folder the walk meets first on top. Folders the walk read
    // itself stay in it until they come to the top.
    std::vector<FolderPtr> pending;
    std::atomic<int> idleReaders{0};
    std::vector<std::thread> readers;
    std::mutex walkMutex;
    std::condition_variable walkWake;
    std::atomic<bool> walkWaiting{false};

    // Where the time goes, for the debug line at the end.
    struct Counters {
        std::atomic<std::uint64_t> readByReaders{0};
        std::atomic<std::uint64_t> readByWalk{0};
        std::atomic<std::uint64_t> walkWaits{0};
        std::atomic<std::uint64_t> walkWaitNanoseconds{0};
        std::atomic<std::uint64_t> readerWaitsForRoom{0};
        std::atomic<std::uint64_t> readerWaitsForWork{0};
    } counters;
};
