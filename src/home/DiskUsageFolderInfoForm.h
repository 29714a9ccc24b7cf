#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class DiskUsageFolderInfoForm;
}

// A special folder's card: its name and path, with Start.
class DiskUsageFolderInfoForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageFolderInfoForm)

public:
    explicit DiskUsageFolderInfoForm(QWidget* parent = nullptr);
    ~DiskUsageFolderInfoForm() override;

    int diskIndex = 0;

    void setName(const QString& name);
    void setPath(const QString& path);

signals:
    void startScan(int diskIndex);

private:
    std::unique_ptr<Ui::DiskUsageFolderInfoForm> ui;
};
