#include "DiskUsageGraphDelegate.h"

#include "Columns.h"
#include "scan/DiskUsageGlobal.h"

#include <QAbstractItemModel>
#include <QPainter>

namespace {
const QColor barColour(Qt::yellow);
}

DiskUsageGraphDelegate::DiskUsageGraphDelegate(QAbstractItemModel* model, QObject* parent)
    : QStyledItemDelegate(parent)
    , model(model)
{}

int DiskUsageGraphDelegate::barWidth(int cellWidth, const QVariant& percentage)
{
    // Whole percent, as the share's value reads as an unsigned number.
    const qulonglong share = percentage.toULongLong();
    return static_cast<int>(cellWidth * double(share) / 100.0);
}

void DiskUsageGraphDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const
{
    if (index.column() != FolderColumn::SizeText || !model) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QVariant share = index.siblingAtColumn(FolderColumn::Percentage).data(Qt::DisplayRole);
    const QRect bar(option.rect.left(), option.rect.top(), barWidth(option.rect.width(), share),
                    option.rect.height());
    painter->setPen(barColour);
    painter->setBrush(QBrush(barColour, Qt::SolidPattern));
    painter->drawRects(&bar, 1);
    // The text over the bar is dark whatever the palette: a dark palette's
    // light text would not read on the bright bar.
    painter->save();
    painter->setClipRegion(QRegion(option.rect).subtracted(bar), Qt::IntersectClip);
    QStyledItemDelegate::paint(painter, option, index);
    painter->restore();
    if (bar.isEmpty())
        return;
    QStyleOptionViewItem onBar(option);
    if (!(option.state & QStyle::State_Selected))
        onBar.palette.setColor(QPalette::Text, Qt::black);
    painter->save();
    painter->setClipRect(bar, Qt::IntersectClip);
    QStyledItemDelegate::paint(painter, onBar, index);
    painter->restore();
}

// The cell holds the number, so that the text is made only for rows in view.
void DiskUsageGraphDelegate::initStyleOption(QStyleOptionViewItem* option,
                                             const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant onDisk = index.data(Qt::DisplayRole);
    if (index.column() == FolderColumn::OnDisk && onDisk.isValid()) {
        option->text = DiskUsageGlobal::sizeText(onDisk.toDouble());
        option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
    }
}
