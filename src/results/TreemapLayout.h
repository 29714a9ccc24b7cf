#pragma once

#include "scan/ScanComparison.h"

#include <QRectF>

#include <cstdint>
#include <vector>

// Places a scan's folders in a rectangle: each folder's subfolders, and one
// block for the files directly in it, share its area in proportion to their
// sizes, by the squarified algorithm (rows of rectangles whose sides stay near
// to each other), inside a small frame so that every level stays visible. A
// block whose rectangle is too small to see is not placed: its area shows as
// its parent's.
class TreemapLayout {
public:
    // What a cell shows: a folder node, or with filesBit the block of the
    // files that sit directly in that folder.
    using Block = std::uint32_t;
    static constexpr Block filesBit = 0x80000000u;
    static constexpr Block none = 0xffffffffu;

    // What a cell's colour tells: which block of the scanned folder it lies
    // in, or while comparing with an older scan, how it changed.
    enum class Tint : std::uint8_t { Branch, Same, Grown, Shrunk, New };

    struct Cell {
        QRectF rect;
        Block block = 0;
        std::int32_t parent = -1; // the parent's cell, -1 for the top one
        bool leaf = true;         // no cell of a child was placed inside it
        std::uint32_t depth = 0;  // below the scanned folder
        // Which block of the scanned folder this one is or lies in: its colour.
        std::uint32_t branch = 0;
        Tint tint = Tint::Branch;
    };

    [[nodiscard]] static bool isFiles(Block block) { return block & filesBit; }
    // The folder of a block: itself, or a files block's folder.
    [[nodiscard]] static ScanTree::Index folderOf(Block block) { return block & ~filesBit; }
    [[nodiscard]] static std::uint64_t sizeOf(const ScanTree& tree, Block block);

    struct Child {
        Block block = 0;
        std::uint64_t size = 0;
        std::uint32_t ordinal = 0; // its place in childrenOf's order
    };
    // A folder's blocks: its shown subfolders, largest first (ties in listing
    // order), then the block of its files when they take anything.
    [[nodiscard]] static std::vector<Child> childrenOf(const ScanTree& tree,
                                                       ScanTree::Index folder);

    // Parents before their children, so that painting in order draws each
    // level over the one above. `top` is the folder shown whole.
    [[nodiscard]] static std::vector<Cell> layout(const ScanTree& tree, ScanTree::Index top,
                                                  const QRectF& area);
    // Tints every cell by its change: a folder's, or that of the files
    // directly in it, those gone included.
    static void tintByChange(std::vector<Cell>& cells, const ScanComparison& comparison);
    // Rectangles for sizes given largest first, filling the area.
    [[nodiscard]] static std::vector<QRectF> squarify(const std::vector<double>& sizes,
                                                      const QRectF& area);

    static constexpr double frame = 2.0;        // pixels between a folder's edge and its content
    static constexpr double smallestSide = 3.0; // pixels; anything narrower is left to its parent

private:
    [[nodiscard]] static Cell topCell(const ScanTree& tree, ScanTree::Index top,
                                      const QRectF& area);
};
