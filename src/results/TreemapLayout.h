#pragma once

#include "scan/ScanComparison.h"

#include <QRectF>

#include <array>
#include <cstdint>
#include <vector>

// Places a scan in a rectangle: each folder's subfolders and files share its
// area in proportion to their sizes, by the squarified algorithm (rows of
// rectangles whose sides stay near to each other), inside a small frame so
// that every level stays visible. A file gets a tile of its own when it would
// take a few pixels; a folder's files too small for that share one block. A
// block whose rectangle comes out too thin to see is not placed: its area
// shows as its parent's.
class TreemapLayout {
public:
    // What a cell shows: a folder or a file node, or with filesBit the files
    // of that folder too small for a tile of their own.
    using Block = std::uint32_t;
    static constexpr Block filesBit = 0x80000000u;

    // What a cell's colour tells: its type or the block of the scanned folder
    // it lies in, or while comparing with an older scan, how it changed.
    enum class Tint : std::uint8_t { Normal, Same, Grown, Shrunk, New };

    struct Cell {
        QRectF rect;
        std::uint64_t amount = 0; // the size it stands for, in the measure laid out
        Block block = 0;
        std::int32_t parent = -1; // the parent's cell, -1 for the top one
        std::uint16_t depth = 0;  // below the scanned folder
        // Which block of the scanned folder this one is or lies in.
        std::uint16_t branch = 0;
        // A file's category; for a block of many files, the one holding most bytes.
        std::uint8_t category = ScanTree::noCategory;
        Tint tint = Tint::Normal;
        bool leaf = true; // no cell of a child was placed inside it
    };

    [[nodiscard]] static bool isFiles(Block block) { return block & filesBit; }
    [[nodiscard]] static bool isFolder(const ScanTree& tree, Block block)
    {
        return !isFiles(block) && tree.node(block).isFolder();
    }
    [[nodiscard]] static bool isFile(const ScanTree& tree, Block block)
    {
        return !isFiles(block) && !tree.node(block).isFolder();
    }
    // The node a block stands for; a files block's folder.
    [[nodiscard]] static ScanTree::Index nodeOf(Block block) { return block & ~filesBit; }
    // The folder a block is, or lies directly in.
    [[nodiscard]] static ScanTree::Index folderOf(const ScanTree& tree, Block block);

    struct Child {
        Block block = 0;
        std::uint64_t amount = 0;
        std::uint8_t category = ScanTree::noCategory;
    };
    // A folder's blocks, largest first (ties in listing order): its shown
    // subfolders, the files of at least `smallest`, and the block of the rest
    // of its files when they take anything.
    [[nodiscard]] static std::vector<Child> childrenOf(const ScanTree& tree, ScanTree::Index folder,
                                                       ScanTree::Measure measure,
                                                       std::uint64_t smallest);

    // What a folder holds in its files and subfolders: on disk, less what its
    // own entry takes, which no tile shows.
    [[nodiscard]] static std::uint64_t
    filesAndFoldersOf(const ScanTree& tree, ScanTree::Index folder, ScanTree::Measure measure);
    // The branch of the scanned folder's own files, coloured apart from its folders'.
    static constexpr std::uint16_t ownFilesBranch = 0xffff;

    // A folder's shown subfolders, the largest first (ties in listing order):
    // the scanned folder's give the map's branches their colours in this order.
    [[nodiscard]] static std::vector<ScanTree::Index>
    rankedSubfolders(const ScanTree& tree, ScanTree::Index folder, ScanTree::Measure measure);

    // Parents before their children, so that painting in order draws each
    // level over the one above. `top` is the folder shown whole.
    [[nodiscard]] static std::vector<Cell>
    layout(const ScanTree& tree, ScanTree::Index top, const QRectF& area,
           ScanTree::Measure measure = ScanTree::Measure::Size);
    // Tints every cell by its change: a folder's or a file's own, or for a
    // block of small files that of the files directly in its folder, those
    // gone included.
    static void tintByChange(std::vector<Cell>& cells, const ScanComparison& comparison);
    // Rectangles for sizes given largest first, filling the area.
    [[nodiscard]] static std::vector<QRectF> squarify(const std::vector<double>& sizes,
                                                      const QRectF& area);

    // What each category's files take in the whole scan, in the measure; the
    // files of no category under ScanTree::noCategory.
    using CategoryAmounts = std::array<std::uint64_t, 256>;
    [[nodiscard]] static CategoryAmounts
    categoryAmounts(const ScanTree& tree, ScanTree::Measure measure, ScanTree::Index folder = 0);

    static constexpr double frame = 2.0;        // pixels between a folder's edge and its content
    static constexpr double smallestSide = 3.0; // pixels; a narrower folder is left to its parent
    // Pixels: a file or a block of files narrower than this is left to its
    // folder, and a file whose tile would be smaller than its square has none.
    static constexpr double smallestTile = 2.0;

private:
    struct Placing;
};
