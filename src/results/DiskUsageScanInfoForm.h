#pragma once

#include <QWidget>

class ScanController;

#include <memory>

namespace Ui {
class DiskUsageScanInfoForm;
}

// The panel shown in place of the results while a scan or a memory release
// runs: a title, a path line, an item counter, a progress bar and Cancel.
class DiskUsageScanInfoForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageScanInfoForm)

public:
    explicit DiskUsageScanInfoForm(QWidget* parent = nullptr);
    ~DiskUsageScanInfoForm() override;

    void setTitle(const QString& title);
    void setPath(const QString& path);
    // A negative count hides the counter.
    void setItemCount(int count);
    void setMaximum(int maximum);
    void step();
    void disableCancel();
    // Shows what a scan, or a release, reports while the panel lives.
    void follow(const ScanController& scan);

signals:
    // Cancel was pressed.
    void scanCancel();

private:
    std::unique_ptr<Ui::DiskUsageScanInfoForm> ui;
};
