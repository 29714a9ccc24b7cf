#pragma once

#include "BiggestFilesModel.h"
#include "CategoryModel.h"
#include "FolderTreeModel.h"
#include "ResultActions.h"
#include "ResultChanges.h"
#include "ScanComparer.h"
#include "ScanController.h"
#include "TreemapPainter.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class DiskUsageScanInfoForm;
class ResultDetailsDialog;

namespace Ui {
class DiskUsageScanProgressForm;
}

// The results of one scan: the scanning panel while the scan runs, then a
// folder tree with a legend of the selected folder's largest children, the 20
// biggest files, the data files by type and a map; compared with an older
// scan, the tree, the legend and the map show what changed since. Leaving
// releases the results on a thread of their own before the page asks to go
// back home.
class DiskUsageScanProgressForm : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageScanProgressForm)

public:
    explicit DiskUsageScanProgressForm(QWidget* parent = nullptr);
    ~DiskUsageScanProgressForm() override;

    void startScanning(ScanRequest request);
    // Shows a scan kept in a file, read on a thread of its own; a file that
    // cannot be opened ends in openFailed(), then backToMain().
    void openScanFile(const QString& file);
    // Stops a running scan without asking for the release afterwards.
    void cancelScan();

signals:
    void backToMain();
    // Names the file and why it could not be opened.
    void openFailed(const QString& why);
    void scanFinish();
    // The scan ended uncancelled, made here now: a scan worth keeping. Not
    // sent again as the results change by a removal or a refresh.
    void scanCompleted(const ScanResult& scan);
    void clearRAMStart();
    void clearRAMFinish();

private:
    void setUpMap();
    [[nodiscard]] static TreemapPainter::Colouring colouringOf(int choice);
    void showMapLegend();
    void onMapFileClicked(ScanTree::Index file);
    void connectButtons();
    // Size or space on disk: what the tree's order and bars and the legend go by.
    void setUpMeasure();
    [[nodiscard]] ScanTree::Measure chosenMeasure() const;
    void onMeasureChanged();
    [[nodiscard]] DiskUsageScanInfoForm* addScanPanel();
    void onScanCancel();
    void onResults();
    void showResults();
    void showUnreadable(const QStringList& folders);
    void showVolumeSummary(const ScanFigures& result);
    void showOrigin(const ScanResult& result);
    void onFolderSelected();
    void onExploreFolder();
    void onShowBiggestFile();
    void onOpenBiggestFile();
    void onViewDataFiles();
    void onBack();
    void startRelease();
    void onReleased();

    // Acting on what the lists and the map have selected.
    void setUpActions();
    [[nodiscard]] std::vector<ScanTree::Index> entriesOf(const QWidget* view) const;
    [[nodiscard]] std::vector<ScanTree::Index> chosenEntries() const;
    void onPrepareActions(QWidget* view);
    [[nodiscard]] bool canChange() const;
    void onOpen();
    void onShowInFolder();
    void handOver(ScanTree::Index entry, bool showFile);
    void onCopyPath();
    void onRefresh();
    void onRefreshAll();
    void onRemove(ResultChanges::Removal how);
    void onChangesStarted(const QString& doing);
    void onScanChanged();
    void onChangesFinished(const QList<ResultChanges::Failure>& failures);
    void onFind();
    void onSearchChosen(ScanTree::Index entry);
    [[nodiscard]] QStringList categoryNames() const;

    // Comparing with an older scan.
    void setUpComparing();
    void onCompare();
    void onCompared();
    void onCompareFailed(const QString& reason);
    void onStopComparing();
    void showChanges();

    std::unique_ptr<Ui::DiskUsageScanProgressForm> ui;
    ScanController scan;
    ScanRequest request; // repeated for a folder read again
    ResultChanges changes;
    ResultActions resultActions;
    ScanComparer comparer;
    QAction* stopComparingAction = nullptr;
    // The list or map the actions were last prepared for.
    QPointer<QWidget> actingOn;
    // The data files of one category, while their dialog is open.
    QPointer<ResultDetailsDialog> details;
    int detailsCategory = 0;
    QString scannedFolder;
    QString oneDrivePath;
    bool cancelled = false;
    bool releaseAfterResults = false;
    bool releasing = false;
    FolderTreeModel generalModel;
    BiggestFilesModel biggestFilesModel;
    CategoryModel dataFilesModel;
    QPointer<DiskUsageScanInfoForm> scanPanel;
};
