#pragma once

#include "TreemapLayout.h"

#include <QImage>

// Paints a laid-out map with cushion shading: every level adds a ridge to the
// surface of the rectangles inside it, and the light on that surface makes
// each rectangle look like a cushion and its nesting visible. Each of the
// scanned folder's children has a colour of its own, lighter with depth;
// while comparing, a cell's colour is its change instead: grown reddish,
// shrunk greenish, new a strong red, the same grey.
// Safe to run on any thread.
class TreemapPainter {
public:
    [[nodiscard]] static QImage paint(const std::vector<TreemapLayout::Cell>& cells, QSize size);
    // The colour of a cell, before shading.
    [[nodiscard]] static QColor colourOf(const TreemapLayout::Cell& cell);

private:
    [[nodiscard]] static QColor baseColourOf(const TreemapLayout::Cell& cell);
};
