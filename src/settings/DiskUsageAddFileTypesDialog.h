#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class DiskUsageAddFileTypesDialog;
}

// Asks for one new extension and hands it over as typed. Not modal; deletes
// itself when closed.
class DiskUsageAddFileTypesDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageAddFileTypesDialog)

public:
    explicit DiskUsageAddFileTypesDialog(QWidget* parent = nullptr);
    ~DiskUsageAddFileTypesDialog() override;

signals:
    void newExtension(const QString& extension);

private:
    std::unique_ptr<Ui::DiskUsageAddFileTypesDialog> ui;
};
