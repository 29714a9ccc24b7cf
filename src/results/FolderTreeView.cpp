#include "FolderTreeView.h"

#include "Columns.h"
#include "DiskUsageGraphDelegate.h"
#include "FolderTreeModel.h"

#include <QHeaderView>
#include <QScrollBar>

using namespace FolderColumn;

FolderTreeView::FolderTreeView(QWidget* parent)
    : ResultView(parent)
{
    // Clickable, but a click re-sorts only while comparing.
    header()->setSectionsClickable(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    connect(this, &QTreeView::expanded, this, &FolderTreeView::widenNameColumn);
    connect(header(), &QHeaderView::sectionClicked, this, &FolderTreeView::onHeaderClicked);
}

FolderTreeView::~FolderTreeView() = default;

void FolderTreeView::showFolders(FolderTreeModel* model)
{
    setItemDelegate(new DiskUsageGraphDelegate(model, this));
    setModel(model);
    expand(model->index(0, 0));
    setColumnWidth(Name, 200);
    setColumnWidth(SizeText, 100);
    for (int column = Size; column <= Index; ++column)
        hideColumn(column);
    showBesideSize(OnDisk, SizeText);
    setColumnHidden(Change, !model->comparison());
}

void FolderTreeView::showChanges(std::shared_ptr<const ScanComparison> comparison)
{
    FolderTreeModel* shown = folders();
    if (!shown)
        return;
    const bool comparing = comparison != nullptr;
    reorder([&] {
        if (!comparing)
            shown->setOrder(FolderTreeModel::Order::BySize);
        shown->setComparison(std::move(comparison));
    });
    setColumnHidden(Change, !shown->comparison());
    if (comparing && columnWidth(Change) < 150)
        setColumnWidth(Change, 150);
}

void FolderTreeView::onHeaderClicked(int section)
{
    FolderTreeModel* shown = folders();
    if (!shown || !shown->comparison())
        return;
    const auto order =
        section == Change ? FolderTreeModel::Order::ByGrowth : FolderTreeModel::Order::BySize;
    if (order != shown->order())
        reorder([&] { shown->setOrder(order); });
}

void FolderTreeView::reorder(const std::function<void()>& change)
{
    const Place here = place();
    change();
    restore(here);
    const bool byGrowth =
        folders()->comparison() && folders()->order() == FolderTreeModel::Order::ByGrowth;
    header()->setSortIndicatorShown(byGrowth);
    if (byGrowth)
        header()->setSortIndicator(Change, Qt::DescendingOrder);
}

void FolderTreeView::letGo()
{
    QAbstractItemDelegate* delegate = itemDelegate();
    setItemDelegate(nullptr);
    delete delegate;
    setModel(nullptr);
}

// Of several, the one the user chose last.
std::optional<ScanTree::Index> FolderTreeView::selectedFolder() const
{
    const QModelIndex current = currentIndex();
    if (current.isValid() && selectionModel()->isSelected(current))
        return FolderTreeModel::nodeOf(current);
    const QModelIndex row = selectedRow();
    return row.isValid() ? std::optional(FolderTreeModel::nodeOf(row)) : std::nullopt;
}

std::vector<ScanTree::Index> FolderTreeView::selectedFolders() const
{
    std::vector<ScanTree::Index> chosen;
    if (!selectionModel())
        return chosen;
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [this](const QModelIndex& a, const QModelIndex& b) {
        return visualRect(a).top() < visualRect(b).top();
    });
    for (const QModelIndex& row : rows)
        chosen.push_back(FolderTreeModel::nodeOf(row));
    return chosen;
}

FolderTreeModel* FolderTreeView::folders() const
{
    return qobject_cast<FolderTreeModel*>(model());
}

FolderTreeView::Place FolderTreeView::place() const
{
    Place here;
    const FolderTreeModel* shown = folders();
    if (!shown || !shown->tree())
        return here;
    const ScanTree& tree = *shown->tree();
    // Only the open branches are walked: a closed folder's rows are never asked for.
    std::vector<QModelIndex> open{shown->index(0, 0)};
    while (!open.empty()) {
        const QModelIndex folder = open.back();
        open.pop_back();
        if (!isExpanded(folder))
            continue;
        here.expanded << tree.path(FolderTreeModel::nodeOf(folder));
        for (int row = 0; row < shown->rowCount(folder); ++row)
            open.push_back(shown->index(row, 0, folder));
    }
    for (ScanTree::Index folder : selectedFolders())
        here.selected << tree.path(folder);
    if (currentIndex().isValid())
        here.current = tree.path(FolderTreeModel::nodeOf(currentIndex()));
    here.scroll = verticalScrollBar()->value();
    return here;
}

QModelIndex FolderTreeView::rowOf(const QString& path) const
{
    return folders()->indexOf(folders()->tree()->locateNearest(path));
}

void FolderTreeView::restore(const Place& place)
{
    if (!folders() || !folders()->tree())
        return;
    for (const QString& path : place.expanded)
        expand(rowOf(path));
    const QModelIndex current = rowOf(place.current);
    setCurrentIndex(current);
    QItemSelection chosen;
    for (const QString& path : place.selected)
        chosen.select(rowOf(path), rowOf(path));
    selectionModel()->select(chosen,
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    verticalScrollBar()->setValue(place.scroll);
}

// Each level down indents the names further: the column grows with the rows
// shown, as far as leaves the sizes in view, so that deep names are not cut to
// "...". It never shrinks, so a width the user dragged wider stays.
void FolderTreeView::widenNameColumn()
{
    const int fitting = sizeHintForColumn(Name);
    const int wanted = std::min(fitting, viewport()->width() - columnWidth(SizeText));
    if (wanted > columnWidth(Name))
        setColumnWidth(Name, wanted);
}
