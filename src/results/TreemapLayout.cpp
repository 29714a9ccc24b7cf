#include "TreemapLayout.h"

#include "scan/DiskUsageGlobal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// The worse aspect ratio in a row of areas laid along a side of the given length.
double worstRatio(double sum, double smallest, double largest, double side)
{
    const double sideSquared = side * side;
    const double sumSquared = sum * sum;
    return std::max(sideSquared * largest / sumSquared, sumSquared / (sideSquared * smallest));
}

// Lays one row of areas along the shorter side of the free area and returns
// what is left of it.
QRectF placeRow(const std::vector<double>& areas, std::size_t begin, std::size_t end,
                double rowArea, const QRectF& free, std::vector<QRectF>& placed)
{
    const bool alongHeight = free.width() >= free.height();
    const double side = alongHeight ? free.height() : free.width();
    const double thickness = side > 0 ? rowArea / side : 0;
    double offset = 0;
    for (std::size_t index = begin; index < end; ++index) {
        const double length = thickness > 0 ? areas[index] / thickness : 0;
        placed[index] = alongHeight ? QRectF(free.left(), free.top() + offset, thickness, length)
                                    : QRectF(free.left() + offset, free.top(), length, thickness);
        offset += length;
    }
    return alongHeight ? free.adjusted(thickness, 0, 0, 0) : free.adjusted(0, thickness, 0, 0);
}

} // namespace

std::vector<QRectF> TreemapLayout::squarify(const std::vector<double>& sizes, const QRectF& area)
{
    std::vector<QRectF> placed(sizes.size());
    const double total = std::accumulate(sizes.begin(), sizes.end(), 0.0);
    if (total <= 0 || area.isEmpty())
        return placed;
    std::vector<double> areas(sizes.size());
    const double scale = area.width() * area.height() / total;
    std::transform(sizes.begin(), sizes.end(), areas.begin(),
                   [scale](double size) { return std::max(size, 0.0) * scale; });
    // Zero sizes, last in the order, get no area at all.
    const auto end = std::size_t(std::find(areas.begin(), areas.end(), 0.0) - areas.begin());
    QRectF free = area;
    std::size_t begin = 0;
    while (begin < end) {
        const double side = std::min(free.width(), free.height());
        double sum = areas[begin];
        std::size_t rowEnd = begin + 1;
        // Add to the row while that makes its worst aspect ratio no worse.
        while (rowEnd < end && worstRatio(sum + areas[rowEnd], areas[rowEnd], areas[begin], side) <=
                                   worstRatio(sum, areas[rowEnd - 1], areas[begin], side)) {
            sum += areas[rowEnd];
            ++rowEnd;
        }
        free = placeRow(areas, begin, rowEnd, sum, free, placed);
        begin = rowEnd;
    }
    return placed;
}

// One layout under way: the cells so far, and what gives the top level its colours.
struct TreemapLayout::Placing {
    const ScanTree& tree;
    ScanTree::Measure measure;
    std::vector<Cell> cells;
    // Of each child of the scanned folder, its place among the subfolders
    // there by size: the colour of its branch. The scanned folder's own
    // files are ownFilesBranch.
    std::vector<std::uint16_t> branches;

    Placing(const ScanTree& scan, ScanTree::Measure by);
    [[nodiscard]] std::uint16_t branchOf(Block block) const;
    [[nodiscard]] Cell topCell(ScanTree::Index top, const QRectF& area) const;
    void placeChildren(std::size_t index);
    void colourFolders();
};

TreemapLayout::Placing::Placing(const ScanTree& scan, ScanTree::Measure by)
    : tree(scan)
    , measure(by)
{
    const ScanTree::Node& root = tree.node(0);
    const std::vector<ScanTree::Index> folders = rankedSubfolders(tree, 0, measure);
    branches.assign(root.childCount, ownFilesBranch);
    for (std::size_t rank = 0; rank < folders.size(); ++rank)
        branches[folders[rank] - root.firstChild] =
            std::uint16_t(std::min<std::size_t>(rank, ownFilesBranch - 1));
}

