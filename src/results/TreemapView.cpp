#include "TreemapView.h"

#include "TreemapPainter.h"
#include "scan/DiskUsageGlobal.h"
#include "scan/FolderColumn.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStandardItemModel>
#include <QThreadPool>
#include <QToolTip>

#include <mutex>

namespace {

constexpr int resizePauseMs = 150;
constexpr int filesInToolTip = 5;

QVariant cellOf(const QStandardItem* folder, int column)
{
    return folder->index().siblingAtColumn(column).data();
}

} // namespace

// Where a pool thread hands a finished picture: nowhere once the view is gone.
struct TreemapView::Delivery {
    std::mutex mutex;
    TreemapView* view = nullptr;
};

struct TreemapView::Render {
    QImage image;
    std::vector<TreemapLayout::Cell> cells;
    std::uint64_t generation = 0;
};

TreemapView::TreemapView(QWidget* parent)
    : QWidget(parent)
    , delivery(std::make_shared<Delivery>())
{
    delivery->view = this;
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 150);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resizePause.setSingleShot(true);
    resizePause.setInterval(resizePauseMs);
    connect(&resizePause, &QTimer::timeout, this, &TreemapView::render);
}

TreemapView::~TreemapView()
{
    std::lock_guard lock(delivery->mutex);
    delivery->view = nullptr;
}

void TreemapView::setSource(const QStandardItemModel* model)
{
    clear();
    source = model;
    if (isVisible())
        readSource();
}

void TreemapView::clear()
{
    source = nullptr;
    tree.reset();
    image = QImage();
    cells.clear();
    cells.shrink_to_fit();
    top = 0;
    highlighted = TreemapTree::none;
    highlightedFolder = nullptr;
    ++generation; // a picture still being painted is not wanted any more
    resizePause.stop();
    update();
}

void TreemapView::readSource()
{
    if (tree || !source)
        return;
    tree = std::make_shared<const TreemapTree>(TreemapTree::fromModel(*source));
    top = 0;
    if (tree->isEmpty())
        return;
    setHighlighted(highlightedFolder);
    render();
    emit zoomChanged(cellOf(tree->item(0), FolderColumn::Path).toString());
}

void TreemapView::render()
{
    if (!tree || tree->isEmpty() || size().isEmpty())
        return;
    auto done = std::make_shared<Render>();
    done->generation = ++generation;
    QThreadPool::globalInstance()->start(
        [done, map = tree, from = top, area = size(), to = delivery] {
            done->cells = TreemapLayout::layout(*map, from, QRectF(QPointF(0, 0), area));
            done->image = TreemapPainter::paint(*map, done->cells, area);
            std::lock_guard lock(to->mutex);
            if (to->view) {
                QMetaObject::invokeMethod(
                    to->view, [view = to->view, done] { view->takeRender(done); },
                    Qt::QueuedConnection);
            }
        });
}

void TreemapView::takeRender(const std::shared_ptr<Render>& done)
{
    if (done->generation != generation)
        return;
    image = std::move(done->image);
    cells = std::move(done->cells);
    update();
    emit rendered();
}

void TreemapView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    readSource();
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
    const QRectF outline = rectOfNode(highlighted).adjusted(1, 1, -1, -1);
    if (outline.isEmpty())
        return;
    painter.setPen(QPen(Qt::white, 2));
    painter.drawRect(outline);
    painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    painter.drawRect(outline);
}

QRectF TreemapView::rectOf(const QStandardItem* folder) const
{
    return tree && folder ? rectOfNode(tree->nodeOf(folder)) : QRectF();
}

QRectF TreemapView::rectOfNode(std::uint32_t node) const
{
    if (image.size() != size())
        return {};
    for (; node != TreemapTree::none; node = tree->nodes()[node].parent) {
        const auto found = std::find_if(cells.begin(), cells.end(),
                                        [node](const auto& cell) { return cell.node == node; });
        if (found != cells.end())
            return found->rect;
    }
    return {};
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

std::uint32_t TreemapView::folderOf(std::uint32_t node) const
{
    const TreemapTree::Node& found = tree->nodes()[node];
    return found.files ? found.parent : node;
}

void TreemapView::mousePressEvent(QMouseEvent* event)
{
    const int cell = cellAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || cell < 0)
        return QWidget::mousePressEvent(event);
    emit folderClicked(tree->item(folderOf(cells[std::size_t(cell)].node)));
}

void TreemapView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const int cell = cellAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || cell < 0)
        return QWidget::mouseDoubleClickEvent(event);
    zoomTo(folderOf(cells[std::size_t(cell)].node));
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
        zoomTo(tree->nodes()[top].parent);
}

void TreemapView::zoomTo(std::uint32_t node)
{
    if (!tree || node == top)
        return;
    top = node;
    render();
    emit zoomChanged(cellOf(tree->item(node), FolderColumn::Path).toString());
}

void TreemapView::setHighlighted(const QStandardItem* folder)
{
    highlightedFolder = folder;
    highlighted = tree && folder ? tree->nodeOf(folder) : TreemapTree::none;
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
    QToolTip::showText(help->globalPos(), toolTipFor(found.node), this, found.rect.toAlignedRect());
    return true;
}

QString TreemapView::toolTipFor(std::uint32_t node) const
{
    const TreemapTree::Node& block = tree->nodes()[node];
    const QStandardItem* folder = tree->item(node);
    const double share =
        100.0 * double(block.size) / double(std::max<quint64>(1, tree->nodes()[0].size));
    const QString path = cellOf(folder, FolderColumn::Path).toString();
    const QString shareText = QStringLiteral("%1% of the scanned folder").arg(share, 0, 'f', 2);
    if (!block.files) {
        return QStringLiteral("%1\n%2\n%3 files, %4 folders\n%5")
            .arg(path, DiskUsageGlobal::sizeText(double(block.size)))
            .arg(cellOf(folder, FolderColumn::Files).toInt())
            .arg(cellOf(folder, FolderColumn::Folders).toInt())
            .arg(shareText);
    }
    QStringList lines{QStringLiteral("Files in %1").arg(path),
                      DiskUsageGlobal::sizeText(double(block.size)), shareText};
    int listed = 0;
    const QString summary = cellOf(folder, FolderColumn::MaxData).toString();
    for (const DiskUsageGlobal::SummaryEntry& entry : DiskUsageGlobal::parseChildSummary(summary)) {
        if (entry.isFolder)
            continue;
        if (listed++ == filesInToolTip)
            break;
        lines << QStringLiteral("  %1  %2")
                     .arg(entry.name, DiskUsageGlobal::sizeText(double(entry.size)));
    }
    return lines.join('\n');
}
