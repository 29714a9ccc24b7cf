#include "platform/NativeText.h"
#include "results/TreemapLayout.h"
#include "results/TreemapPainter.h"

#include <QtTest>

#include <algorithm>

#include <numeric>
#include <random>

namespace {

using Cell = TreemapLayout::Cell;

// A scan's tree from sizes given directly: children[i] lists node i's
// children, node 0 is the scanned folder. Every node is a folder; one with no
// children holds a file of its size, which the map shows as its files block.
ScanTree treeOf(const std::vector<quint64>& sizes, const std::vector<std::vector<int>>& children)
{
    ScanTree tree(QStringLiteral("/map"), platform::toNative(QStringLiteral("map")));
    std::vector<std::pair<int, ScanTree::Index>> pending{{0, 0}};
    const std::vector<int> none;
    while (!pending.empty()) {
        const auto [given, node] = pending.back();
        pending.pop_back();
        tree.node(node).size = sizes.at(std::size_t(given));
        const std::vector<int>& below =
            std::size_t(given) < children.size() ? children[std::size_t(given)] : none;
        if (below.empty()) {
            const ScanTree::Index file = tree.addChildren(node, 1);
            tree.node(file).size = tree.node(node).size;
            tree.node(node).files = 1;
            continue;
        }
        const ScanTree::Index first = tree.addChildren(node, ScanTree::Index(below.size()));
        for (std::size_t child = 0; child < below.size(); ++child) {
            tree.node(first + ScanTree::Index(child)).flags = ScanTree::Folder;
            tree.node(node).folders += 1;
            pending.emplace_back(below[child], first + ScanTree::Index(child));
        }
    }
    return tree;
}

struct File {
    quint64 size = 0;
    quint64 onDisk = 0;
    std::uint8_t category = ScanTree::noCategory;
};

// The scanned folder holding the files given, and a subfolder holding as
// much again in one file of the category given.
ScanTree filesTree(const std::vector<File>& files, std::uint8_t inSubfolder)
{
    ScanTree tree(QStringLiteral("/map"), platform::toNative(QStringLiteral("map")));
    const ScanTree::Index first = tree.addChildren(0, ScanTree::Index(files.size() + 1));
    const ScanTree::Index folder = first + ScanTree::Index(files.size());
    for (std::size_t index = 0; index < files.size(); ++index) {
        ScanTree::Node& node = tree.node(first + ScanTree::Index(index));
        node.size = files[index].size;
        node.onDisk = files[index].onDisk;
        node.category = files[index].category;
        tree.node(0).size += node.size;
        tree.node(0).onDisk += node.onDisk;
    }
    tree.node(folder).flags = ScanTree::Folder;
    const ScanTree::Index inside = tree.addChildren(folder, 1);
    tree.node(inside).size = tree.node(folder).size = tree.node(0).size;
    tree.node(inside).onDisk = tree.node(folder).onDisk = tree.node(0).onDisk;
    tree.node(inside).category = inSubfolder;
    tree.node(0).size *= 2;
    tree.node(0).onDisk *= 2;
    return tree;
}

bool isFolderCell(const ScanTree& tree, const Cell& cell)
{
    return TreemapLayout::isFolder(tree, cell.block);
}

bool isFileCell(const ScanTree& tree, const Cell& cell)
{
    return TreemapLayout::isFile(tree, cell.block);
}

// The cells that stand for folders, not files.
std::vector<Cell> folderCells(const ScanTree& tree, const std::vector<Cell>& cells)
{
    std::vector<Cell> folders;
    std::copy_if(cells.begin(), cells.end(), std::back_inserter(folders),
                 [&](const Cell& cell) { return isFolderCell(tree, cell); });
    return folders;
}

QRectF innerOf(const Cell& cell)
{
    const double frame = TreemapLayout::frame;
    return cell.rect.adjusted(frame, frame, -frame, -frame);
}

double aspect(const QRectF& rect)
{
    return std::max(rect.width(), rect.height()) / std::min(rect.width(), rect.height());
}

// Sizes of every scale, largest first, as folders of a real tree come.
std::vector<double> mixedSizes(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::lognormal_distribution<double> spread(10, 3);
    std::vector<double> sizes(static_cast<std::size_t>(count));
    for (double& size : sizes)
        size = std::round(spread(random));
    std::sort(sizes.rbegin(), sizes.rend());
    return sizes;
}

// Each size in a strip of its own across the longer side: the layout the
// squarified one improves on.
std::vector<QRectF> sliceAndDice(const std::vector<double>& sizes, const QRectF& area)
{
    const double total = std::accumulate(sizes.begin(), sizes.end(), 0.0);
    std::vector<QRectF> rects;
    double offset = 0;
    for (double size : sizes) {
        const double share = size / total;
        rects.push_back(area.width() >= area.height()
                            ? QRectF(area.left() + offset * area.width(), area.top(),
                                     share * area.width(), area.height())
                            : QRectF(area.left(), area.top() + offset * area.height(), area.width(),
                                     share * area.height()));
        offset += share;
    }
    return rects;
}

bool overlap(const QRectF& a, const QRectF& b)
{
    const QRectF common = a.intersected(b);
    return common.width() > 1e-6 && common.height() > 1e-6;
}

bool inside(const QRectF& inner, const QRectF& outer)
{
    return inner.left() >= outer.left() - 1e-6 && inner.top() >= outer.top() - 1e-6 &&
           inner.right() <= outer.right() + 1e-6 && inner.bottom() <= outer.bottom() + 1e-6;
}

} // namespace

