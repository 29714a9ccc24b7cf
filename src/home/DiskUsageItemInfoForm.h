#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class DiskUsageItemInfoForm;
}

// A drive's card: its name, file system, space and a bar, with Start and a
// details button.
class DiskUsageItemInfoForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageItemInfoForm)

public:
    explicit DiskUsageItemInfoForm(QWidget* parent = nullptr);
    ~DiskUsageItemInfoForm() override;

    int diskIndex = 0;

    void setVolumeName(const QString& name);
    void setFileSystem(const QString& fileSystem);
    // details: the tooltip, what the text leaves out.
    void setSizeText(const QString& text, const QString& details = {});
    void setUsedPercent(int percent);
    void setRootPath(const QString& path);

signals:
    void showDetails(int diskIndex);
    void startScan(int diskIndex);

private:
    std::unique_ptr<Ui::DiskUsageItemInfoForm> ui;
};
