#include "ScanComparison.h"

#include "DiskUsageGlobal.h"

#include <QStringList>

#include <algorithm>
#include <bit>
#include <functional>
#include <limits>

namespace {

// Past this many unmatched children, a folder's are found by hash, not by a search.
constexpr std::size_t searchedAtMost = 8;

std::int64_t difference(std::uint64_t now, std::uint64_t then)
{
    constexpr auto most = std::uint64_t(std::numeric_limits<std::int64_t>::max());
    if (now >= then)
        return std::int64_t(std::min(now - then, most));
    return -std::int64_t(std::min(then - now, most));
}

std::int64_t signedSize(std::uint64_t size)
{
    return difference(size, 0);
}

std::int64_t filesOf(const ScanTree::Node& node)
{
    return node.isFolder() ? std::int64_t(node.files) : 1;
}

bool counts(const ScanTree::Node& node)
{
    return !(node.flags & ScanTree::Excluded);
}

} // namespace

// Reused from folder to folder, so that matching allocates only as often as
// a folder holds more children than any before it.
struct ScanComparison::Scratch {
    std::vector<std::uint8_t> taken; // by ordinal among the older folder's children
    std::vector<Index> byHash;       // ordinals, by hash of the name
    Index unmatched = 0;
};

ScanComparison::ScanComparison(std::shared_ptr<const ScanTree> older,
                               std::shared_ptr<const ScanTree> newer)
    : before(std::move(older))
    , after(std::move(newer))
    , matches(after->size(), ScanTree::none)
{
    matches[0] = 0;
    Scratch scratch;
    std::vector<Pair> pending{{0, 0}};
    while (!pending.empty()) {
        const Pair folders = pending.back();
        pending.pop_back();
        matchChildren(folders, scratch, pending);
    }
    std::sort(gone.begin(), gone.end(), [](const Gone& a, const Gone& b) {
        return a.folder != b.folder ? a.folder < b.folder : a.entry < b.entry;
    });
}

// A listing of a folder that did not change comes in the same order as
// before: each child is first tried against the older child at its place.
void ScanComparison::matchChildren(const Pair& folders, Scratch& scratch,
                                   std::vector<Pair>& pending)
{
    const ScanTree::Node& now = after->node(folders.newer);
    const ScanTree::Node& then = before->node(folders.older);
    scratch.taken.assign(then.childCount, 0);
    scratch.unmatched = 0;
    for (Index ordinal = 0; ordinal < now.childCount; ++ordinal) {
        const Index child = now.firstChild + ordinal;
        if (ordinal < then.childCount && sameEntry(child, then.firstChild + ordinal))
            take(child, then.firstChild + ordinal, ordinal, scratch);
        else if (counts(after->node(child)))
            ++scratch.unmatched;
    }
    if (scratch.unmatched > 0)
        matchByName(folders, scratch);
    for (Index ordinal = 0; ordinal < then.childCount; ++ordinal) {
        const Index child = then.firstChild + ordinal;
        if (!scratch.taken[ordinal] && counts(before->node(child)))
            gone.push_back({folders.newer, child});
    }
    for (Index ordinal = 0; ordinal < now.childCount; ++ordinal) {
        const Index child = now.firstChild + ordinal;
        if (matches[child] != ScanTree::none && after->node(child).isShownFolder())
            pending.push_back({child, matches[child]});
    }
}

void ScanComparison::matchByName(const Pair& folders, Scratch& scratch)
{
    const ScanTree::Node& now = after->node(folders.newer);
    const ScanTree::Node& then = before->node(folders.older);
    const auto unmatched = [&](Index ordinal) {
        const Index child = now.firstChild + ordinal;
        return matches[child] == ScanTree::none && counts(after->node(child));
    };
    if (scratch.unmatched <= searchedAtMost) {
        for (Index ordinal = 0; ordinal < now.childCount; ++ordinal) {
            if (!unmatched(ordinal))
                continue;
            for (Index older = 0; older < then.childCount; ++older) {
                if (!scratch.taken[older] &&
                    sameEntry(now.firstChild + ordinal, then.firstChild + older)) {
                    take(now.firstChild + ordinal, then.firstChild + older, older, scratch);
                    break;
                }
            }
        }
        return;
    }
    const std::hash<platform::NativeStringView> hash;
    const std::size_t capacity = std::bit_ceil(std::size_t(then.childCount) * 2);
    const std::size_t mask = capacity - 1;
    scratch.byHash.assign(capacity, ScanTree::none);
    for (Index older = 0; older < then.childCount; ++older) {
        if (scratch.taken[older])
            continue;
        std::size_t slot = hash(before->name(then.firstChild + older)) & mask;
        while (scratch.byHash[slot] != ScanTree::none)
            slot = (slot + 1) & mask;
        scratch.byHash[slot] = older;
    }
    for (Index ordinal = 0; ordinal < now.childCount; ++ordinal) {
        if (!unmatched(ordinal))
            continue;
        const Index child = now.firstChild + ordinal;
        for (std::size_t slot = hash(after->name(child)) & mask;
             scratch.byHash[slot] != ScanTree::none; slot = (slot + 1) & mask) {
            const Index older = scratch.byHash[slot];
            if (!scratch.taken[older] && sameEntry(child, then.firstChild + older)) {
                take(child, then.firstChild + older, older, scratch);
                break;
            }
        }
    }
}

void ScanComparison::take(Index newer, Index older, Index ordinal, Scratch& scratch)
{
    matches[newer] = older;
    scratch.taken[ordinal] = 1;
}

