#include "DiskUsageScanProgressForm.h"

#include "DiskUsageScanInfoForm.h"
#include "ResultDetailsDialog.h"
#include "desktop/ShellActions.h"
#include "scan/VolumeReconciliation.h"
#include "ui_DiskUsageScanProgressForm.h"

#include <QDir>

DiskUsageScanProgressForm::DiskUsageScanProgressForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageScanProgressForm>())
{
    ui->setupUi(this);
    setUpMap();
    connectButtons();
    scanPanel = addScanPanel();
    connect(scanPanel, &DiskUsageScanInfoForm::scanCancel, this,
            &DiskUsageScanProgressForm::onScanCancel);
    ui->toolBar->hide();
    ui->tabWidget->hide();
    ui->volumeSummaryLabel->hide();
    ui->tabWidget->setCurrentIndex(0);
    ui->unreadableLabel->hide();
    connect(&scan, &ScanController::finished, this, &DiskUsageScanProgressForm::onResults);
    connect(&scan, &ScanController::released, this, &DiskUsageScanProgressForm::onReleased);
}

// The scan's threads end with the controller, before the models they fill.
DiskUsageScanProgressForm::~DiskUsageScanProgressForm() = default;

// The map and the folder tree follow each other: a click on the map chooses
// the folder in the tree, a folder chosen in the tree is outlined on the map.
void DiskUsageScanProgressForm::setUpMap()
{
    TreemapView* map = ui->treemapView;
    connect(map, &TreemapView::folderClicked, this, [this](ScanTree::Index folder) {
        const QModelIndex index = generalModel.indexOf(folder);
        ui->treeView->setCurrentIndex(index);
        ui->treeView->scrollTo(index);
    });
    connect(map, &TreemapView::zoomChanged, this, [this, map](const QString& folder) {
        ui->mapPathLabel->setText(folder);
        ui->mapUpButton->setEnabled(map->canZoomOut());
    });
    connect(ui->mapUpButton, &QAbstractButton::clicked, map, &TreemapView::zoomOut);
    ui->mapUpButton->setEnabled(false);
}

void DiskUsageScanProgressForm::connectButtons()
{
    using Form = DiskUsageScanProgressForm;
    connect(ui->backButton, &QAbstractButton::clicked, this, &Form::onBack);
    connect(ui->explorerGeneralButton, &QAbstractButton::clicked, this, &Form::onExploreFolder);
    connect(ui->explorerBiggestButton, &QAbstractButton::clicked, this, &Form::onShowBiggestFile);
    connect(ui->openFileBiggestButton, &QAbstractButton::clicked, this, &Form::onOpenBiggestFile);
    connect(ui->dataFilesViewButton, &QAbstractButton::clicked, this, &Form::onViewDataFiles);
}

DiskUsageScanInfoForm* DiskUsageScanProgressForm::addScanPanel()
{
    auto* panel = new DiskUsageScanInfoForm(this);
    panel->follow(scan);
    ui->pageLayout->addWidget(panel);
    return panel;
}

void DiskUsageScanProgressForm::startScanning(ScanRequest request)
{
    // The scanned folder stands in the path line until the walk enters its
    // first subfolder, which may be long after a large folder's listing.
    if (scanPanel) {
        scanPanel->setTitle(QStringLiteral("Scanning in progress. Please wait ..."));
        scanPanel->setPath(QDir::toNativeSeparators(request.folder));
        scanPanel->setItemCount(0);
    }
    scannedFolder = request.folder;
    oneDrivePath = request.oneDrivePath;
    scan.start(std::move(request));
}

void DiskUsageScanProgressForm::cancelScan()
{
    cancelled = true;
    scan.cancel();
}

void DiskUsageScanProgressForm::onScanCancel()
{
    releaseAfterResults = true;
    cancelScan();
}

void DiskUsageScanProgressForm::onResults()
{
    // The panel goes first: shown together with the tabs for a moment, the
    // two would make the window grow to hold both.
    if (scanPanel) {
        scanPanel->hide();
        scanPanel->deleteLater();
    }
    scanPanel = nullptr;
    ScanResult result = scan.takeResult();
    generalModel.setTree(std::move(result.tree), oneDrivePath);
    showUnreadable(result.unreadable);
    showVolumeSummary(result);
    if (!cancelled && !releaseAfterResults)
        showResults(std::move(result));
    ui->explorerGeneralButton->setEnabled(false);
    emit scanFinish();
    if (releaseAfterResults)
        return startRelease();
    if (generalModel.rowCount() > 0)
        ui->treeView->setCurrentIndex(generalModel.index(0, 0));
}

