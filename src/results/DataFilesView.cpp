#include "DataFilesView.h"

#include "CategoryModel.h"

#include <QHeaderView>

using namespace CategoryColumn;

DataFilesView::DataFilesView(QWidget* parent)
    : ResultView(parent)
{
    header()->setSectionsClickable(true);
}

DataFilesView::~DataFilesView() = default;

void DataFilesView::showCategories(CategoryModel* model)
{
    setModel(model);
    setColumnWidth(Category, 300);
    for (int column = LastAccess; column <= CategoryIndex; ++column)
        hideColumn(column);
    setColumnWidth(LastAccess, 200);
    if (model->rowCount() > 0)
        setCurrentIndex(model->index(0, 0));
}

std::optional<int> DataFilesView::selectedCategory() const
{
    const QVariant category = selectedRow().siblingAtColumn(CategoryIndex).data();
    return category.isValid() ? std::optional(category.toInt()) : std::nullopt;
}

QString DataFilesView::selectedName() const
{
    return selectedRow().siblingAtColumn(Category).data().toString();
}

void DataFilesView::selectNamed(const QString& name)
{
    for (int row = 0; model() && row < model()->rowCount(); ++row) {
        const QModelIndex named = model()->index(row, Category);
        if (named.data().toString() == name)
            return setCurrentIndex(named.siblingAtColumn(0));
    }
}
