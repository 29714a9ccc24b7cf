#include "ScanTree.h"

#include "DiskUsageGlobal.h"

#include "platform/NativeText.h"

#include <QDir>

#include <algorithm>
#include <charconv>
#include <limits>

static_assert(sizeof(ScanTree::Node) == 64, "a node is meant to fill one cache line");

ScanTree::ScanTree(const QString& rootPath, platform::NativeStringView rootName)
    : root(rootPath)
{
    nodes.grow(1);
    nodes[0].flags = Folder;
    setName(0, rootName);
}

ScanTree::Index ScanTree::addChildren(Index folder, Index count)
{
    const auto first = Index(nodes.grow(count));
    for (Index child = first; child < first + count; ++child)
        nodes[child].parent = folder;
    nodes[folder].firstChild = first;
    nodes[folder].childCount = count;
    return first;
}

void ScanTree::setName(Index index, platform::NativeStringView name)
{
    nodes[index].nameOffset = names.add(name);
    nodes[index].nameLength = std::uint16_t(name.size());
}

platform::NativeStringView ScanTree::name(Index index) const
{
    return names.at(nodes[index].nameOffset, nodes[index].nameLength);
}

QString ScanTree::nameText(Index index) const
{
    return platform::toQString(platform::NativeString(name(index)));
}

QString ScanTree::path(Index index) const
{
    std::vector<Index> chain;
    for (Index above = index; above != 0; above = nodes[above].parent)
        chain.push_back(above);
    if (chain.empty())
        return root;
    // The names below the scanned folder are joined as the system gives them
    // and turned into text once.
    const auto separator = platform::NativeString::value_type(QDir::separator().unicode());
    platform::NativeString below;
    for (auto step = chain.rbegin(); step != chain.rend(); ++step) {
        if (!below.empty())
            below += separator;
        below += name(*step);
    }
    return platform::childPath(root, platform::toQString(below));
}

QString ScanTree::shownPath(Index index) const
{
    return index == 0 ? QDir::toNativeSeparators(root) : path(index);
}

// Only the scanned folder's path may end in a separator: below it, a name is
// added after one, in place, so that a deep path is not copied at each level.
void ScanTree::appendChildPath(QString& folderPath, Index child, bool belowRoot) const
{
    if (belowRoot)
        folderPath = platform::childPath(folderPath, nameText(child));
    else
        folderPath.append(QDir::separator()).append(nameText(child));
}

// Either separator may stand in a path on Windows: both are made the system's.
ScanTree::Index ScanTree::locate(const QString& path) const
{
    const QString given = QDir::toNativeSeparators(path);
    const QString base = QDir::toNativeSeparators(root);
    if (!given.startsWith(base))
        return none;
    const QString below = given.mid(base.size());
    const QChar separator = QDir::separator();
    if (!below.isEmpty() && !below.startsWith(separator) && !base.endsWith(separator))
        return none; // "/data/photos" does not lie below "/data/photo"
    Index found = 0;
    for (const QString& step : below.split(separator, Qt::SkipEmptyParts)) {
        const platform::NativeString wanted = platform::toNative(step);
        const Node& folder = nodes[found];
        const Index end = folder.firstChild + folder.childCount;
        Index child = folder.firstChild;
        while (child < end && name(child) != wanted)
            ++child;
        if (child == end)
            return none;
        found = child;
    }
    return found;
}

ScanTree::Index ScanTree::locateNearest(QString path) const
{
    Index found = locate(path);
    while (found == none && path.size() > root.size()) {
        path.truncate(std::max(path.lastIndexOf('/'), path.lastIndexOf(QDir::separator())));
        found = locate(path);
    }
    return found == none ? 0 : found;
}

void ScanTree::setLinkedFile(Index file, std::uint64_t id)
{
    linkedFiles.push_back({file, id});
}

std::uint64_t ScanTree::linkedFile(Index file) const
{
    const auto found =
        std::lower_bound(linkedFiles.begin(), linkedFiles.end(), file,
                         [](const LinkedFile& linked, Index node) { return linked.node < node; });
    return found != linkedFiles.end() && found->node == file ? found->id : 0;
}