std::uint16_t TreemapLayout::Placing::branchOf(Block block) const
{
    const ScanTree::Index first = tree.node(0).firstChild;
    if (isFiles(block) || block < first || block - first >= branches.size())
        return ownFilesBranch;
    return branches[block - first];
}

// The top folder's colour and depth are those it has in the whole map.
TreemapLayout::Cell TreemapLayout::Placing::topCell(ScanTree::Index top, const QRectF& area) const
{
    Cell cell;
    cell.rect = area;
    cell.block = top;
    cell.amount = tree.node(top).amount(measure);
    ScanTree::Index branch = top;
    for (ScanTree::Index above = top; above != 0; above = tree.node(above).parent) {
        ++cell.depth;
        branch = above;
    }
    cell.branch = top == 0 ? 0 : branchOf(branch);
    return cell;
}

void TreemapLayout::Placing::placeChildren(std::size_t index)
{
    const Cell cell = cells[index];
    const QRectF inner = cell.rect.adjusted(frame, frame, -frame, -frame);
    if (!isFolder(tree, cell.block) || inner.width() < smallestSide ||
        inner.height() < smallestSide)
        return;
    // A file of less than this would come out under the smallest tile.
    const double perPixel =
        double(std::max<std::uint64_t>(1, cell.amount)) / (inner.width() * inner.height());
    const auto smallest = std::uint64_t(std::ceil(perPixel * smallestTile * smallestTile));
    const std::vector<Child> order = childrenOf(tree, cell.block, measure, smallest);
    std::vector<double> sizes(order.size());
    std::transform(order.begin(), order.end(), sizes.begin(),
                   [](const Child& child) { return double(child.amount); });
    const std::vector<QRectF> rects = squarify(sizes, inner);
    for (std::size_t child = 0; child < order.size(); ++child) {
        const double side = isFolder(tree, order[child].block) ? smallestSide : smallestTile;
        if (rects[child].width() < side || rects[child].height() < side)
            continue;
        Cell placed;
        placed.rect = rects[child];
        placed.amount = order[child].amount;
        placed.block = order[child].block;
        placed.parent = std::int32_t(index);
        placed.depth = std::uint16_t(std::min(0xffff, cell.depth + 1));
        placed.branch = cell.depth == 0 ? branchOf(placed.block) : cell.branch;
        placed.category = order[child].category;
        cells.push_back(placed);
        cells[index].leaf = false;
    }
}

namespace {

std::uint8_t largestOf(const TreemapLayout::CategoryAmounts& amounts)
{
    const auto largest = std::max_element(amounts.begin(), amounts.end());
    return *largest > 0 ? std::uint8_t(largest - amounts.begin()) : ScanTree::noCategory;
}

} // namespace

// A folder shown whole takes the colour of the type that fills most of it.
void TreemapLayout::Placing::colourFolders()
{
    for (Cell& cell : cells) {
        if (cell.leaf && isFolder(tree, cell.block))
            cell.category = largestOf(categoryAmounts(tree, measure, cell.block));
    }
}

std::vector<ScanTree::Index> TreemapLayout::rankedSubfolders(const ScanTree& tree,
                                                             ScanTree::Index folder,
                                                             ScanTree::Measure measure)
{
    std::vector<ScanTree::Index> folders = tree.shownSubfolders(folder);
    std::stable_sort(folders.begin(), folders.end(), [&](ScanTree::Index a, ScanTree::Index b) {
        return tree.node(a).amount(measure) > tree.node(b).amount(measure);
    });
    return folders;
}

ScanTree::Index TreemapLayout::folderOf(const ScanTree& tree, Block block)
{
    return isFile(tree, block) ? tree.node(block).parent : nodeOf(block);
}

