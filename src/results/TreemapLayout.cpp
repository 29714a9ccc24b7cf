#include "TreemapLayout.h"

#include "scan/DiskUsageGlobal.h"

#include <algorithm>
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

std::uint64_t TreemapLayout::sizeOf(const ScanTree& tree, Block block)
{
    if (!isFiles(block))
        return tree.node(block).size;
    const std::vector<Child> children = childrenOf(tree, folderOf(block));
    return !children.empty() && children.back().block == block ? children.back().size : 0;
}

std::vector<TreemapLayout::Child> TreemapLayout::childrenOf(const ScanTree& tree,
                                                            ScanTree::Index folder)
{
    std::vector<Child> children;
    std::uint64_t inSubfolders = 0;
    for (ScanTree::Index child : tree.shownSubfolders(folder)) {
        children.push_back({child, tree.node(child).size, 0});
        DiskUsageGlobal::addSaturating(inSubfolders, tree.node(child).size);
    }
    std::stable_sort(children.begin(), children.end(),
                     [](const Child& a, const Child& b) { return a.size > b.size; });
    const std::uint64_t size = tree.node(folder).size;
    if (size > inSubfolders)
        children.push_back({folder | filesBit, size - inSubfolders, 0});
    for (std::size_t ordinal = 0; ordinal < children.size(); ++ordinal)
        children[ordinal].ordinal = std::uint32_t(ordinal);
    return children;
}

// The top folder's colour and depth are those it has in the whole map.
TreemapLayout::Cell TreemapLayout::topCell(const ScanTree& tree, ScanTree::Index top,
                                           const QRectF& area)
{
    Cell cell{area, top, -1, true, 0, 0, Tint::Branch};
    ScanTree::Index branch = top;
    for (ScanTree::Index above = top; above != 0; above = tree.node(above).parent) {
        ++cell.depth;
        branch = above;
    }
    for (const Child& child : childrenOf(tree, 0)) {
        if (top != 0 && child.block == branch)
            cell.branch = child.ordinal;
    }
    return cell;
}

std::vector<TreemapLayout::Cell> TreemapLayout::layout(const ScanTree& tree, ScanTree::Index top,
                                                       const QRectF& area)
{
    std::vector<Cell> cells;
    if (top >= tree.size() || !tree.node(top).isFolder() || area.isEmpty())
        return cells;
    cells.push_back(topCell(tree, top, area));
    std::vector<double> sizes;
    // Cells are laid out in the order they were placed: breadth first.
    for (std::size_t index = 0; index < cells.size(); ++index) {
        const Cell cell = cells[index];
        const QRectF inner = cell.rect.adjusted(frame, frame, -frame, -frame);
        if (isFiles(cell.block) || inner.width() < smallestSide || inner.height() < smallestSide)
            continue;
        std::vector<Child> order = childrenOf(tree, cell.block);
        // The files block stands among the subfolders by its size.
        std::stable_sort(order.begin(), order.end(),
                         [](const Child& a, const Child& b) { return a.size > b.size; });
        sizes.resize(order.size());
        std::transform(order.begin(), order.end(), sizes.begin(),
                       [](const Child& child) { return double(child.size); });
        const std::vector<QRectF> rects = squarify(sizes, inner);
        for (std::size_t child = 0; child < order.size(); ++child) {
            if (rects[child].width() < smallestSide || rects[child].height() < smallestSide)
                continue;
            const std::uint32_t branch = cell.depth == 0 ? order[child].ordinal : cell.branch;
            cells.push_back({rects[child], order[child].block, std::int32_t(index), true,
                             cell.depth + 1, branch, Tint::Branch});
            cells[index].leaf = false;
        }
    }
    return cells;
}

void TreemapLayout::tintByChange(std::vector<Cell>& cells, const ScanComparison& comparison)
{
    for (Cell& cell : cells) {
        const ScanTree::Index folder = folderOf(cell.block);
        const ScanComparison::Status status = isFiles(cell.block)
                                                  ? comparison.filesChangeOf(folder).status
                                                  : comparison.changeOf(folder).status;
        switch (status) {
        case ScanComparison::Status::Same:
            cell.tint = Tint::Same;
            break;
        case ScanComparison::Status::Grown:
            cell.tint = Tint::Grown;
            break;
        case ScanComparison::Status::Shrunk:
            cell.tint = Tint::Shrunk;
            break;
        case ScanComparison::Status::New:
            cell.tint = Tint::New;
            break;
        }
    }
}
