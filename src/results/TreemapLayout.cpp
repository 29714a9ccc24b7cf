#include "TreemapLayout.h"

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

std::vector<TreemapLayout::Cell> TreemapLayout::layout(const TreemapTree& tree, std::uint32_t top,
                                                       const QRectF& area)
{
    std::vector<Cell> cells;
    if (top >= tree.nodes().size() || area.isEmpty())
        return cells;
    cells.push_back({area, top, -1, true});
    std::vector<std::uint32_t> order;
    std::vector<double> sizes;
    // Cells are laid out in the order they were placed: breadth first.
    for (std::size_t index = 0; index < cells.size(); ++index) {
        const Cell cell = cells[index];
        const TreemapTree::Node& node = tree.nodes()[cell.node];
        const QRectF inner = cell.rect.adjusted(frame, frame, -frame, -frame);
        if (node.childCount == 0 || inner.width() < smallestSide || inner.height() < smallestSide)
            continue;
        order.resize(node.childCount);
        std::iota(order.begin(), order.end(), node.firstChild);
        std::stable_sort(order.begin(), order.end(), [&tree](std::uint32_t a, std::uint32_t b) {
            return tree.nodes()[a].size > tree.nodes()[b].size;
        });
        sizes.resize(order.size());
        std::transform(order.begin(), order.end(), sizes.begin(),
                       [&tree](std::uint32_t child) { return double(tree.nodes()[child].size); });
        const std::vector<QRectF> rects = squarify(sizes, inner);
        for (std::size_t child = 0; child < order.size(); ++child) {
            if (rects[child].width() < smallestSide || rects[child].height() < smallestSide)
                continue;
            cells.push_back({rects[child], order[child], std::int32_t(index), true});
            cells[index].leaf = false;
        }
    }
    return cells;
}
