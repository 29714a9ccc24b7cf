#include "FolderTreeView.h"

#include "Columns.h"
#include "DiskUsageGraphDelegate.h"
#include "FolderTreeModel.h"

#include <QHeaderView>

using namespace FolderColumn;

FolderTreeView::FolderTreeView(QWidget* parent)
    : ResultView(parent)
{
    // Clickable, but a click does not re-sort: rows keep the order of loading.
    header()->setSectionsClickable(true);
    connect(this, &QTreeView::expanded, this, &FolderTreeView::widenNameColumn);
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
}

void FolderTreeView::letGo()
{
    QAbstractItemDelegate* delegate = itemDelegate();
    setItemDelegate(nullptr);
    delete delegate;
    setModel(nullptr);
}

std::optional<ScanTree::Index> FolderTreeView::selectedFolder() const
{
    const QModelIndex row = selectedRow();
    return row.isValid() ? std::optional(FolderTreeModel::nodeOf(row)) : std::nullopt;
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
