#include "FolderReadAhead.h"

#include "platform/NativeText.h"

#include <algorithm>

namespace {

// Enough to keep the readers busy well ahead of the walk, small beside the
// result of a large scan.
constexpr std::size_t maxBytesHeld = 32u << 20;

std::size_t foldersToHold()
{
    return std::clamp<std::size_t>(platform::DirectoryListing::openLimit() / 4, 16, 4096);
}

} // namespace

FolderReadAhead::FolderReadAhead(const QString& root, int readerCount, Exclusion excluded,
                                 std::atomic<int>* listed)
    : excluded(std::move(excluded))
    , listed(listed)
    , readingAhead(readerCount > 1)
    , maxFoldersHeld(foldersToHold())
    , maxListingsOpen(platform::DirectoryListing::openLimit() / 2)
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
    free({std::move(rootFolder)});
}

void FolderReadAhead::take(Folder& folder)
{
    int expected = Folder::Waiting;
    if (folder.state.compare_exchange_strong(expected, Folder::Reading)) {
        read(folder);
        return;
    }
    if (folder.state.load(std::memory_order_acquire) == Folder::Read)
        return;
    std::unique_lock lock(mutex);
    walkWaiting = true;
    walkWake.wait(lock, [&folder] { return folder.state.load() == Folder::Read; });
    walkWaiting = false;
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
    std::lock_guard lock(mutex);
    --foldersHeld;
    bytesHeld -= folder.bytes;
    if (idleReaders > 0)
        readerWake.notify_one();
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
    return foldersHeld < maxFoldersHeld && bytesHeld < maxBytesHeld;
}

void FolderReadAhead::readerLoop()
{
    std::unique_lock lock(mutex);
    for (;;) {
        ++idleReaders;
        readerWake.wait(lock, [this] { return stopping || (!pending.empty() && roomToRead()); });
        --idleReaders;
        if (stopping)
            return;
        FolderPtr next = std::move(pending.back());
        pending.pop_back();
        lock.unlock();
        int expected = Folder::Waiting;
        if (next->state.compare_exchange_strong(expected, Folder::Reading))
            read(*next);
        next.reset();
        lock.lock();
    }
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
    ancestry->mount = listing->mount();
    ancestry->parent = std::move(folder.parentAncestry);
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

    std::lock_guard lock(mutex);
    ++foldersHeld;
    bytesHeld += folder.bytes;
    if (readingAhead) {
        // The first subfolder on top: the walk needs it first.
        for (auto child = folder.subfolders.rbegin(); child != folder.subfolders.rend(); ++child) {
            if (!(*child)->excluded)
                pending.push_back(*child);
        }
        if (idleReaders > 0)
            readerWake.notify_all();
    }
    folder.state.store(Folder::Read, std::memory_order_release);
    if (walkWaiting)
        walkWake.notify_one();
}
