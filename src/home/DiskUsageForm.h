#pragma once

#include "DriveInfo.h"

#include <QStringList>
#include <QWidget>

#include <array>
#include <memory>

class ClickableLabel;
class DiskUsageOptionsForm;
class DiskUsageScanProgressForm;
class QStackedLayout;

namespace Ui {
class DiskUsageForm;
}

// The home screen: cards for the local disks and the user's own folders, the
// folders scanned last, and the options. Whatever is picked becomes one path
// that a new results screen scans; the results replace this page until the
// user goes back.
class DiskUsageForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageForm)

public:
    static constexpr int recentRowCount = 5;

    explicit DiskUsageForm(QWidget* parent = nullptr);
    ~DiskUsageForm() override;

    // A results screen exists and its scan has not finished.
    bool isScanning = false;
    // The results screen is releasing its results.
    bool isClearingRam = false;

    // Asks a running scan or release to end; once it has, closeApp() follows.
    void stopScan();
    // Scans a folder as when the user picks it; a folder that is not there
    // is said to be missing.
    void startScan(const QString& path);
    // Asks whether to save unsaved options, and saves them on Yes. False when
    // they were to be saved and could not be, or when the user chose Cancel,
    // which is offered only where leaving can be called off.
    bool offerToSaveOptions(bool cancellable = false);
    // A close was asked for and waits for a scan or release to end.
    [[nodiscard]] bool isClosing() const { return closeRequested; }
    [[nodiscard]] const QStringList& recentFolders() const { return recentPaths; }
    // Longer paths show as their first and last 16 characters around "...".
    [[nodiscard]] static QString shortenedPath(const QString& path);

signals:
    void showToolbarSignal(bool show);
    void closeApp();

public slots:
    void OnShowDetails(int diskIndex);
    void OnStartScan(int diskIndex);
    void OnBackToMain();
    void OnScanFinish();
    void OnClearRAMStart();
    void OnClearRAMFinish();

private slots:
    void on_selectFolderButton_clicked();
    void on_websiteButton_clicked();
    void on_aboutButton_clicked();
    void on_tabWidget_currentChanged(int index);
    void on_upgradeButton_clicked();

private:
    // Connected by hand; not a slot, which the by-name connection would take
    // for one of an object called "RecentPathClicked".
    void on_RecentPathClicked();
    enum SpecialFolderIndex { Documents, Downloads, Music, Pictures, Videos, Profile };

    void addDriveCards();
    void addFolderCards();
    void addRecentRows();
    void loadRecentPaths();
    void showRecentPaths();
    void rememberRecentPath(const QString& path);
    void closeIfRequested();

    std::unique_ptr<Ui::DiskUsageForm> ui;
    QList<DriveInfo> drives;
    std::array<QString, 6> specialFolderPaths;
    bool closeRequested = false;
    DiskUsageScanProgressForm* resultsScreen = nullptr;
    DiskUsageOptionsForm* optionsForm = nullptr;
    QStringList recentPaths;
    QList<ClickableLabel*> recentIconLabels;
    QList<ClickableLabel*> recentTextLabels;
    QStackedLayout* stackedLayout = nullptr;
};