class TestTreemap : public QObject {
    Q_OBJECT

private slots:
    void squarifiedRectanglesFillTheAreaInProportion();
    void squarifiedIsSquarerThanSliceAndDice();
    void zeroSizesGetNoArea();
    void nestedCellsStayInsideTheirParents();
    void aFolderOfAHundredThousandChildren();
    void everyFileLargeEnoughHasATile();
    void spaceOnDiskSizesTheAreasWhenAsked();
    void tilesAreColouredByTheirType();
    void paintingCoversTheMap();
};

void TestTreemap::squarifiedRectanglesFillTheAreaInProportion()
{
    const QRectF area(10, 20, 640, 360);
    const std::vector<double> sizes = mixedSizes(300, 1);
    const std::vector<QRectF> rects = TreemapLayout::squarify(sizes, area);
    const double total = std::accumulate(sizes.begin(), sizes.end(), 0.0);
    double covered = 0;
    for (std::size_t index = 0; index < rects.size(); ++index) {
        const QRectF& rect = rects[index];
        const double expected = sizes[index] / total * area.width() * area.height();
        // Within what a pixel's rounding at each edge could change.
        QVERIFY2(std::abs(rect.width() * rect.height() - expected) <=
                     1e-6 * area.width() * area.height(),
                 qPrintable(QString("rectangle %1").arg(index)));
        QVERIFY(inside(rect, area));
        for (std::size_t other = index + 1; other < rects.size(); ++other)
            QVERIFY2(!overlap(rect, rects[other]),
                     qPrintable(QString("%1 and %2").arg(index).arg(other)));
        covered += rect.width() * rect.height();
    }
    QVERIFY(std::abs(covered - area.width() * area.height()) < 1e-3);
}

void TestTreemap::squarifiedIsSquarerThanSliceAndDice()
{
    const QRectF area(0, 0, 1920, 1080);
    for (unsigned seed : {2u, 3u, 4u}) {
        const std::vector<double> sizes = mixedSizes(60, seed);
        const auto mean = [](const std::vector<QRectF>& rects) {
            double sum = 0;
            for (const QRectF& rect : rects)
                sum += std::log(aspect(rect));
            return sum / double(rects.size());
        };
        const std::vector<QRectF> squarified = TreemapLayout::squarify(sizes, area);
        const std::vector<QRectF> sliced = sliceAndDice(sizes, area);
        QVERIFY(mean(squarified) < mean(sliced) / 4);
        // The largest, which the eye reads first, are near to square.
        QVERIFY(aspect(squarified[0]) < 3);
    }
}

