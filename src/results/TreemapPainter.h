#pragma once

#include "TreemapLayout.h"

#include <QImage>

// Paints a laid-out map with cushion shading: every level adds a ridge to the
// surface of the rectangles inside it, and the light on that surface makes
// each rectangle look like a cushion and its nesting visible. A file's colour
// is that of its type, or each of the scanned folder's children has a colour
// of its own, lighter with depth; while comparing, a cell's colour is its
// change instead: grown reddish, shrunk greenish, new a strong red, the same
// grey. Safe to run on any thread.
class TreemapPainter {
public:
    enum class Colouring : std::uint8_t { ByType, ByFolder };

    [[nodiscard]] static QImage paint(const std::vector<TreemapLayout::Cell>& cells, QSize size,
                                      Colouring colouring = Colouring::ByType);
    // The colour of a cell, before shading.
    [[nodiscard]] static QColor colourOf(const TreemapLayout::Cell& cell, Colouring colouring);
    // A category's colour; that of files of no category for ScanTree::noCategory.
    [[nodiscard]] static QColor categoryColour(std::uint8_t category);
    // The colour of a branch: a child of the scanned folder and all in it.
    [[nodiscard]] static QColor branchColour(std::uint16_t branch);
    // The colour of a change; none for Normal.
    [[nodiscard]] static QColor tintColour(TreemapLayout::Tint tint);
};
