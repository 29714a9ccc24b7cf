#include "TreemapView.h"

#include "TreemapPainter.h"
#include "scan/DiskUsageGlobal.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QThreadPool>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int resizePauseMs = 150;
constexpr int filesInToolTip = 5;

} // namespace

struct TreemapView::Render {
    QImage image;
    std::vector<TreemapLayout::Cell> cells;
    std::uint64_t generation = 0;
    bool counting = false; // the category amounts are wanted too
    TreemapLayout::CategoryAmounts amounts{};
};

TreemapView::TreemapView(QWidget* parent)
    : QWidget(parent)
    , handOff(this)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 150);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resizePause.setSingleShot(true);
    resizePause.setInterval(resizePauseMs);
    connect(&resizePause, &QTimer::timeout, this, &TreemapView::render);
}

TreemapView::~TreemapView() = default;

void TreemapView::setSource(std::shared_ptr<const ScanTree> source)
{
    clear();
    tree = std::move(source);
    if (isVisible())
        render();
    if (tree)
        emit zoomChanged(tree->shownPath(0));
}

// The picture shown stays until the new one is painted; what it points at,
// by the old tree's numbers, goes at once.
void TreemapView::follow(std::shared_ptr<const ScanTree> changed)
{
    const QString place = tree ? tree->path(top) : QString();
    tree = std::move(changed);
    if (!tree)
        return clear();
    if (changes && changes->newerTree() != tree)
        changes.reset();
    cells.clear();
    highlighted = ScanTree::none;
    chosen = ScanTree::none;
    amountsCounted = false;
    ++generation;
    // A refresh may have put a file where the folder shown was.
    top = tree->locateNearest(place);
    while (top != 0 && !tree->node(top).isFolder())
        top = tree->node(top).parent;
    if (isVisible())
        render();
    else
        image = QImage();
    emit zoomChanged(tree->shownPath(top));
}

void TreemapView::showChanges(std::shared_ptr<const ScanComparison> comparison)
{
    changes = comparison && comparison->newerTree() == tree ? std::move(comparison) : nullptr;
    redraw();
}

void TreemapView::setMeasure(ScanTree::Measure measure)
{
    if (measure == measuredBy)
        return;
    measuredBy = measure;
    amountsCounted = false;
    redraw();
}

void TreemapView::setColouring(TreemapPainter::Colouring colouring)
{
    if (colouring == colouredBy)
        return;
    colouredBy = colouring;
    redraw();
}

void TreemapView::redraw()
{
    if (!tree)
        return;
    if (isVisible())
        return render();
    image = QImage();
    ++generation; // a picture under way is of what was asked before
}

void TreemapView::clear()
{
    tree.reset();
    changes.reset();
    image = QImage();
    cells.clear();
    cells.shrink_to_fit();
    top = 0;
    highlighted = ScanTree::none;
    chosen = ScanTree::none;
    amounts = {};
    amountsCounted = false;
    ++generation; // a picture still being painted is not wanted any more
    resizePause.stop();
    update();
}

void TreemapView::render()
{
    if (!tree || size().isEmpty())
        return;
    auto done = std::make_shared<Render>();
    done->generation = ++generation;
    done->counting = !amountsCounted;
    QThreadPool::globalInstance()->start([done, map = tree, compared = changes, from = top,
                                          area = size(), measure = measuredBy,
                                          colouring = colouredBy, to = handOff.sender()] {
        if (done->counting)
            done->amounts = TreemapLayout::categoryAmounts(*map, measure);
        done->cells = TreemapLayout::layout(*map, from, QRectF(QPointF(0, 0), area), measure);
        if (compared)
            TreemapLayout::tintByChange(done->cells, *compared);
        done->image = TreemapPainter::paint(done->cells, area, colouring);
        to.send([done](TreemapView* view) { view->takeRender(done); });
    });
}

