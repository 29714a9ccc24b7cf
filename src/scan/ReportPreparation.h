#pragma once

#include "settings/FileTypeCategory.h"

#include <QIcon>
#include <QList>

#include <atomic>

class QStandardItem;
class QStandardItemModel;

// Turns a walk into what the results show: one row per category, laid down
// before the walk, and after it each folder's share of its parent and each
// enabled category's total. The rows are built apart from any model (so that
// no model signal fires from the scan's thread) and handed over at the end.
class ReportPreparation {
public:
    // Without icons the category rows carry none.
    ReportPreparation(QList<FileTypeCategory>& catalogue, bool icons,
                      const std::atomic<bool>& cancel);

    void addCategoryRows();
    void prepareReport(QStandardItem* rootNameCell, quint64 rootSize);
    // The category rows, row i for category i, to be put into a model.
    [[nodiscard]] QList<QList<QStandardItem*>> takeCategoryRows();

    [[nodiscard]] static QIcon categoryIcon(int index);
    // The share of a child in its parent, in percent, cut to two decimals.
    [[nodiscard]] static double percentage(quint64 child, quint64 parent);

private:
    [[nodiscard]] bool cancelled() const { return cancel.load(std::memory_order_relaxed); }
    void setPercentages(QStandardItem* rootNameCell, quint64 rootSize);
    void finishCategoryRows();

    QList<FileTypeCategory>& catalogue;
    const bool icons;
    QList<QList<QStandardItem*>> categoryRows;
    const std::atomic<bool>& cancel;
};
