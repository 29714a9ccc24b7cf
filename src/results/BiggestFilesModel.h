#pragma once

#include "Columns.h"
#include "scan/DiskUsageGlobal.h"

#include <QAbstractTableModel>
#include <QIcon>

// The biggest files of a scan, largest first: name with the desktop's icon,
// size, last access, folder, size in MiB (for sorting) and bytes on disk.
class BiggestFilesModel : public QAbstractTableModel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BiggestFilesModel)

public:
    explicit BiggestFilesModel(QObject* parent = nullptr);
    ~BiggestFilesModel() override;

    void setFiles(QList<DiskUsageGlobal::TFileInfo> files);
    [[nodiscard]] const DiskUsageGlobal::TFileInfo& file(int row) const { return files.at(row); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] QVariant value(int row, int column) const;

    QList<DiskUsageGlobal::TFileInfo> files;
    QList<QIcon> icons;
};