void DiskUsageScanProgressForm::showResults(ScanResult result)
{
    ui->treeView->showFolders(&generalModel);
    connect(ui->treeView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DiskUsageScanProgressForm::onFolderSelected);
    ui->toolBar->show();
    ui->volumeSummaryLabel->setVisible(!ui->volumeSummaryLabel->text().isEmpty());
    ui->tabWidget->show();
    biggestFilesModel.setFiles(std::move(result.biggestFiles));
    ui->biggestFileTreeView->showFiles(&biggestFilesModel);
    dataFiles = std::move(result.dataFiles);
    dataFilesModel.setCategories(std::move(result.categories));
    ui->dataFilesTreeView->showCategories(&dataFilesModel);
    ui->treemapView->setSource(generalModel.tree());
}

// A scan of a volume's root says how it adds up against the volume.
void DiskUsageScanProgressForm::showVolumeSummary(const ScanFigures& result)
{
    const std::optional<VolumeReconciliation> volume =
        VolumeReconciliation::of(scannedFolder, result);
    ui->volumeSummaryLabel->setText(volume ? volume->text() : QString());
    ui->volumeSummaryLabel->setToolTip(volume ? volume->details() : QString());
}

// A folder that could not be read shows as an empty row; the line says how
// many there were, and its tooltip which.
void DiskUsageScanProgressForm::showUnreadable(const QStringList& folders)
{
    constexpr int listed = 25;
    QLabel* label = ui->unreadableLabel;
    label->setVisible(!folders.isEmpty());
    label->setText(folders.size() == 1
                       ? QStringLiteral("1 folder could not be read")
                       : QStringLiteral("%1 folders could not be read").arg(folders.size()));
    QStringList lines = folders.mid(0, listed);
    if (folders.size() > listed)
        lines << QStringLiteral("and %1 more").arg(folders.size() - listed);
    label->setToolTip(lines.join('\n'));
}

void DiskUsageScanProgressForm::onFolderSelected()
{
    const std::optional<ScanTree::Index> folder = ui->treeView->selectedFolder();
    ui->explorerGeneralButton->setEnabled(folder.has_value());
    if (!folder)
        return;
    ui->treemapView->setHighlighted(*folder);
    ui->maxItemWidget->showFolder(*generalModel.tree(), *folder);
}

void DiskUsageScanProgressForm::onExploreFolder()
{
    if (const std::optional<ScanTree::Index> folder = ui->treeView->selectedFolder())
        ShellActions::exploreFolder(generalModel.tree()->shownPath(*folder), this);
}

void DiskUsageScanProgressForm::onShowBiggestFile()
{
    const QString path = ui->biggestFileTreeView->selectedFilePath();
    if (!path.isEmpty())
        ShellActions::showInExplorer(path, this);
}

void DiskUsageScanProgressForm::onOpenBiggestFile()
{
    const QString path = ui->biggestFileTreeView->selectedFilePath();
    if (!path.isEmpty())
        ShellActions::openFile(path, this);
}

void DiskUsageScanProgressForm::onViewDataFiles()
{
    const std::optional<int> category = ui->dataFilesTreeView->selectedCategory();
    if (!category)
        return;
    ResultDetailsDialog dialog(dataFiles[*category], this);
    dialog.setWindowTitle(ui->dataFilesTreeView->selectedName() +
                          QStringLiteral(" (20 Biggest Files)"));
    dialog.exec();
}

void DiskUsageScanProgressForm::onBack()
{
    startRelease();
}

// Back twice, or during a release, starts nothing more. The views let go of
// the tree before it goes to a thread of its own to be freed.
void DiskUsageScanProgressForm::startRelease()
{
    if (releasing)
        return;
    releasing = true;
    ui->treeView->letGo();
    ui->biggestFileTreeView->setModel(nullptr);
    ui->dataFilesTreeView->setModel(nullptr);
    ui->treemapView->clear();
    std::shared_ptr<const ScanTree> tree = generalModel.tree();
    generalModel.clear();
    biggestFilesModel.setFiles({});
    dataFilesModel.setCategories({});
    ui->toolBar->hide();
    ui->tabWidget->hide();

    scanPanel = addScanPanel();
    scanPanel->setTitle(QStringLiteral("Clearing RAM back to the system in progress."));
    scanPanel->setPath(QStringLiteral("Please wait ..."));
    scanPanel->setItemCount(-1);
    scanPanel->disableCancel();
    scanPanel->setMaximum(1);
    emit clearRAMStart();
    scan.release(std::move(tree));
}

void DiskUsageScanProgressForm::onReleased()
{
    emit clearRAMFinish();
    emit backToMain();
}
