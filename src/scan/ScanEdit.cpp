#include "ScanEdit.h"

#include "ScanTally.h"

#include <optional>
#include <vector>

using Index = ScanTree::Index;

// One application of an edit: walks the old tree as a scan walks the disk,
// folder by folder in listing order, and builds the new one as it goes.
class ScanRebuild {
public:
    ScanRebuild(const ScanEdit& edit, const ScanResult& old);
    ScanResult run();

private:
    struct Frame {
        const ScanTree* source;
        Index from; // the folder in `source`
        Index to;   // the folder in the new tree
        Index nextFrom = 0;
        Index nextTo = 0;
        FolderTotals totals;
    };

    [[nodiscard]] Frame enter(const ScanTree* source, Index from, Index to);
    void copyChildren(Frame& frame);
    [[nodiscard]] bool isRemoved(const ScanTree* source, Index node) const;
    // The next child still there, in `frame.source`; past the end when none is.
    Index skipRemoved(const Frame& frame, Index child) const;
    void step(std::vector<Frame>& stack);
    void finish(const Frame& frame);

    const ScanEdit& edit;
    const ScanResult& old;
    ScanResult result;
    ScanTree* tree = nullptr;
    std::optional<ScanTally> tally;
    int items = 0;
    std::uint32_t foldersFinished = 0;
};

void ScanEdit::remove(Index node)
{
    removed.insert(node);
}

void ScanEdit::replace(Index folder, std::shared_ptr<const ScanTree> rescanned)
{
    replaced[folder] = std::move(rescanned);
}

ScanResult ScanEdit::applyTo(const ScanResult& scan) const
{
    return ScanRebuild(*this, scan).run();
}

ScanRebuild::ScanRebuild(const ScanEdit& applied, const ScanResult& scan)
    : edit(applied)
    , old(scan)
{}

ScanResult ScanRebuild::run()
{
    const ScanTree& before = *old.tree;
    result.categories = old.categories;
    result.host = old.host;
    result.scannedAt = old.scannedAt;
    result.openedFrom = old.openedFrom;
    tally.emplace(result);
    auto built = std::make_shared<ScanTree>(before.rootPath(), before.name(0));
    tree = built.get();
    result.tree = std::move(built);
    tree->node(0).flags = before.node(0).flags;
    tree->node(0).ownOnDisk = before.node(0).ownOnDisk;

    std::vector<Frame> stack{enter(&before, 0, 0)};
    int subfolders = 0;
    for (Index child = 0; child < tree->node(0).childCount; ++child)
        subfolders += tree->node(tree->node(0).firstChild + child).isFolder() ? 1 : 0;
    result.totalSubFolders = subfolders + 1;
    while (!stack.empty())
        step(stack);
    // A file whose other names went is now a file like any other.
    tree->keepSharedLinkedFiles();
    result.itemsScanned = items;
    return std::move(result);
}

ScanRebuild::Frame ScanRebuild::enter(const ScanTree* source, Index from, Index to)
{
    ScanTree::Node& node = tree->node(to);
    if (source == old.tree.get()) {
        const auto replaced = edit.replaced.find(from);
        if (replaced != edit.replaced.end()) {
            source = replaced->second.get();
            from = 0;
            constexpr std::uint8_t read =
                ScanTree::Unreadable | ScanTree::Elsewhere | ScanTree::Loop;
            node.flags = std::uint8_t((node.flags & ~read) | (source->node(0).flags & read));
            node.ownOnDisk = source->node(0).ownOnDisk;
        }
    }
    if (node.flags & ScanTree::Unreadable)
        result.unreadable.append(tree->path(to));
    if (node.flags & ScanTree::Elsewhere)
        result.elsewhere.append(tree->path(to));
    Frame frame{source, from, to, 0, 0, {}};
    frame.totals.onDisk = node.ownOnDisk;
    copyChildren(frame);
    return frame;
}

// A folder's children are added together, as a scan adds them, so that they
// stand side by side in the new tree.
void ScanRebuild::copyChildren(Frame& frame)
{
    const ScanTree& source = *frame.source;
    const ScanTree::Node& folder = source.node(frame.from);
    const Index end = folder.firstChild + folder.childCount;
    Index kept = 0;
    for (Index child = folder.firstChild; child < end; ++child)
        kept += isRemoved(frame.source, child) ? 0 : 1;
    const Index first = tree->addChildren(frame.to, kept);
    Index to = first;
    for (Index from = folder.firstChild; from < end; ++from) {
        if (isRemoved(frame.source, from))
            continue;
        const ScanTree::Node& was = source.node(from);
        ScanTree::Node& copy = tree->node(to);
        copy.size = was.size;
        copy.onDisk = was.onDisk;
        copy.lastAccessTime = was.lastAccessTime; // or, for a folder, what it takes itself
        copy.flags = was.flags;
        tree->setName(to, source.name(from));
        if (const std::uint64_t linked = source.linkedFile(from))
            tree->setLinkedFile(to, linked);
        ++to;
    }
    frame.nextFrom = skipRemoved(frame, folder.firstChild);
    frame.nextTo = first;
}

bool ScanRebuild::isRemoved(const ScanTree* source, Index node) const
{
    return source == old.tree.get() && edit.removed.count(node) != 0;
}

Index ScanRebuild::skipRemoved(const Frame& frame, Index child) const
{
    const ScanTree::Node& folder = frame.source->node(frame.from);
    const Index end = folder.firstChild + folder.childCount;
    while (child < end && isRemoved(frame.source, child))
        ++child;
    return child;
}

// As a scan meets an entry: a file is counted, an excluded folder only
// noted, any other folder entered.
void ScanRebuild::step(std::vector<Frame>& stack)
{
    Frame& frame = stack.back();
    const ScanTree::Node& folder = tree->node(frame.to);
    if (frame.nextTo == folder.firstChild + folder.childCount) {
        const Frame done = frame;
        stack.pop_back();
        finish(done);
        if (stack.empty())
            return;
        stack.back().totals.addSubfolder(done.totals);
        return;
    }
    ++items;
    const Index to = frame.nextTo++;
    const Index from = frame.nextFrom;
    frame.nextFrom = skipRemoved(frame, from + 1);
    const ScanTree::Node& child = tree->node(to);
    if (!child.isFolder()) {
        frame.totals.addFile(child.size, tally->addFile(*tree, to, tree->linkedFile(to)));
    } else if (child.flags & ScanTree::Excluded) {
        ++result.excludedFolders;
    } else {
        ++frame.totals.folders;
        Frame next = enter(frame.source, from, to);
        stack.push_back(std::move(next)); // invalidates `frame`
    }
}

void ScanRebuild::finish(const Frame& frame)
{
    ScanTree::Node& node = tree->node(frame.to);
    frame.totals.storeIn(node);
    node.finished = foldersFinished++;
    if (frame.to == 0)
        frame.totals.storeIn(result);
}
