#include "FolderValueCell.h"

FolderValueCell::FolderValueCell(QVariant value)
    : value(std::move(value))
{}

QVariant FolderValueCell::data(int role) const
{
    return isValueRole(role) ? value : QStandardItem::data(role);
}

void FolderValueCell::multiData(QModelRoleDataSpan roleDataSpan) const
{
    for (QModelRoleData& roleData : roleDataSpan)
        roleData.setData(data(roleData.role()));
}

void FolderValueCell::setData(const QVariant& newValue, int role)
{
    if (!isValueRole(role)) {
        QStandardItem::setData(newValue, role);
        return;
    }
    value = newValue;
    emitDataChanged();
}

QStandardItem* FolderValueCell::clone() const
{
    return new FolderValueCell(*this);
}
