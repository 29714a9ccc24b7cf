#pragma once

#include "BiggestFilesModel.h"
#include "CategoryModel.h"
#include "FolderTreeModel.h"
#include "ScanController.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class DiskUsageScanInfoForm;

namespace Ui {
class DiskUsageScanProgressForm;
}

// The results of one scan: the scanning panel while the scan runs, then a
// folder tree with a legend of the selected folder's largest children, the 20
// biggest files, the data files by type and a map. Leaving releases the
// results on a thread of their own before the page asks to go back home.
class DiskUsageScanProgressForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageScanProgressForm)

public:
    explicit DiskUsageScanProgressForm(QWidget* parent = nullptr);
    ~DiskUsageScanProgressForm() override;

    void startScanning(ScanRequest request);
    // Stops a running scan without asking for the release afterwards.
    void cancelScan();

signals:
    void backToMain();
    void scanFinish();
    void clearRAMStart();
    void clearRAMFinish();

private:
    void setUpMap();
    void connectButtons();
    [[nodiscard]] DiskUsageScanInfoForm* addScanPanel();
    void onScanCancel();
    void onResults();
    void showResults(ScanResult result);
    void showUnreadable(const QStringList& folders);
    void showVolumeSummary(const ScanFigures& result);
    void onFolderSelected();
    void onExploreFolder();
    void onShowBiggestFile();
    void onOpenBiggestFile();
    void onViewDataFiles();
    void onBack();
    void startRelease();
    void onReleased();

    std::unique_ptr<Ui::DiskUsageScanProgressForm> ui;
    ScanController scan;
    QString scannedFolder;
    QString oneDrivePath;
    bool cancelled = false;
    bool releaseAfterResults = false;
    bool releasing = false;
    FolderTreeModel generalModel;
    BiggestFilesModel biggestFilesModel;
    CategoryModel dataFilesModel;
    QList<QList<DiskUsageGlobal::TMainDataFile>> dataFiles;
    QPointer<DiskUsageScanInfoForm> scanPanel;
};