void TestTreemap::zeroSizesGetNoArea()
{
    const std::vector<QRectF> rects = TreemapLayout::squarify({5, 3, 0, 0}, QRectF(0, 0, 80, 10));
    QVERIFY(!rects[0].isEmpty() && !rects[1].isEmpty());
    QVERIFY(rects[2].isEmpty() && rects[3].isEmpty());
    for (const QRectF& rect : TreemapLayout::squarify({0, 0}, QRectF(0, 0, 80, 10)))
        QVERIFY(rect.isEmpty());

    // An empty folder in a tree: no cell, and nothing else goes wrong.
    const ScanTree tree = treeOf({10, 10, 0}, {{1, 2}});
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, QRectF(0, 0, 100, 100));
    QCOMPARE(folderCells(tree, cells).size(), std::size_t(2));
    QCOMPARE(cells.size(), std::size_t(3)); // and the first folder's file
    QVERIFY(TreemapLayout::layout(treeOf({0}, {}), 0, QRectF(0, 0, 10, 10)).size() <= 1);
}

void TestTreemap::nestedCellsStayInsideTheirParents()
{
    // Three levels: the root, eight folders, and six children under each.
    std::vector<quint64> sizes{0};
    std::vector<std::vector<int>> children(1);
    std::mt19937 random(7);
    for (int folder = 0; folder < 8; ++folder) {
        children[0].push_back(int(sizes.size()));
        const int parent = int(sizes.size());
        sizes.push_back(0);
        children.emplace_back();
        for (int leaf = 0; leaf < 6; ++leaf) {
            children.resize(sizes.size() + 1);
            children[std::size_t(parent)].push_back(int(sizes.size()));
            const quint64 size = 1 + random() % 100000;
            sizes.push_back(size);
            sizes[std::size_t(parent)] += size;
        }
        sizes[0] += sizes[std::size_t(parent)];
    }
    const ScanTree tree = treeOf(sizes, children);
    const QRectF area(0, 0, 800, 600);
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, area);
    QCOMPARE(folderCells(tree, cells).size(), std::size_t(1 + 8 + 48));
    QVERIFY(cells.size() > 1 + 8 + 48); // and the files of the leaf folders large enough
    for (std::size_t index = 1; index < cells.size(); ++index) {
        const Cell& cell = cells[index];
        const Cell& parent = cells[std::size_t(cell.parent)];
        QCOMPARE(TreemapLayout::folderOf(tree, cell.block) == cell.block
                     ? tree.node(cell.block).parent
                     : TreemapLayout::folderOf(tree, cell.block),
                 parent.block);
        QVERIFY(!parent.leaf);
        QVERIFY(inside(cell.rect, innerOf(parent)));
        // Of its parent's inner area, a share as large as its share of the size.
        const QRectF inner = innerOf(parent);
        const double share = double(cell.amount) / double(parent.amount);
        QVERIFY(std::abs(cell.rect.width() * cell.rect.height() -
                         share * inner.width() * inner.height()) <
                1e-6 * area.width() * area.height());
        for (std::size_t other = index + 1; other < cells.size(); ++other) {
            if (cells[other].parent == cell.parent)
                QVERIFY(!overlap(cell.rect, cells[other].rect));
        }
    }
}

void TestTreemap::aFolderOfAHundredThousandChildren()
{
    std::vector<quint64> sizes{0};
    std::vector<std::vector<int>> children(1);
    for (int child = 1; child <= 100000; ++child) {
        sizes.push_back(quint64(child % 977 + 1));
        sizes[0] += sizes.back();
        children[0].push_back(child);
    }
    const ScanTree tree = treeOf(sizes, children);
    const QRectF area(0, 0, 1920, 1080);
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, area);
    // Too many to see each: those under a few pixels are left to the folder.
    QVERIFY(cells.size() > 1000 && cells.size() < 2 * 100000 + 1);
    for (std::size_t index = 1; index < cells.size(); ++index) {
        const double side = isFolderCell(tree, cells[index]) ? TreemapLayout::smallestSide
                                                             : TreemapLayout::smallestTile;
        QVERIFY(cells[index].rect.width() >= side);
        QVERIFY(cells[index].rect.height() >= side);
        QVERIFY(inside(cells[index].rect, area));
    }
}