void TreemapView::takeRender(const std::shared_ptr<Render>& done)
{
    if (done->generation != generation)
        return;
    image = std::move(done->image);
    cells = std::move(done->cells);
    if (done->counting) {
        amounts = done->amounts;
        amountsCounted = true;
        emit categoryAmountsChanged();
    }
    update();
    emit rendered();
}

void TreemapView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (tree && image.isNull())
        render();
}

void TreemapView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (tree)
        resizePause.start();
}

void TreemapView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (image.isNull()) {
        painter.fillRect(rect(), palette().window());
        return;
    }
    // Until the picture for a new size is ready, the old one stretches.
    painter.drawImage(rect(), image);
    const QRectF outline = rectOf(highlighted).adjusted(1, 1, -1, -1);
    if (outline.isEmpty())
        return;
    painter.setPen(QPen(Qt::white, 2));
    painter.drawRect(outline);
    painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    painter.drawRect(outline);
}

QRectF TreemapView::rectOf(ScanTree::Index node) const
{
    if (!tree || node >= tree->size() || image.size() != size())
        return {};
    for (; node != ScanTree::none; node = tree->node(node).parent) {
        const auto found = std::find_if(cells.begin(), cells.end(),
                                        [node](const auto& cell) { return cell.block == node; });
        if (found != cells.end())
            return found->rect;
    }
    return {};
}

ScanTree::Index TreemapView::chosenNode() const
{
    const bool drawn = chosen != ScanTree::none && image.size() == size() &&
                       std::any_of(cells.begin(), cells.end(),
                                   [this](const auto& cell) { return cell.block == chosen; });
    return drawn ? chosen : ScanTree::none;
}

int TreemapView::cellAt(const QPoint& point) const
{
    if (image.size() != size())
        return -1;
    // Children come after their parents: the last cell that holds the point is the deepest.
    for (auto cell = cells.rbegin(); cell != cells.rend(); ++cell) {
        if (cell->rect.contains(point))
            return int(cells.rend() - cell) - 1;
    }
    return -1;
}

void TreemapView::mousePressEvent(QMouseEvent* event)
{
    const int cell = cellAt(event->position().toPoint());
    // A right click chooses too: the context menu acts on what it points at.
    const bool choosing = event->button() == Qt::LeftButton || event->button() == Qt::RightButton;
    if (choosing)
        chosen = ScanTree::none;
    if (!choosing || cell < 0)
        return QWidget::mousePressEvent(event);
    // A block of small files is no one entry: the context menu then acts on nothing.
    const TreemapLayout::Block block = cells[std::size_t(cell)].block;
    const ScanTree::Index folder = TreemapLayout::folderOf(*tree, block);
    emit folderClicked(folder);
    if (TreemapLayout::isFile(*tree, block))
        emit fileClicked(block);
    // After the lists have followed: what they choose in turn is this.
    chosen = TreemapLayout::isFiles(block) ? ScanTree::none : block;
    setHighlighted(TreemapLayout::isFiles(block) ? folder : block);
}

void TreemapView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const int cell = cellAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || cell < 0)
        return QWidget::mouseDoubleClickEvent(event);
    zoomTo(TreemapLayout::folderOf(*tree, cells[std::size_t(cell)].block));
}

void TreemapView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Backspace && canZoomOut())
        zoomOut();
    else
        QWidget::keyPressEvent(event);
}

bool TreemapView::canZoomOut() const
{
    return tree && top != 0;
}

void TreemapView::zoomOut()
{
    if (canZoomOut())
        zoomTo(tree->node(top).parent);
}

void TreemapView::zoomTo(ScanTree::Index folder)
{
    if (!tree || folder == top)
        return;
    top = folder;
    chosen = ScanTree::none;
    render();
    emit zoomChanged(tree->shownPath(folder));
}

// Something chosen elsewhere is no longer what the map's actions act on.
void TreemapView::setHighlighted(ScanTree::Index node)
{
    if (node != chosen)
        chosen = ScanTree::none;
    highlighted = node;
    update();
}

