#include "platform/NativeText.h"
#include "results/TreemapLayout.h"
#include "results/TreemapPainter.h"

#include <QtTest>

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

// The cells that stand for folders, not files blocks.
std::vector<Cell> folderCells(const std::vector<Cell>& cells)
{
    std::vector<Cell> folders;
    std::copy_if(cells.begin(), cells.end(), std::back_inserter(folders),
                 [](const Cell& cell) { return !TreemapLayout::isFiles(cell.block); });
    return folders;
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
    QCOMPARE(folderCells(cells).size(), std::size_t(2));
    QCOMPARE(cells.size(), std::size_t(3)); // and the first folder's files
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
    QCOMPARE(folderCells(cells).size(), std::size_t(1 + 8 + 48));
    QVERIFY(cells.size() > 1 + 8 + 48); // and the files of the leaf folders large enough
    for (std::size_t index = 1; index < cells.size(); ++index) {
        const Cell& cell = cells[index];
        const Cell& parent = cells[std::size_t(cell.parent)];
        if (TreemapLayout::isFiles(cell.block))
            QCOMPARE(TreemapLayout::folderOf(cell.block), parent.block);
        else
            QCOMPARE(tree.node(cell.block).parent, parent.block);
        QVERIFY(!parent.leaf);
        const double frame = TreemapLayout::frame;
        QVERIFY(inside(cell.rect, parent.rect.adjusted(frame, frame, -frame, -frame)));
        // Of its parent's inner area, a share as large as its share of the size.
        const QRectF inner = parent.rect.adjusted(frame, frame, -frame, -frame);
        const double share = double(TreemapLayout::sizeOf(tree, cell.block)) /
                             double(TreemapLayout::sizeOf(tree, parent.block));
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
        QVERIFY(cells[index].rect.width() >= TreemapLayout::smallestSide);
        QVERIFY(cells[index].rect.height() >= TreemapLayout::smallestSide);
        QVERIFY(inside(cells[index].rect, area));
    }
}

void TestTreemap::paintingCoversTheMap()
{
    const ScanTree tree = treeOf({30, 20, 10}, {{1, 2}});
    const std::vector<Cell> cells = TreemapLayout::layout(tree, 0, QRectF(0, 0, 120, 80));
    const QImage image = TreemapPainter::paint(cells, QSize(120, 80));
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