void TestTreemap::everyFileLargeEnoughHasATile()
{
    // 20,000 files of every scale beside a folder of as much.
    std::vector<File> files;
    for (double size : mixedSizes(20000, 5))
        files.push_back({quint64(size) + 1, 0, ScanTree::noCategory});
    std::shuffle(files.begin(), files.end(), std::mt19937(6));
    const ScanTree tree = filesTree(files, 0);
    const QRectF area(0, 0, 1920, 1080);
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, area);
    const QRectF inner = innerOf(cells[0]);
    const double perByte = inner.width() * inner.height() / double(tree.node(0).size);
    quint64 tiled = 0;
    std::size_t tiles = 0;
    std::vector<bool> hasTile(tree.size(), false);
    for (const Cell& cell : cells) {
        if (cell.parent != 0)
            continue;
        QVERIFY(inside(cell.rect, inner));
        // Each tile's area is its size's share, within a pixel's rounding.
        const double expected = double(cell.amount) * perByte;
        QVERIFY2(std::abs(cell.rect.width() * cell.rect.height() - expected) < 1e-6 * expected + 1,
                 qPrintable(QString("block %1").arg(cell.block)));
        if (isFileCell(tree, cell)) {
            QCOMPARE(cell.amount, tree.node(cell.block).size);
            QVERIFY(cell.rect.width() >= TreemapLayout::smallestTile);
            QVERIFY(cell.rect.height() >= TreemapLayout::smallestTile);
            hasTile[cell.block] = true;
            tiled += cell.amount;
            ++tiles;
        }
    }
    QVERIFY(tiles > 1000);
    // The rest of the files share one block that takes just what they take.
    const auto rest = std::find_if(cells.begin(), cells.end(), [](const Cell& cell) {
        return cell.block == (0 | TreemapLayout::filesBit);
    });
    QVERIFY(rest != cells.end());
    QVERIFY(rest->amount + tiled <= tree.node(0).size / 2);
    // A file of the smallest tile or more has one: the rare sliver squarifying
    // makes too thin to see leaves next to nothing uncovered.
    const quint64 uncovered = tree.node(0).size / 2 - tiled - rest->amount;
    QVERIFY2(double(uncovered) < 0.001 * double(tree.node(0).size),
             qPrintable(QString::number(uncovered)));
    const double smallestArea = TreemapLayout::smallestTile * TreemapLayout::smallestTile;
    for (ScanTree::Index file = 1; file <= files.size(); ++file) {
        if (double(tree.node(file).size) * perByte >= 4 * smallestArea)
            QVERIFY2(hasTile[file], qPrintable(QString("file %1").arg(file)));
    }
}

