#include "DiskUsageWorkerThread.h"

#include "ScanFile.h"
#include "ScanLog.h"
#include "platform/NativeText.h"

#include <QDir>
#include <QFileInfo>
#include <QTimeZone>

#include <algorithm>

// One folder of the walk, from the moment it is entered until it is finished.
struct DiskUsageWorkerThread::Frame {
    FolderReadAhead::FolderPtr folder;
    Index node = 0;
    std::size_t nextEntry = 0;
    std::size_t nextSubfolder = 0;
    int depth = 0;
    FolderTotals totals;
};

DiskUsageWorkerThread::DiskUsageWorkerThread(QObject* parent, ScanRequest scanRequest)
    : QThread(parent)
    , request(std::move(scanRequest))
{}

DiskUsageWorkerThread::~DiskUsageWorkerThread() = default;

void DiskUsageWorkerThread::setCancel(bool value)
{
    cancel.store(value, std::memory_order_relaxed);
}

ScanResult DiskUsageWorkerThread::takeResult()
{
    return std::move(result);
}

void DiskUsageWorkerThread::run()
{
    result.categories = request.catalogue;
    tally.emplace(result);

    QString name = QFileInfo(request.folder).fileName();
    if (name.isEmpty())
        name = request.folder;
    qCDebug(lcScan).noquote() << "folderName:" << name;
    auto built = std::make_shared<ScanTree>(request.folder, platform::toNative(name));
    tree = built.get();
    result.tree = std::move(built);
    const int readers =
        request.readers > 0 ? request.readers : ScanRequest::readersFor(request.folder);
    qCDebug(lcScan) << "readers:" << readers;
    {
        FolderReadAhead readAhead(request.folder, readers, exclusion(), &entriesListed);
        walk(readAhead);
    }
    tree->keepSharedLinkedFiles();
    // Read ahead but never met (after a cancel) is not scanned.
    entriesListed.store(items, std::memory_order_relaxed);
    result.itemsScanned = items;
    result.host = ScanFile::localHost();
    result.scannedAt =
        QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), QTimeZone::utc());
    emit resultReady();
}

int DiskUsageWorkerThread::itemsScanned() const
{
    return std::max(itemCount.load(std::memory_order_relaxed),
                    entriesListed.load(std::memory_order_relaxed));
}

FolderReadAhead::Exclusion DiskUsageWorkerThread::exclusion() const
{
    qsizetype reach = 0;
    for (const ExcludeEntry& entry : request.exclusions)
        reach = std::max(reach, entry.path.size());
    if (request.excludeOneDrive)
        reach = std::max(reach, request.oneDrivePath.size());
    // Called from the reader threads as well: it reads only the request.
    return {[this](const QString& path) { return isExcluded(path); }, reach};
}

// Depth-first, with the open folders on a stack of their own rather than the
// thread's, so that no tree is too deep to walk.
void DiskUsageWorkerThread::walk(FolderReadAhead& readAhead)
{
    std::vector<Frame> stack;
    stack.push_back(enter(readAhead, readAhead.root(), 0, 0));
    // The scanned folder's own listing gives the count of its subfolders.
    const int subfolders = cancelled() ? 0 : int(stack.back().folder->subfolders.size());
    result.totalSubFolders = subfolders + 1;
    emit updateTotalSubFolder(result.totalSubFolders);

    while (!stack.empty()) {
        Frame& top = stack.back();
        if (!cancelled() && top.nextEntry < top.folder->entries.size()) {
            addEntry(readAhead, stack);
            continue;
        }
        Frame done = std::move(top);
        stack.pop_back();
        finish(done);
        readAhead.release(*done.folder);
        if (stack.empty())
            return done.totals.storeIn(result);
        stack.back().totals.addSubfolder(done.totals);
    }
}

DiskUsageWorkerThread::Frame DiskUsageWorkerThread::enter(FolderReadAhead& readAhead,
                                                          FolderReadAhead::FolderPtr folder,
                                                          Index node, int depth)
{
    if (depth == 1) {
        emit updatePath(tree->path(node));
        emit updateScanProgress();
    }
    readAhead.take(*folder);
    // A folder with more entries than the tree has room for is not read.
    const bool added = addChildren(*folder, node);
    ScanTree::Node& shown = tree->node(node);
    if (folder->failed || !added) {
        shown.flags |= ScanTree::Unreadable;
        result.unreadable.append(tree->path(node));
    }
    if (folder->elsewhere) {
        shown.flags |= ScanTree::Elsewhere;
        result.elsewhere.append(tree->path(node));
    }
    if (folder->loops)
        shown.flags |= ScanTree::Loop;
    shown.ownOnDisk = folder->allocated;
    Frame frame;
    frame.totals.onDisk = folder->allocated;
    frame.folder = std::move(folder);
    frame.node = node;
    frame.depth = depth;
    if (!added)
        frame.nextEntry = frame.folder->entries.size();
    return frame;
}

