#pragma once

#include "DriveInfo.h"

#include <QWidget>

#include <array>
#include <memory>

class DiskUsageOptionsForm;
class DiskUsageScanProgressForm;
class QStackedLayout;
class RecentFolders;
class ScanKeeper;
struct ScanResult;
struct Settings;

namespace Ui {
class DiskUsageForm;
}

// The home screen: cards for the local disks and the user's own folders, the
// folders scanned last, and the options. Whatever is picked becomes one path
// that a new results screen scans with the settings as they stand; the
// results replace this page until the user goes back. Each scan that ends
// uncancelled is kept in the history, when the settings keep one, while the
// user looks at it.
class DiskUsageForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageForm)

public:
    // The settings are the caller's, who keeps them as the options page saves
    // them (settingsSaved()); each scan takes them as they are then.
    explicit DiskUsageForm(const Settings& settings, QWidget* parent = nullptr);
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
    // Shows a scan kept in a file on the results screen; a file that cannot
    // be opened is said to be so, by name, and nothing else changes.
    void openScan(const QString& file);
    // Asks whether to save unsaved options, and saves them on Yes. False when
    // they were to be saved and could not be, or when the user chose Cancel,
    // which is offered only where leaving can be called off.
    bool offerToSaveOptions(bool cancellable = false);
    // A close was asked for and waits for a scan or release to end.
    [[nodiscard]] bool isClosing() const { return closeRequested; }
    [[nodiscard]] const QStringList& recentFolders() const;
    // A results screen stands in place of this page.
    [[nodiscard]] bool showsResults() const { return resultsScreen != nullptr; }

signals:
    void showToolbarSignal(bool show);
    void closeApp();
    void settingsSaved(const Settings& settings);

private:
    enum SpecialFolderIndex { Documents, Downloads, Music, Pictures, Videos, Profile };

    void connectButtons();
    void addDriveCards();
    void addFolderCards();
    void addOptionsPage();
    void onShowDetails(int diskIndex);
    void onDriveScan(int diskIndex);
    void onBackToMain();
    void onScanFinish();
    void onScanCompleted(const QString& path, const ScanResult& scan);
    void showSavedScans();
    void onDeleteSavedScans();
    void onClearRAMStart();
    void onClearRAMFinish();
    void onSelectFolder();
    void onOpenScan();
    void onOpenFailed(const QString& why);
    [[nodiscard]] DiskUsageScanProgressForm* addResultsScreen();
    void onWebsite();
    void onAbout();
    void onUpgrade();
    void closeIfRequested();

    std::unique_ptr<Ui::DiskUsageForm> ui;
    const Settings& settings;
    QList<DriveInfo> drives;
    std::array<QString, 6> specialFolderPaths;
    bool closeRequested = false;
    DiskUsageScanProgressForm* resultsScreen = nullptr;
    DiskUsageOptionsForm* optionsForm = nullptr;
    RecentFolders* recent = nullptr;
    QStackedLayout* stackedLayout = nullptr;
    // Last, so that it goes first: its destructor waits for the scans it is
    // writing, while the rest of the screen is still whole.
    std::unique_ptr<ScanKeeper> keeper;
};
