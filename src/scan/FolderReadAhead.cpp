#include "FolderReadAhead.h"

#include "ScanLog.h"
#include "platform/NativeText.h"

#include <algorithm>
#include <chrono>

namespace {

// Enough to keep the readers busy well ahead of the walk, small beside the
// result of a large scan.
constexpr std::size_t maxBytesHeld = 32u << 20;
constexpr std::size_t lowBytesHeld = maxBytesHeld / 4 * 3;

std::size_t foldersToHold()
{
    return std::clamp<std::size_t>(platform::DirectoryListing::raiseOpenLimit() / 4, 16, 4096);
}

} // namespace

FolderReadAhead::FolderReadAhead(const QString& root, int readerCount, Exclusion excluded,
                                 std::atomic<int>* listed)
    : excluded(std::move(excluded))
    , listed(listed)
    , readingAhead(readerCount > 1)
    , maxFoldersHeld(foldersToHold())
    , lowFoldersHeld(maxFoldersHeld / 4 * 3)
    , maxListingsOpen(platform::DirectoryListing::raiseOpenLimit() / 2)
    , listingsOpen(std::make_shared<std::atomic<std::size_t>>(0))
    , rootFolder(std::make_shared<Folder>())
{
    rootFolder->path = root;
    for (int reader = 0; readingAhead && reader < readerCount; ++reader)
        readers.emplace_back(&FolderReadAhead::readerLoop, this);
}

FolderReadAhead::~FolderReadAhead()
{
    {
        std::lock_guard lock(mutex);
        stopping = true;
    }
    readerWake.notify_all();
    for (std::thread& reader : readers)
        reader.join();
    free(std::move(pending));
    free({std::move(rootFolder)});
    qCDebug(lcScan) << "read-ahead readers:" << readers.size()
                    << "read by readers:" << counters.readByReaders.load()
                    << "read by the walk:" << counters.readByWalk.load()
                    << "walk waits:" << counters.walkWaits.load()
                    << "waited ms:" << counters.walkWaitNanoseconds.load() / 1000000
                    << "reader waits for room:" << counters.readerWaitsForRoom.load()
                    << "reader waits for work:" << counters.readerWaitsForWork.load();
}

void FolderReadAhead::take(Folder& folder)
{
    int state = Folder::Waiting;
    if (folder.state.compare_exchange_strong(state, Folder::Reading)) {
        ++counters.readByWalk;
        read(folder);
        return;
    }
    if (state == Folder::Read)
        return;
    const auto start = std::chrono::steady_clock::now();
    {
        std::unique_lock lock(walkMutex);
        walkWaiting = true;
        walkWake.wait(lock, [&folder] { return folder.state.load() == Folder::Read; });
        walkWaiting = false;
    }
    ++counters.walkWaits;
    counters.walkWaitNanoseconds +=
        std::uint64_t(std::chrono::nanoseconds(std::chrono::steady_clock::now() - start).count());
}

void FolderReadAhead::release(Folder& folder)
{
    // Freed outside the lock.
    std::vector<Entry> entries;
    platform::NativeString names;
    std::vector<FolderPtr> subfolders;
    entries.swap(folder.entries);
    names.swap(folder.names);
    subfolders.swap(folder.subfolders);
    free(std::move(subfolders));
    const std::size_t heldBefore = foldersHeld.fetch_sub(1);
    const std::size_t bytesBefore = bytesHeld.fetch_sub(folder.bytes);
    // Readers that found no room wake together once the walk has taken a
    // quarter of what was held, rather than one at each folder.
    const bool roomAgain =
        (heldBefore > lowFoldersHeld && heldBefore - 1 <= lowFoldersHeld) ||
        (bytesBefore > lowBytesHeld && bytesBefore - folder.bytes <= lowBytesHeld);
    // A reader goes to sleep under the lock: taking it once makes sure the
    // wake does not come before the sleep.
    if (roomAgain && idleReaders.load() > 0) {
        {
            std::lock_guard lock(mutex);
        }
        readerWake.notify_all();
    }
}

// Folders read ahead but never entered (after a cancel) hold the folders read
// below them: let go of them one at a time, not one inside the other.
void FolderReadAhead::free(std::vector<FolderPtr> folders)
{
    while (!folders.empty()) {
        FolderPtr last = std::move(folders.back());
        folders.pop_back();
        if (last && last.use_count() == 1) {
            // Its reader filled the subfolders before it marked it read.
            last->state.load(std::memory_order_acquire);
            for (FolderPtr& below : last->subfolders)
                folders.push_back(std::move(below));
        }
    }
}

bool FolderReadAhead::roomToRead() const
{
    return foldersHeld.load() < maxFoldersHeld && bytesHeld.load() < maxBytesHeld;
}

void FolderReadAhead::readerLoop()
{
    while (FolderPtr next = nextToRead()) {
        int expected = Folder::Waiting;
        if (next->state.compare_exchange_strong(expected, Folder::Reading)) {
            ++counters.readByReaders;
            read(*next);
        }
    }
}

