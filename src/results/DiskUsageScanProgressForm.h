#pragma once

#include "BiggestFilesModel.h"
#include "CategoryModel.h"
#include "FolderTreeModel.h"
#include "scan/DiskUsageGlobal.h"

#include <QItemSelection>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

class DiskUsageClearRamThread;
class DiskUsageScanInfoForm;
class DiskUsageWorkerThread;
class QLabel;
struct ScanFigures;
class QTreeView;

namespace Ui {
class DiskUsageScanProgressForm;
}

// The results of one scan: the scanning panel while the scan runs, then a
// folder tree with a legend of the selected folder's largest children, the 20
// biggest files, and the data files by type. Leaving releases the results on
// a thread of their own before the page asks to go back home.
class DiskUsageScanProgressForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageScanProgressForm)

public:
    explicit DiskUsageScanProgressForm(QWidget* parent = nullptr);
    ~DiskUsageScanProgressForm() override;

    void startScanning(const QString& path);
    // Stops a running scan without asking for the release afterwards.
    void cancelScan(bool cancel);

    // Longer names show as their first and last 18 characters around "...".
    [[nodiscard]] static QString shortenedName(const QString& name);

signals:
    void backToMain();
    void scanFinish();
    void clearRAMStart();
    void clearRAMFinish();

public slots:
    void handleResults();
    void handleUpdatePath(const QString& path);
    void handleUpdateTotalItemScan(int totalItem);
    void handleUpdateTotalSubFolder(int total);
    void handleUpdateScanProgress();
    void handleScanCancel();
    void onClearRamFinish();
    void OnTreeViewSelectionChanged(const QItemSelection& selected,
                                    const QItemSelection& deselected);

private slots:
    void on_backButton_clicked();
    void on_explorerGeneralButton_clicked();
    void on_explorerBiggestButton_clicked();
    void on_openFileBiggestButton_clicked();
    void on_dataFilesViewButton_clicked();

private:
    void setUpViews();
    void buildLegend();
    [[nodiscard]] DiskUsageScanInfoForm* addScanPanel();
    void showFolderTree();
    void widenNameColumn();
    void showBiggestFiles();
    void showDataFiles();
    void takeResult();
    void showUnreadable(const QStringList& folders);
    void showVolumeSummary(const ScanFigures& result);
    void setUpMap();
    void startRelease();
    void showLegend(ScanTree::Index folder);
    void showLegendRow(int row, const QString& icon, const QString& name, quint64 size);
    [[nodiscard]] QString selectedFilePath() const;

    std::unique_ptr<Ui::DiskUsageScanProgressForm> ui;
    QString scannedFolder;
    bool cancelled = false;
    bool releaseAfterResults = false;
    DiskUsageWorkerThread* worker = nullptr;
    DiskUsageClearRamThread* releaseThread = nullptr;
    QString oneDrivePath;
    FolderTreeModel generalModel;
    BiggestFilesModel biggestFilesModel;
    CategoryModel dataFilesModel;
    QLabel* summaryIcon = nullptr;
    QLabel* summaryName = nullptr;
    QLabel* summarySize = nullptr;
    QList<QLabel*> legendIcons;
    QList<QLabel*> legendNames;
    QList<QLabel*> legendSizes;
    QList<DiskUsageGlobal::TFileInfo> biggestFiles;
    QList<FileTypeCategory> categories;
    QList<QList<DiskUsageGlobal::TMainDataFile>> dataFiles;
    QPointer<DiskUsageScanInfoForm> scanPanel;
    // The scan's entry count, read from the worker while it runs.
    QTimer itemCountTimer;
};