// On Windows every file of an NTFS volume has a number, and nearly all are
// alone: keeping them would cost a tree a sixth more.
void ScanTree::keepSharedLinkedFiles()
{
    const auto byId = [](const LinkedFile& a, const LinkedFile& b) {
        return a.id != b.id ? a.id < b.id : a.node < b.node;
    };
    std::sort(linkedFiles.begin(), linkedFiles.end(), byId);
    std::vector<LinkedFile> shared;
    for (std::size_t first = 0, end = 0; first < linkedFiles.size(); first = end) {
        end = first + 1;
        while (end < linkedFiles.size() && linkedFiles[end].id == linkedFiles[first].id)
            ++end;
        if (end - first > 1)
            shared.insert(shared.end(), linkedFiles.begin() + std::ptrdiff_t(first),
                          linkedFiles.begin() + std::ptrdiff_t(end));
    }
    std::sort(shared.begin(), shared.end(),
              [](const LinkedFile& a, const LinkedFile& b) { return a.node < b.node; });
    shared.shrink_to_fit();
    linkedFiles = std::move(shared);
}

std::vector<ScanTree::Index> ScanTree::shownSubfolders(Index folder) const
{
    std::vector<Index> shown;
    const Node& parent = nodes[folder];
    for (Index child = parent.firstChild; child < parent.firstChild + parent.childCount; ++child) {
        if (nodes[child].isShownFolder())
            shown.push_back(child);
    }
    return shown;
}

std::vector<ScanTree::Index> ScanTree::largestChildren(Index folder, std::size_t limit,
                                                       bool filesOnly, Measure measure) const
{
    struct Ranked {
        Index node;
        std::uint64_t size;
    };
    QList<Ranked> ranked;
    const auto offer = [&](Index child) {
        const std::uint64_t size = nodes[child].amount(measure);
        DiskUsageGlobal::offerRanked(ranked, size, qsizetype(limit), [&] {
            return Ranked{child, size};
        });
    };
    const Node& parent = nodes[folder];
    const Index end = parent.firstChild + parent.childCount;
    for (Index child = parent.firstChild; child < end; ++child) {
        if (!nodes[child].isFolder())
            offer(child);
    }
    for (Index child = parent.firstChild; child < end && !filesOnly; ++child) {
        if (nodes[child].isShownFolder())
            offer(child);
    }
    std::vector<Index> largest;
    for (const Ranked& kept : ranked)
        largest.push_back(kept.node);
    return largest;
}

namespace {

void appendNumber(platform::NativeString& text, std::uint64_t number)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    text.append(digits, end);
}

} // namespace

QString ScanTree::childSummary(Index folder, const std::vector<Index>& largest) const
{
    platform::NativeString summary;
    for (Index child : largest) {
        summary += name(child);
        summary += ':';
        appendNumber(summary, nodes[child].size);
        summary += ':';
        summary += nodes[child].isFolder() ? '1' : '0';
        summary += ';';
    }
    appendNumber(summary, shownSubfolders(folder).size());
    return platform::toQString(summary);
}

double ScanTree::percentage(Index index, Measure measure) const
{
    if (index == 0)
        return 100.0;
    return percentage(nodes[index].amount(measure), nodes[nodes[index].parent].amount(measure));
}

double ScanTree::percentage(std::uint64_t child, std::uint64_t parent)
{
    if (child == 0)
        return 0.0;
    // Beyond a hundredth of the largest size, child * 100 would wrap.
    constexpr std::uint64_t exact = std::numeric_limits<std::uint64_t>::max() / 100;
    const double share = child <= exact ? double(child * 100) / double(parent)
                                        : double(child) * 100.0 / double(parent);
    return static_cast<std::int32_t>(share * 100.0) / 100.0;
}

std::uint64_t ScanTree::Names::add(platform::NativeStringView name)
{
    constexpr std::size_t chunkSize = std::size_t(1) << chunkBits;
    // A name never straddles two chunks.
    if (chunks.empty() || usedInLast + name.size() > chunkSize) {
        chunks.emplace_back(new platform::NativeString::value_type[chunkSize]);
        usedInLast = 0;
    }
    std::copy(name.begin(), name.end(), &chunks.back()[usedInLast]);
    const std::uint64_t offset = ((chunks.size() - 1) << chunkBits) + usedInLast;
    usedInLast += name.size();
    return offset;
}

platform::NativeStringView ScanTree::Names::at(std::uint64_t offset, std::size_t length) const
{
    constexpr std::uint64_t chunkSize = std::uint64_t(1) << chunkBits;
    return {&chunks[offset >> chunkBits][offset & (chunkSize - 1)], length};
}