void TestTreemap::spaceOnDiskSizesTheAreasWhenAsked()
{
    // A sparse disk image, large by its size and nothing on disk, beside a
    // small file that is all on disk.
    const ScanTree tree = filesTree({{1'000'000, 0, 4}, {10'000, 10'000, 5}}, 5);
    const QRectF area(0, 0, 400, 300);
    const auto tileOf = [&](const std::vector<Cell>& cells, ScanTree::Index file) {
        const auto found = std::find_if(cells.begin(), cells.end(),
                                        [file](const Cell& cell) { return cell.block == file; });
        return found == cells.end() ? 0.0 : found->rect.width() * found->rect.height();
    };
    const std::vector<Cell> bySize = TreemapLayout::layout(tree, 0, area);
    QVERIFY(tileOf(bySize, 1) > 50 * tileOf(bySize, 2));
    const std::vector<Cell> onDisk =
        TreemapLayout::layout(tree, 0, area, ScanTree::Measure::OnDisk);
    QCOMPARE(tileOf(onDisk, 1), 0.0);
    // The small file and the subfolder's file share the map half and half.
    const double inner = innerOf(onDisk[0]).width() * innerOf(onDisk[0]).height();
    QVERIFY(std::abs(tileOf(onDisk, 2) - inner / 2) < 1);

    const TreemapLayout::CategoryAmounts sizes = TreemapLayout::categoryAmounts(tree, {});
    QCOMPARE(sizes[4], quint64(1'000'000));
    QCOMPARE(sizes[5], quint64(1'020'000));
    const TreemapLayout::CategoryAmounts onDiskAmounts =
        TreemapLayout::categoryAmounts(tree, ScanTree::Measure::OnDisk);
    QCOMPARE(onDiskAmounts[4], quint64(0));
    QCOMPARE(onDiskAmounts[5], quint64(20'000));
}

void TestTreemap::tilesAreColouredByTheirType()
{
    // Three typed files, one of no type, and a subfolder whose one file is a video.
    const ScanTree tree = filesTree({{400, 0, 0}, {300, 0, 5}, {200, 0, 10}, {100, 0, 0xff}}, 10);
    const QSize size(12, 8);
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, QRectF(QPointF(), size * 20));
    const QImage image = TreemapPainter::paint(cells, size * 20);
    std::size_t checked = 0;
    for (const Cell& cell : cells) {
        if (!cell.leaf)
            continue;
        const std::uint8_t expected =
            isFolderCell(tree, cell) ? std::uint8_t(10) : tree.node(cell.block).category;
        QCOMPARE(cell.category, expected);
        const QColor painted = image.pixelColor(cell.rect.center().toPoint());
        const QColor colour = TreemapPainter::categoryColour(expected);
        // Shading makes it lighter or darker, never another hue.
        QCOMPARE(painted.hsvSaturation() == 0, colour.hsvSaturation() == 0);
        if (colour.hsvSaturation() > 0)
            QVERIFY(std::abs(painted.hsvHue() - colour.hsvHue()) <= 2);
        ++checked;
    }
    QCOMPARE(checked, std::size_t(5));
    // Too small to open, the subfolder takes the colour of its one file's type.
    const std::vector<Cell> small = TreemapLayout::layout(tree, 0, QRectF(0, 0, 14, 10));
    const auto closed = std::find_if(small.begin(), small.end(), [&](const Cell& cell) {
        return cell.leaf && isFolderCell(tree, cell);
    });
    QVERIFY(closed != small.end());
    QCOMPARE(closed->category, std::uint8_t(10));
    // Built-in categories have colours of their own.
    QSet<QRgb> colours;
    for (std::uint8_t category = 0; category < 12; ++category)
        colours.insert(TreemapPainter::categoryColour(category).rgb());
    colours.insert(TreemapPainter::categoryColour(ScanTree::noCategory).rgb());
    QCOMPARE(colours.size(), 13);
}

void TestTreemap::paintingCoversTheMap()
{
    const ScanTree tree = treeOf({30, 20, 10}, {{1, 2}});
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, QRectF(0, 0, 120, 80));
    const QImage image =
        TreemapPainter::paint(cells, QSize(120, 80), TreemapPainter::Colouring::ByFolder);
    QCOMPARE(image.size(), QSize(120, 80));
    // The two branches have colours of their own, and their files are shaded: not flat.
    QCOMPARE(cells.size(), std::size_t(5));
    const QColor first = image.pixelColor(cells[3].rect.center().toPoint());
    const QColor second = image.pixelColor(cells[4].rect.center().toPoint());
    QVERIFY(first.hue() != second.hue());
    const QPoint corner = cells[3].rect.topLeft().toPoint() + QPoint(1, 1);
    QVERIFY(image.pixelColor(corner) !=
            image.pixelColor(cells[3].rect.bottomRight().toPoint() - QPoint(1, 1)));
}

QTEST_GUILESS_MAIN(TestTreemap)
#include "tst_treemap.moc"
