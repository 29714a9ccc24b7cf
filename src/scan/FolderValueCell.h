#pragma once

#include <QStandardItem>

// A cell of a folder row that holds one value, the same for showing and for
// editing. A large scan makes hundreds of thousands of them: each keeps its
// value in one QVariant, and the scan sets it directly while no model holds
// the cell, without the bookkeeping a general item does for every role.
class FolderValueCell : public QStandardItem {
public:
    explicit FolderValueCell(QVariant value = {});

    [[nodiscard]] QVariant data(int role) const override;
    void multiData(QModelRoleDataSpan roleDataSpan) const override;
    void setData(const QVariant& value, int role) override;
    [[nodiscard]] QStandardItem* clone() const override;

    // For the scan, before the cell is in a model: no view is told.
    void setValue(QVariant newValue) { value = std::move(newValue); }

protected:
    FolderValueCell(const FolderValueCell& other) = default;

private:
    [[nodiscard]] static bool isValueRole(int role)
    {
        return role == Qt::DisplayRole || role == Qt::EditRole;
    }

    QVariant value;
};