std::vector<TreemapLayout::Child> TreemapLayout::childrenOf(const ScanTree& tree,
                                                            ScanTree::Index folder,
                                                            ScanTree::Measure measure,
                                                            std::uint64_t smallest)
{
    std::vector<Child> children;
    CategoryAmounts rest{};
    std::uint64_t placed = 0;
    const ScanTree::Node& parent = tree.node(folder);
    const ScanTree::Index end = parent.firstChild + parent.childCount;
    for (ScanTree::Index child = parent.firstChild; child < end; ++child) {
        const ScanTree::Node& node = tree.node(child);
        const std::uint64_t amount = node.amount(measure);
        if (node.isFolder() && !node.isShownFolder())
            continue;
        if (!node.isFolder() && (amount < smallest || amount == 0)) {
            DiskUsageGlobal::addSaturating(rest[node.category], amount);
            continue;
        }
        children.push_back({child, amount, node.category});
        DiskUsageGlobal::addSaturating(placed, amount);
    }
    std::stable_sort(children.begin(), children.end(),
                     [](const Child& a, const Child& b) { return a.amount > b.amount; });
    const std::uint64_t whole = filesAndFoldersOf(tree, folder, measure);
    if (whole > placed) {
        const Child files{folder | filesBit, whole - placed, largestOf(rest)};
        const auto at =
            std::upper_bound(children.begin(), children.end(), files,
                             [](const Child& a, const Child& b) { return a.amount > b.amount; });
        children.insert(at, files);
    }
    return children;
}

std::uint64_t TreemapLayout::filesAndFoldersOf(const ScanTree& tree, ScanTree::Index folder,
                                               ScanTree::Measure measure)
{
    const ScanTree::Node& node = tree.node(folder);
    const std::uint64_t own = measure == ScanTree::Measure::OnDisk ? node.ownOnDisk : 0;
    return node.amount(measure) - std::min(own, node.amount(measure));
}

TreemapLayout::CategoryAmounts TreemapLayout::categoryAmounts(const ScanTree& tree,
                                                              ScanTree::Measure measure,
                                                              ScanTree::Index folder)
{
    CategoryAmounts amounts{};
    std::vector<ScanTree::Index> pending{folder};
    while (!pending.empty()) {
        const ScanTree::Node& node = tree.node(pending.back());
        pending.pop_back();
        const ScanTree::Index end = node.firstChild + node.childCount;
        for (ScanTree::Index child = node.firstChild; child < end; ++child) {
            const ScanTree::Node& entry = tree.node(child);
            if (entry.isShownFolder())
                pending.push_back(child);
            else if (!entry.isFolder())
                DiskUsageGlobal::addSaturating(amounts[entry.category], entry.amount(measure));
        }
    }
    return amounts;
}

std::vector<TreemapLayout::Cell> TreemapLayout::layout(const ScanTree& tree, ScanTree::Index top,
                                                       const QRectF& area,
                                                       ScanTree::Measure measure)
{
    if (top >= tree.size() || !tree.node(top).isFolder() || area.isEmpty())
        return {};
    Placing placing(tree, measure);
    placing.cells.push_back(placing.topCell(top, area));
    // Cells are laid out in the order they were placed: breadth first.
    for (std::size_t index = 0; index < placing.cells.size(); ++index)
        placing.placeChildren(index);
    placing.colourFolders();
    return std::move(placing.cells);
}

void TreemapLayout::tintByChange(std::vector<Cell>& cells, const ScanComparison& comparison)
{
    using Status = ScanComparison::Status;
    for (Cell& cell : cells) {
        const Status status = isFiles(cell.block)
                                  ? comparison.filesChangeOf(nodeOf(cell.block)).status
                                  : comparison.changeOf(cell.block).status;
        cell.tint = status == Status::Grown    ? Tint::Grown
                    : status == Status::Shrunk ? Tint::Shrunk
                    : status == Status::New    ? Tint::New
                                               : Tint::Same;
    }
}
