#pragma once

#include "TreemapTree.h"

#include <QRectF>

#include <cstdint>
#include <vector>

// Places a tree's nodes in a rectangle: each node's children share its area in
// proportion to their sizes, by the squarified algorithm (rows of rectangles
// whose sides stay near to each other), inside a small frame so that every
// level stays visible. A node whose rectangle is too small to see is not
// placed: its area shows as its parent's.
class TreemapLayout {
public:
    struct Cell {
        QRectF rect;
        std::uint32_t node = 0;
        std::int32_t parent = -1; // the parent's cell, -1 for the top one
        bool leaf = true;         // no cell of a child was placed inside it
    };

    // Parents before their children, so that painting in order draws each
    // level over the one above.
    [[nodiscard]] static std::vector<Cell> layout(const TreemapTree& tree, std::uint32_t top,
                                                  const QRectF& area);
    // Rectangles for sizes given largest first, filling the area.
    [[nodiscard]] static std::vector<QRectF> squarify(const std::vector<double>& sizes,
                                                      const QRectF& area);

    static constexpr double frame = 2.0;        // pixels between a folder's edge and its content
    static constexpr double smallestSide = 3.0; // pixels; anything narrower is left to its parent
};