bool TreemapView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    auto* help = static_cast<QHelpEvent*>(event);
    const int cell = cellAt(help->pos());
    if (cell < 0) {
        QToolTip::hideText();
        return true;
    }
    const TreemapLayout::Cell& found = cells[std::size_t(cell)];
    QToolTip::showText(help->globalPos(), toolTipFor(found), this, found.rect.toAlignedRect());
    return true;
}

QString TreemapView::toolTipFor(const TreemapLayout::Cell& cell) const
{
    if (TreemapLayout::isFiles(cell.block))
        return filesToolTip(cell);
    const ScanTree::Node& node = tree->node(cell.block);
    if (!node.isFolder())
        return fileToolTip(cell.block) + shareText(cell);
    return QStringLiteral("%1\n%2, %3 on disk\n%4 files, %5 folders")
               .arg(tree->shownPath(cell.block), DiskUsageGlobal::sizeText(double(node.size)),
                    DiskUsageGlobal::sizeText(double(node.onDisk)))
               .arg(node.files)
               .arg(node.folders) +
           shareText(cell);
}

QString TreemapView::fileToolTip(ScanTree::Index file) const
{
    const ScanTree::Node& node = tree->node(file);
    const QString type = node.category < categoryNames.size() ? categoryNames[node.category]
                                                              : QStringLiteral("Other files");
    return QStringLiteral("%1\nSize: %2\nOn disk: %3\nType: %4\nLast access: %5")
        .arg(tree->shownPath(file), DiskUsageGlobal::sizeText(double(node.size)),
             DiskUsageGlobal::sizeText(double(node.onDisk)), type,
             DiskUsageGlobal::lastAccessText(node.lastAccessTime));
}

// The block of a folder's files too small for a tile: its largest few by name.
QString TreemapView::filesToolTip(const TreemapLayout::Cell& cell) const
{
    const ScanTree::Index folder = TreemapLayout::nodeOf(cell.block);
    std::vector<TreemapLayout::Block> tiled;
    bool someTiled = false;
    for (const TreemapLayout::Cell& other : cells) {
        if (other.parent == cell.parent) {
            tiled.push_back(other.block);
            someTiled = someTiled || TreemapLayout::isFile(*tree, other.block);
        }
    }
    const QString title =
        someTiled ? QStringLiteral("Smaller files in %1") : QStringLiteral("Files in %1");
    QStringList lines{title.arg(tree->shownPath(folder)),
                      DiskUsageGlobal::sizeText(double(cell.amount))};
    const std::size_t wanted = filesInToolTip + tiled.size();
    for (ScanTree::Index child : tree->largestChildren(folder, wanted, true, measuredBy)) {
        if (std::find(tiled.begin(), tiled.end(), child) != tiled.end())
            continue;
        lines << QStringLiteral("  %1  %2")
                     .arg(tree->nameText(child),
                          DiskUsageGlobal::sizeText(double(tree->node(child).amount(measuredBy))));
        if (lines.size() == filesInToolTip + 2)
            break;
    }
    return lines.join('\n') + shareText(cell);
}

QString TreemapView::shareText(const TreemapLayout::Cell& cell) const
{
    const double share = 100.0 * double(cell.amount) /
                         double(std::max<quint64>(1, tree->node(0).amount(measuredBy)));
    QString text = QStringLiteral("\n%1% of the scanned folder").arg(share, 0, 'f', 2);
    if (!changes)
        return text;
    const ScanComparison::Change change =
        TreemapLayout::isFiles(cell.block)
            ? changes->filesChangeOf(TreemapLayout::nodeOf(cell.block))
            : changes->changeOf(cell.block);
    return text + (change.status == ScanComparison::Status::New
                       ? QStringLiteral("\nNot in the older scan")
                       : QStringLiteral("\n%1 since the older scan")
                             .arg(ScanComparison::changeText(change)));
}
