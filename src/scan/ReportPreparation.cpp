#include "ReportPreparation.h"

#include "DiskUsageGlobal.h"
#include "FolderColumn.h"

#include <QLoggingCategory>
#include <QStandardItemModel>

#include <utility>
#include <vector>

Q_LOGGING_CATEGORY(lcReport, "tallyroot.scan", QtInfoMsg)

namespace {

quint64 sizeOf(const QStandardItem* cell)
{
    return cell ? cell->data(Qt::DisplayRole).toULongLong() : 0;
}

QStandardItem* cellWith(const QVariant& value)
{
    auto* cell = new QStandardItem;
    cell->setData(value, Qt::EditRole);
    return cell;
}

} // namespace

ReportPreparation::ReportPreparation(QList<FileTypeCategory>& catalogue, bool icons,
                                     const std::atomic<bool>& cancel)
    : catalogue(catalogue)
    , icons(icons)
    , cancel(cancel)
{}

void ReportPreparation::addCategoryRows()
{
    if (cancelled())
        return;
    for (const FileTypeCategory& category : catalogue) {
        categoryRows.append({new QStandardItem(category.name), new QStandardItem, new QStandardItem,
                             new QStandardItem(QString())});
    }
}

void ReportPreparation::prepareReport(QStandardItem* rootNameCell, quint64 rootSize)
{
    qCDebug(lcReport) << "prepareReport";
    setPercentages(rootNameCell, rootSize);
    qCDebug(lcReport) << "Start Set icon for data file treeview";
    finishCategoryRows();
    qCDebug(lcReport) << "Start delete folderIcon";
}

double ReportPreparation::percentage(quint64 child, quint64 parent)
{
    if (child == 0)
        return 0.0;
    const double share = double(child * 100) / double(parent);
    return static_cast<qint32>(share * 100.0) / 100.0;
}

void ReportPreparation::setPercentages(QStandardItem* rootNameCell, quint64 rootSize)
{
    // Each folder against its own parent, never against the root.
    std::vector<std::pair<QStandardItem*, quint64>> pending{{rootNameCell, rootSize}};
    while (!pending.empty()) {
        const auto [parent, parentSize] = pending.back();
        pending.pop_back();
        for (int row = 0; row < parent->rowCount(); ++row) {
            if (cancelled())
                return;
            const quint64 size = sizeOf(parent->child(row, FolderColumn::Size));
            parent->child(row, FolderColumn::Percentage)
                ->setData(percentage(size, parentSize), Qt::EditRole);
            if (parent->child(row)->hasChildren())
                pending.emplace_back(parent->child(row), size);
        }
    }
}

void ReportPreparation::finishCategoryRows()
{
    for (int index = 0; index < categoryRows.size(); ++index) {
        if (cancelled())
            return;
        const FileTypeCategory& category = catalogue[index];
        QList<QStandardItem*>& row = categoryRows[index];
        if (!category.checked) {
            // The row stays, so later categories keep their row numbers.
            delete std::exchange(row[0], nullptr);
            continue;
        }
        if (icons)
            row[0]->setIcon(categoryIcon(index));
        row[1]->setData(DiskUsageGlobal::sizeText(double(category.totalSize)), Qt::EditRole);
        row.append(cellWith(double(category.totalSize) * 9.5367431640625e-7));
        row.append(cellWith(index));
    }
}

QList<QList<QStandardItem*>> ReportPreparation::takeCategoryRows()
{
    return std::exchange(categoryRows, {});
}

QIcon ReportPreparation::categoryIcon(int index)
{
    static const char* const icons[] = {
        "3dImages16",    "Audio16",       "Backup16", "CompressedFiles16",
        "DiskImage16",   "Document16",    "Font16",   "Install16",
        "RasterImage16", "VectorImage16", "Video16",  "WebFile16"};
    const char* name = index >= 0 && index < int(std::size(icons)) ? icons[index] : "Document16";
    return QIcon(QStringLiteral(":/resources/images/%1.png").arg(QLatin1String(name)));
}
