#pragma once

#include "DriveInfo.h"

#include <QDialog>
#include <QStandardItemModel>

#include <memory>

namespace Ui {
class DiskUsageDetailInfoDialog;
}

// A disk's figures and its file system's features, as a two-level tree.
class DiskUsageDetailInfoDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageDetailInfoDialog)

public:
    explicit DiskUsageDetailInfoDialog(QWidget* parent = nullptr);
    ~DiskUsageDetailInfoDialog() override;

    void fill(const DriveInfo& drive);

private:
    std::unique_ptr<Ui::DiskUsageDetailInfoDialog> ui;
    QStandardItemModel model;
};