// A reader counts itself idle before it looks for room, so that a release
// which makes room after the look sees it and wakes it.
FolderReadAhead::FolderPtr FolderReadAhead::nextToRead()
{
    std::unique_lock lock(mutex);
    ++idleReaders;
    for (;;) {
        // Those the walk read itself are dropped as they come to the top.
        while (!pending.empty() && pending.front()->state.load() != Folder::Waiting) {
            std::pop_heap(pending.begin(), pending.end(), &FolderReadAhead::metLater);
            pending.pop_back();
        }
        if (stopping)
            break;
        if (!pending.empty() && roomToRead()) {
            std::pop_heap(pending.begin(), pending.end(), &FolderReadAhead::metLater);
            FolderPtr next = std::move(pending.back());
            pending.pop_back();
            --idleReaders;
            return next;
        }
        ++(pending.empty() ? counters.readerWaitsForWork : counters.readerWaitsForRoom);
        readerWake.wait(lock);
    }
    --idleReaders;
    return nullptr;
}

// Its subfolders (but those left out) wait to be read; as many readers wake.
void FolderReadAhead::makeKnown(const Folder& folder)
{
    int known = 0;
    {
        std::lock_guard lock(mutex);
        for (const FolderPtr& child : folder.subfolders) {
            if (child->excluded)
                continue;
            pending.push_back(child);
            std::push_heap(pending.begin(), pending.end(), &FolderReadAhead::metLater);
            ++known;
        }
    }
    if (!roomToRead())
        return;
    for (int wake = std::min(known, idleReaders.load()); wake > 0; --wake)
        readerWake.notify_one();
}

// Whether the walk meets `one` after `other`: the ordinals of their folders
// just below the nearest folder above both tell. Only pending folders are
// compared, and their places never change.
bool FolderReadAhead::metLater(const FolderPtr& one, const FolderPtr& other)
{
    const Ancestry* aboveOne = one->parentAncestry.get();
    const Ancestry* aboveOther = other->parentAncestry.get();
    std::uint32_t atOne = one->ordinal;
    std::uint32_t atOther = other->ordinal;
    for (; aboveOne->depth > aboveOther->depth; aboveOne = aboveOne->parent.get())
        atOne = aboveOne->ordinal;
    for (; aboveOther->depth > aboveOne->depth; aboveOther = aboveOther->parent.get())
        atOther = aboveOther->ordinal;
    for (; aboveOne != aboveOther;
         aboveOne = aboveOne->parent.get(), aboveOther = aboveOther->parent.get()) {
        atOne = aboveOne->ordinal;
        atOther = aboveOther->ordinal;
    }
    return atOne > atOther;
}

std::shared_ptr<FolderReadAhead::Ancestry> FolderReadAhead::Ancestry::make()
{
    return {new Ancestry, &Ancestry::free};
}

// Deleting a folder lets go of its parent, which may call this again: that
// call only queues the parent for the loop already running on this thread.
void FolderReadAhead::Ancestry::free(const Ancestry* ancestry)
{
    thread_local std::vector<const Ancestry*>* freeing = nullptr;
    if (freeing) {
        freeing->push_back(ancestry);
        return;
    }
    std::vector<const Ancestry*> queue{ancestry};
    freeing = &queue;
    while (!queue.empty()) {
        const Ancestry* next = queue.back();
        queue.pop_back();
        delete next;
    }
    freeing = nullptr;
}

// Where opening a folder told its identity (Linux), a folder is compared with
// those above its nearest crossing into another mount; elsewhere only a link
// is, and the identities are asked for.
bool FolderReadAhead::leadsToAncestor(const Ancestry& folder, bool isLink)
{
    const auto identityOf = [isLink](const Ancestry& ancestry) {
        return ancestry.identity || !isLink
                   ? ancestry.identity
                   : platform::DirectoryListing::identityOf(platform::toNative(pathOf(ancestry)));
    };
    const std::optional<platform::FolderIdentity> identity = identityOf(folder);
    if (!identity)
        return false;
    for (const Ancestry* above = folder.crossing->parent.get(); above;
         above = above->parent.get()) {
        if (identityOf(*above) == identity)
            return true;
    }
    return false;
}

QString FolderReadAhead::pathOf(const Ancestry& folder)
{
    std::vector<const Ancestry*> chain;
    const Ancestry* root = &folder;
    for (; root->parent; root = root->parent.get())
        chain.push_back(root);
    QString path = root->rootPath;
    for (auto step = chain.rbegin(); step != chain.rend(); ++step)
        path = platform::childPath(path, platform::toQString((*step)->name));
    return path;
}

// From the nearest folder above whose listing is still open, or else from the
// scanned folder's path.
platform::DirectoryListing FolderReadAhead::reopen(const Folder& folder)
{
    std::vector<platform::NativeStringView> names{folder.name};
    for (const Ancestry* above = folder.parentAncestry.get(); above; above = above->parent.get()) {
        const std::shared_ptr<platform::DirectoryListing> open = above->listing.lock();
        if (open || !above->parent) {
            std::reverse(names.begin(), names.end());
            return open ? open->openDescendant(names)
                        : platform::DirectoryListing::open(platform::toNative(above->rootPath))
                              .openDescendant(names);
        }
        names.push_back(above->name);
    }
    return platform::DirectoryListing::open(platform::toNative(folder.path));
}

