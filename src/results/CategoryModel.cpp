#include "CategoryModel.h"

#include "scan/DiskUsageGlobal.h"
#include "settings/FileTypeCatalogue.h"

#include <QIcon>

#include <algorithm>

namespace {

double mebibytesOf(const FileTypeCategory& category)
{
    return double(category.totalSize) * 9.5367431640625e-7;
}

} // namespace

using namespace CategoryColumn;

CategoryModel::CategoryModel(QObject* parent)
    : QAbstractTableModel(parent)
{}

CategoryModel::~CategoryModel() = default;

void CategoryModel::setCategories(QList<FileTypeCategory> newCategories)
{
    beginResetModel();
    categories = std::move(newCategories);
    order.clear();
    for (int index = 0; index < categories.size(); ++index)
        order << index;
    // Enabled categories by their totals, ties in catalogue order; disabled
    // ones, which have none, after them.
    std::stable_partition(order.begin(), order.end(),
                          [this](int index) { return categories[index].checked; });
    const auto enabledEnd = std::find_if(order.begin(), order.end(),
                                         [this](int index) { return !categories[index].checked; });
    std::stable_sort(order.begin(), enabledEnd, [this](int a, int b) {
        return mebibytesOf(categories[a]) > mebibytesOf(categories[b]);
    });
    endResetModel();
}

int CategoryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(order.size());
}

int CategoryModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count;
}

QVariant CategoryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= order.size())
        return {};
    const int category = order[index.row()];
    if (!categories[category].checked)
        return index.column() == Path && role == Qt::DisplayRole ? QVariant(QString()) : QVariant();
    if (role == Qt::DecorationRole && index.column() == Category)
        return categoryIcon(category);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    return value(category, index.column());
}

QVariant CategoryModel::value(int category, int column) const
{
    const FileTypeCategory& shown = categories[category];
    switch (column) {
    case Category:
        return shown.name;
    case Total:
        return DiskUsageGlobal::sizeText(double(shown.totalSize));
    case Path:
        return QString();
    case Mebibytes:
        return mebibytesOf(shown);
    case CategoryIndex:
        return category;
    default:
        return {};
    }
}

QVariant CategoryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const titles[Count] = {
        "Name", "Total Size (All Files)", "Last Access Time", "Path", "Raw Size", "Index"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Count)
        return QAbstractTableModel::headerData(section, orientation, role);
    return QString::fromLatin1(titles[section]);
}

QIcon CategoryModel::categoryIcon(int index)
{
    return QIcon(FileTypeCatalogue::iconAt(index));
}
