#include "ResultView.h"

#include <QHeaderView>

ResultView::ResultView(QWidget* parent)
    : QTreeView(parent)
{
    setEditTriggers(QAbstractItemView::NoEditTriggers);
}

ResultView::~ResultView() = default;

QModelIndex ResultView::selectedRow() const
{
    if (!selectionModel())
        return {};
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return selected.isEmpty() ? QModelIndex() : selected.first();
}

void ResultView::showBesideSize(int onDiskColumn, int sizeColumn)
{
    header()->moveSection(header()->visualIndex(onDiskColumn),
                          header()->visualIndex(sizeColumn) + 1);
    setColumnWidth(onDiskColumn, 100);
}
