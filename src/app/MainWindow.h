#pragma once

#include "settings/Settings.h"

#include <QMainWindow>

#include <memory>

class DiskUsageForm;
class QStackedLayout;

namespace Ui {
class MainWindow;
}

// The single top-level window: a frame around a stacked layout of screens that
// remembers its place and size between runs.
class MainWindow : public QMainWindow {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    // Shows the results of a folder as when the user picks it on the home screen.
    void scanFolder(const QString& path);
    // Shows a scan kept in a file, as when the user opens it on the home screen.
    void openScanFile(const QString& file);
    // A folder is scanned, a file opened as a saved scan.
    void openPath(const QString& path);
    // What the options page saved last, or what was stored at start.
    [[nodiscard]] const Settings& currentSettings() const { return settings; }

signals:
    // The options page stored new settings.
    void settingsSaved(const Settings& settings);

protected:
    void closeEvent(QCloseEvent* event) override;
    // What is dropped on the home screen: a folder to scan or a saved scan.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void restoreGeometry();

    std::unique_ptr<Ui::MainWindow> ui;
    // What the options page saved last; every scan starts from it.
    Settings settings = Settings::load();
    DiskUsageForm* homeForm = nullptr;
    QStackedLayout* stackedLayout = nullptr;
};