std::shared_ptr<platform::DirectoryListing> FolderReadAhead::open(Folder& folder) const
{
    platform::DirectoryListing listing =
        folder.parentListing ? folder.parentListing->openChild(folder.name) : reopen(folder);
    folder.parentListing.reset();
    listingsOpen->fetch_add(1);
    return {new platform::DirectoryListing(std::move(listing)),
            [count = listingsOpen](platform::DirectoryListing* open) {
                delete open;
                count->fetch_sub(1);
            }};
}

// A path is made only while an exclusion could still begin it: once a folder's
// path is as long as the longest exclusion, a prefix of a path below it is a
// prefix of its own, and that can hold only for the scanned folder.
void FolderReadAhead::addSubfolder(Folder& folder, const platform::NativeString& name, bool isLink,
                                   const std::shared_ptr<platform::DirectoryListing>& listing,
                                   const std::shared_ptr<const Ancestry>& ancestry)
{
    auto child = std::make_shared<Folder>();
    child->name = name;
    child->ordinal = std::uint32_t(folder.subfolders.size());
    child->isLink = isLink;
    if (!folder.path.isEmpty() && folder.path.size() < excluded.reach) {
        child->path = platform::childPath(folder.path, platform::toQString(name));
        child->excluded = excluded.excludes(child->path);
    } else if (!folder.path.isEmpty() && excluded.reach > 0) {
        child->excluded = excluded.excludes(folder.path);
    }
    if (!child->excluded) {
        child->parentListing = listing;
        child->parentAncestry = ancestry;
    }
    folder.bytes += sizeof(Folder) + name.size() + std::size_t(child->path.size()) * 2;
    folder.subfolders.push_back(std::move(child));
}

void FolderReadAhead::read(Folder& folder)
{
    const std::shared_ptr<platform::DirectoryListing> listing = open(folder);
    const std::size_t depth = folder.parentAncestry ? folder.parentAncestry->depth + 1 : 0;
    auto ancestry = Ancestry::make();
    ancestry->identity = listing->identity();
    ancestry->name = folder.name;
    ancestry->listing = listing;
    ancestry->depth = depth;
    ancestry->ordinal = folder.ordinal;
    ancestry->mount = listing->mount();
    // Copied, not moved: the readers may still be comparing this folder.
    ancestry->parent = folder.parentAncestry;
    const Ancestry* parent = ancestry->parent.get();
    const bool crosses =
        !parent || folder.isLink || !ancestry->mount || ancestry->mount != parent->mount;
    ancestry->crossing = crosses ? ancestry.get() : parent->crossing;
    if (!parent)
        ancestry->rootPath = folder.path;
    // Past half the limit only every sixteenth level keeps its listing open
    // for its subfolders: a folder far below opens from the nearest one kept.
    const std::size_t openNow = listingsOpen->load();
    const bool shareListing =
        openNow <= maxListingsOpen / 2 || (openNow <= maxListingsOpen && depth % 16 == 0);
    // A bind mount or a link back to a folder above would be walked forever.
    folder.loops = listing->isOpen() && leadsToAncestor(*ancestry, folder.isLink);
    if (folder.loops)
        *listing = {};
    folder.opened = listing->isOpen();
    folder.elsewhere = !folder.opened && !listing->failed() && !folder.loops;
    folder.allocated = listing->allocated();
    platform::DirectoryEntry entry;
    int uncounted = 0;
    const auto count = [this, &uncounted] {
        if (listed)
            listed->fetch_add(uncounted, std::memory_order_relaxed);
        uncounted = 0;
    };
    while (!stopping.load(std::memory_order_relaxed) && listing->next(entry)) {
        // Counted in batches: the readers share the counter.
        if (++uncounted == 1024)
            count();
        folder.entries.push_back({entry.size, entry.lastAccessTime, entry.allocated,
                                  entry.linkedFile, static_cast<std::uint32_t>(folder.names.size()),
                                  static_cast<std::uint32_t>(entry.name.size()),
                                  entry.isDirectory});
        folder.names += entry.name;
        if (entry.isDirectory)
            addSubfolder(folder, entry.name, entry.isLink, shareListing ? listing : nullptr,
                         ancestry);
    }
    count();
    folder.failed = listing->failed();
    folder.bytes += folder.entries.capacity() * sizeof(Entry) + folder.names.capacity();

    foldersHeld.fetch_add(1);
    bytesHeld.fetch_add(folder.bytes);
    if (readingAhead)
        makeKnown(folder);
    folder.state.store(Folder::Read);
    // The walk goes to sleep under its lock: taking it once makes sure the
    // wake does not come before the sleep.
    if (walkWaiting.load()) {
        {
            std::lock_guard lock(walkMutex);
        }
        walkWake.notify_one();
    }
}