// Every entry of a folder read becomes a node at once, so that a folder's
// children stand together; the walk then counts them one by one.
bool DiskUsageWorkerThread::addChildren(const FolderReadAhead::Folder& folder, Index node)
{
    if (folder.entries.size() > ScanTree::maxNodes - tree->size())
        return false;
    const Index first = tree->addChildren(node, Index(folder.entries.size()));
    std::size_t subfolder = 0;
    for (std::size_t ordinal = 0; ordinal < folder.entries.size(); ++ordinal) {
        const FolderReadAhead::Entry& entry = folder.entries[ordinal];
        const Index child = first + Index(ordinal);
        tree->setName(child, folder.nameOf(entry));
        ScanTree::Node& added = tree->node(child);
        if (!entry.isDirectory) {
            added.size = entry.size;
            added.onDisk = entry.allocated;
            added.lastAccessTime = entry.lastAccessTime;
            if (entry.linkedFile != 0)
                tree->setLinkedFile(child, entry.linkedFile);
            continue;
        }
        const FolderReadAhead::Folder& met = *folder.subfolders[subfolder++];
        added.flags = ScanTree::Folder;
        if (met.isLink)
            added.flags |= ScanTree::Link;
        if (met.excluded)
            added.flags |= ScanTree::Excluded;
    }
    return true;
}

void DiskUsageWorkerThread::addEntry(FolderReadAhead& readAhead, std::vector<Frame>& stack)
{
    itemCount.store(++items, std::memory_order_relaxed);
    if (request.atEntry)
        request.atEntry(items);
    Frame& frame = stack.back();
    const Index node = tree->node(frame.node).firstChild + Index(frame.nextEntry);
    const FolderReadAhead::Entry& entry = frame.folder->entries[frame.nextEntry++];
    if (!entry.isDirectory) {
        addFile(frame, entry, node);
        return;
    }
    FolderReadAhead::FolderPtr child = std::move(frame.folder->subfolders[frame.nextSubfolder++]);
    if (child->excluded) {
        ++result.excludedFolders;
        if (lcScan().isDebugEnabled() && !inExcludedOneDrive(tree->path(node)))
            qCDebug(lcScan).noquote()
                << "exclude path 1:" << excludingEntry(tree->path(node))->path;
        return;
    }
    ++frame.totals.folders;
    if (cancelled())
        return; // a folder met after a cancel stays empty
    Frame next = enter(readAhead, std::move(child), node, frame.depth + 1);
    stack.push_back(std::move(next)); // invalidates `frame`
}

void DiskUsageWorkerThread::addFile(Frame& frame, const FolderReadAhead::Entry& entry, Index node)
{
    frame.totals.addFile(entry.size, tally->addFile(*tree, node, entry.linkedFile));
}

// Plain string prefixes, compared with case: an excluded D:\Temp also leaves
// out D:\Temporary.
bool DiskUsageWorkerThread::isExcluded(const QString& path) const
{
    return inExcludedOneDrive(path) || excludingEntry(path);
}

bool DiskUsageWorkerThread::inExcludedOneDrive(const QString& path) const
{
    const QString& oneDrive = request.oneDrivePath;
    return request.excludeOneDrive && !oneDrive.isEmpty() && path.startsWith(oneDrive);
}

const ExcludeEntry* DiskUsageWorkerThread::excludingEntry(const QString& path) const
{
    for (const ExcludeEntry& entry : request.exclusions) {
        if (path.startsWith(entry.path))
            return &entry;
    }
    return nullptr;
}

void DiskUsageWorkerThread::finish(Frame& frame)
{
    // A folder left at a cancel keeps only the children counted.
    if (frame.nextEntry < frame.folder->entries.size())
        tree->keepChildren(frame.node, Index(frame.nextEntry));
    ScanTree::Node& node = tree->node(frame.node);
    frame.totals.storeIn(node);
    node.finished = foldersFinished++;
}