bool ScanComparison::sameEntry(Index newer, Index older) const
{
    const ScanTree::Node& now = after->node(newer);
    const ScanTree::Node& then = before->node(older);
    return now.isFolder() == then.isFolder() && counts(now) && counts(then) &&
           after->name(newer) == before->name(older);
}

ScanComparison::Status ScanComparison::statusOf(std::int64_t bytes, std::int64_t files)
{
    if (bytes > 0 || (bytes == 0 && files > 0))
        return Status::Grown;
    if (bytes < 0 || files < 0)
        return Status::Shrunk;
    return Status::Same;
}

ScanComparison::Change ScanComparison::changeOf(Index entry) const
{
    const ScanTree::Node& now = after->node(entry);
    if (!counts(now))
        return {};
    const Index counterpart = matches[entry];
    if (counterpart == ScanTree::none)
        return {signedSize(now.size), filesOf(now), Status::New};
    const ScanTree::Node& then = before->node(counterpart);
    const std::int64_t bytes = difference(now.size, then.size);
    const std::int64_t files = filesOf(now) - filesOf(then);
    return {bytes, files, statusOf(bytes, files)};
}

std::span<const ScanComparison::Gone> ScanComparison::goneFrom(Index folder) const
{
    const auto [first, last] =
        std::equal_range(gone.begin(), gone.end(), Gone{folder, 0},
                         [](const Gone& a, const Gone& b) { return a.folder < b.folder; });
    return {first, last};
}

ScanComparison::Change ScanComparison::goneChangeOf(Index olderEntry) const
{
    const ScanTree::Node& then = before->node(olderEntry);
    return {-signedSize(then.size), -filesOf(then), Status::Shrunk};
}

ScanComparison::Change ScanComparison::filesChangeOf(Index folder) const
{
    const ScanTree::Node& now = after->node(folder);
    Change total;
    for (Index child = now.firstChild; child < now.firstChild + now.childCount; ++child) {
        if (after->node(child).isFolder())
            continue;
        const Change change = changeOf(child);
        total.bytes += change.bytes;
        total.files += change.files;
    }
    for (const Gone& went : goneFrom(folder)) {
        if (before->node(went.entry).isFolder())
            continue;
        const Change change = goneChangeOf(went.entry);
        total.bytes += change.bytes;
        total.files += change.files;
    }
    total.status =
        changeOf(folder).status == Status::New ? Status::New : statusOf(total.bytes, total.files);
    return total;
}

std::vector<ScanTree::Index> ScanComparison::grownChildren(Index folder, std::size_t limit) const
{
    struct Grown {
        Index entry;
        std::int64_t bytes;
    };
    std::vector<Grown> grown;
    const ScanTree::Node& now = after->node(folder);
    for (Index child = now.firstChild; child < now.firstChild + now.childCount; ++child) {
        if (const std::int64_t bytes = changeOf(child).bytes; bytes > 0)
            grown.push_back({child, bytes});
    }
    std::stable_sort(grown.begin(), grown.end(),
                     [](const Grown& a, const Grown& b) { return a.bytes > b.bytes; });
    std::vector<Index> most;
    for (std::size_t rank = 0; rank < grown.size() && rank < limit; ++rank)
        most.push_back(grown[rank].entry);
    return most;
}

// Paths are made only for the folders that may make the list: those that grew
// at least as much as the one at its last place.
std::vector<ScanTree::Index> ScanComparison::grownFolders(std::size_t limit) const
{
    struct Grown {
        std::int64_t bytes;
        Index folder;
        QString path;
    };
    std::vector<Grown> grown;
    std::vector<Index> pending{0};
    while (!pending.empty()) {
        const ScanTree::Node& folder = after->node(pending.back());
        pending.pop_back();
        for (Index child = folder.firstChild; child < folder.firstChild + folder.childCount;
             ++child) {
            if (!after->node(child).isShownFolder())
                continue;
            pending.push_back(child);
            if (const std::int64_t bytes = changeOf(child).bytes; bytes > 0)
                grown.push_back({bytes, child, {}});
        }
    }
    if (limit == 0 || grown.empty())
        return {};
    const auto more = [](const Grown& a, const Grown& b) { return a.bytes > b.bytes; };
    const std::size_t last = std::min(limit, grown.size()) - 1;
    std::nth_element(grown.begin(), grown.begin() + std::ptrdiff_t(last), grown.end(), more);
    const std::int64_t least = grown[last].bytes;
    std::erase_if(grown, [least](const Grown& entry) { return entry.bytes < least; });
    for (Grown& entry : grown)
        entry.path = after->shownPath(entry.folder);
    std::sort(grown.begin(), grown.end(), [](const Grown& a, const Grown& b) {
        return a.bytes != b.bytes ? a.bytes > b.bytes : a.path < b.path;
    });
    std::vector<Index> most;
    for (std::size_t rank = 0; rank < grown.size() && rank < limit; ++rank)
        most.push_back(grown[rank].folder);
    return most;
}

QString ScanComparison::changeText(const Change& change)
{
    const auto sign = [](std::int64_t number) {
        return number < 0 ? QStringLiteral("\u2212") : QStringLiteral("+");
    };
    QStringList parts;
    if (change.bytes != 0) {
        const auto bytes = double(change.bytes < 0 ? -change.bytes : change.bytes);
        parts << sign(change.bytes) + DiskUsageGlobal::sizeText(bytes);
    }
    if (change.files != 0) {
        const std::int64_t files = change.files < 0 ? -change.files : change.files;
        parts << sign(change.files) + QString::number(files) +
                     (files == 1 ? QStringLiteral(" file") : QStringLiteral(" files"));
    }
    return parts.isEmpty() ? QStringLiteral("no change") : parts.join(QStringLiteral(", "));
}
