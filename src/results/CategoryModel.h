#pragma once

#include "Columns.h"
#include "settings/FileTypeCategory.h"

#include <QAbstractTableModel>
#include <QList>

// The data files of a scan by category: one row per enabled category, the
// largest total first, with its icon and the total of all its files; a
// disabled category stands as an empty row after them, so that every
// category keeps a row.
class CategoryModel : public QAbstractTableModel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CategoryModel)

public:
    explicit CategoryModel(QObject* parent = nullptr);
    ~CategoryModel() override;

    // The scan's catalogue, each category with its total.
    void setCategories(QList<FileTypeCategory> categories);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

    [[nodiscard]] static QIcon categoryIcon(int index);

private:
    [[nodiscard]] QVariant value(int category, int column) const;

    QList<FileTypeCategory> categories;
    QList<int> order; // category index per row
};
