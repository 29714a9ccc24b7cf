#pragma once

#include <QStyledItemDelegate>

class QAbstractItemModel;

// Draws, behind the text of the folder tree's "Size" column, a bar as long as
// the row's share of its parent; shows the bytes on disk as a size text.
class DiskUsageGraphDelegate : public QStyledItemDelegate {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageGraphDelegate)

public:
    DiskUsageGraphDelegate(QAbstractItemModel* model, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    // The bar's width in a cell of the given width for a share in percent.
    [[nodiscard]] static int barWidth(int cellWidth, const QVariant& percentage);

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    QAbstractItemModel* model;
};
