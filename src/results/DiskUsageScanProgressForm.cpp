#include "DiskUsageScanProgressForm.h"

#include "DiskUsageGraphDelegate.h"
#include "DiskUsageScanInfoForm.h"
#include "FolderColumn.h"
#include "ResultDetailsDialog.h"
#include "ShellActions.h"
#include "TreemapView.h"
#include "platform/Shell.h"
#include "scan/DiskUsageClearRamThread.h"
#include "scan/DiskUsageWorkerThread.h"
#include "scan/VolumeReconciliation.h"
#include "ui_DiskUsageScanProgressForm.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

namespace {

using namespace FolderColumn;
constexpr int legendRows = 11;
// Icons and texts stand in separate columns; one height keeps their rows level.
constexpr int legendRowHeight = 20;
// How often the scanning panel's counter follows the scan.
constexpr int itemCountInterval = 50; // ms

const QString folderIcon = QStringLiteral(":/resources/images/genericFolder16.png");
const QString fileIcon = QStringLiteral(":/resources/images/generalFile16.png");
const QString otherIcon = QStringLiteral(":/resources/images/genericOtherFile.png");

QLabel* legendLabel(QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setFixedHeight(legendRowHeight);
    return label;
}

QLabel* iconLabel(QWidget* parent)
{
    QLabel* label = legendLabel(parent);
    label->setMaximumWidth(20);
    return label;
}

// What the files take on disk stands beside their size.
void showBesideSize(QTreeView* view, int onDiskColumn, int sizeColumn)
{
    QHeaderView* header = view->header();
    header->moveSection(header->visualIndex(onDiskColumn), header->visualIndex(sizeColumn) + 1);
    view->setColumnWidth(onDiskColumn, 100);
}

QModelIndex firstSelected(const QTreeView* view)
{
    if (!view->selectionModel())
        return {};
    const QModelIndexList selected = view->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? QModelIndex() : selected.first();
}

} // namespace

DiskUsageScanProgressForm::DiskUsageScanProgressForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageScanProgressForm>())
{
    ui->setupUi(this);
    setUpViews();
    buildLegend();
    scanPanel = addScanPanel();
    connect(scanPanel, &DiskUsageScanInfoForm::scanCancel, this,
            &DiskUsageScanProgressForm::handleScanCancel);
    ui->toolBar->hide();
    ui->tabWidget->hide();
    ui->volumeSummaryLabel->hide();
    ui->tabWidget->setCurrentIndex(0);
    ui->unreadableLabel->hide();
    itemCountTimer.setInterval(itemCountInterval);
    connect(&itemCountTimer, &QTimer::timeout, this,
            [this] { handleUpdateTotalItemScan(worker->itemsScanned()); });
}

DiskUsageScanProgressForm::~DiskUsageScanProgressForm()
{
    // A thread must not outlive the containers it writes into.
    if (worker) {
        worker->setCancel(true);
        worker->wait();
    }
    if (releaseThread)
        releaseThread->wait();
}

void DiskUsageScanProgressForm::setUpViews()
{
    for (QTreeView* view : {ui->treeView, ui->biggestFileTreeView, ui->dataFilesTreeView})
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ui->treeView->setItemDelegate(new DiskUsageGraphDelegate(&generalModel, this));
    // Clickable, but a click does not re-sort: rows keep the order of loading.
    ui->treeView->header()->setSectionsClickable(true);
    ui->dataFilesTreeView->header()->setSectionsClickable(true);
    setUpMap();
}

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
    connect(ui->mapUpButton, &QToolButton::clicked, map, &TreemapView::zoomOut);
    ui->mapUpButton->setEnabled(false);
}

// Three columns side by side: icons, names, sizes. A summary row, a gap, ten
// rows for the largest children, a smaller gap, and the row that usually
// shows everything else.
void DiskUsageScanProgressForm::buildLegend()
{
    auto* columns = new QHBoxLayout(ui->maxItemWidget);
    QVBoxLayout* icons = new QVBoxLayout;
    QVBoxLayout* names = new QVBoxLayout;
    QVBoxLayout* sizes = new QVBoxLayout;
    for (QVBoxLayout* column : {icons, names, sizes}) {
        column->setAlignment(Qt::AlignTop);
        columns->addLayout(column);
    }
    const auto addRow = [&](QLabel* icon, QLabel* name, QLabel* size) {
        icons->addWidget(icon);
        names->addWidget(name);
        sizes->addWidget(size);
    };
    const auto addSpace = [&](int pixels) {
        for (QVBoxLayout* column : {icons, names, sizes})
            column->addSpacing(pixels);
    };
    summaryIcon = iconLabel(ui->maxItemWidget);
    summaryName = legendLabel(ui->maxItemWidget);
    summarySize = legendLabel(ui->maxItemWidget);
    addRow(summaryIcon, summaryName, summarySize);
    addSpace(20);
    for (int row = 0; row < legendRows; ++row) {
        if (row == legendRows - 1)
            addSpace(10);
        legendIcons << iconLabel(ui->maxItemWidget);
        legendNames << legendLabel(ui->maxItemWidget);
        legendSizes << legendLabel(ui->maxItemWidget);
        addRow(legendIcons.last(), legendNames.last(), legendSizes.last());
    }
}

DiskUsageScanInfoForm* DiskUsageScanProgressForm::addScanPanel()
{
    auto* panel = new DiskUsageScanInfoForm(this);
    ui->pageLayout->addWidget(panel);
    return panel;
}

void DiskUsageScanProgressForm::startScanning(const QString& path)
{
    // The scanned folder stands in the path line until the walk enters its
    // first subfolder, which may be long after a large folder's listing.
    if (scanPanel) {
        scanPanel->setTitle(QStringLiteral("Scanning in progress. Please wait ..."));
        scanPanel->setPath(QDir::toNativeSeparators(path));
        scanPanel->setItemCount(0);
    }
    scannedFolder = path;
    ScanRequest request = ScanRequest::fromSettings(path);
    oneDrivePath = request.oneDrivePath;
    worker = new DiskUsageWorkerThread(this, std::move(request));
    connect(worker, &DiskUsageWorkerThread::resultReady, this,
            &DiskUsageScanProgressForm::handleResults);
    connect(worker, &DiskUsageWorkerThread::updatePath, this,
            &DiskUsageScanProgressForm::handleUpdatePath);
    // The entry count is read on a timer: an event per entry would cost the
    // GUI thread more than the scan itself.
    itemCountTimer.start();
    connect(worker, &DiskUsageWorkerThread::updateTotalSubFolder, this,
            &DiskUsageScanProgressForm::handleUpdateTotalSubFolder);
    connect(worker, &DiskUsageWorkerThread::updateScanProgress, this,
            &DiskUsageScanProgressForm::handleUpdateScanProgress);
    worker->start(QThread::InheritPriority);
}

void DiskUsageScanProgressForm::cancelScan(bool cancel)
{
    cancelled = cancel;
    if (worker)
        worker->setCancel(cancel);
}

void DiskUsageScanProgressForm::handleUpdatePath(const QString& path)
{
    if (scanPanel)
        scanPanel->setPath(path);
}

void DiskUsageScanProgressForm::handleUpdateTotalItemScan(int totalItem)
{
    if (scanPanel)
        scanPanel->setItemCount(totalItem);
}

void DiskUsageScanProgressForm::handleUpdateTotalSubFolder(int total)
{
    if (scanPanel)
        scanPanel->setMaximum(total);
}

void DiskUsageScanProgressForm::handleUpdateScanProgress()
{
    if (scanPanel)
        scanPanel->step();
}

void DiskUsageScanProgressForm::handleScanCancel()
{
    cancelled = true;
    releaseAfterResults = true;
    if (worker)
        worker->setCancel(true);
}

void DiskUsageScanProgressForm::handleResults()
{
    // The worker has written its last; it ends right after this signal.
    itemCountTimer.stop();
    if (worker) {
        worker->wait();
        handleUpdateTotalItemScan(worker->itemsScanned());
        takeResult();
    }
    // The panel goes first: shown together with the tabs for a moment, the
    // two would make the window grow to hold both.
    if (scanPanel) {
        scanPanel->hide();
        scanPanel->deleteLater();
    }
    scanPanel = nullptr;
    if (!cancelled && !releaseAfterResults) {
        showFolderTree();
        ui->toolBar->show();
        ui->volumeSummaryLabel->setVisible(!ui->volumeSummaryLabel->text().isEmpty());
        ui->tabWidget->show();
        showBiggestFiles();
        showDataFiles();
        ui->treemapView->setSource(generalModel.tree());
    }
    ui->explorerGeneralButton->setEnabled(false);
    emit scanFinish();
    if (releaseAfterResults) {
        startRelease();
        return;
    }
    if (generalModel.rowCount() > 0)
        ui->treeView->setCurrentIndex(generalModel.index(0, 0));
}

// The rows go into the models here, on the GUI thread, so no model is ever
// touched by the scan's thread.
void DiskUsageScanProgressForm::takeResult()
{
    ScanResult result = worker->takeResult();
    generalModel.setTree(std::move(result.tree), oneDrivePath);
    categories = std::move(result.categories);
    biggestFiles = std::move(result.biggestFiles);
    dataFiles = std::move(result.dataFiles);
    showUnreadable(result.unreadable);
    showVolumeSummary(result);
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

void DiskUsageScanProgressForm::showFolderTree()
{
    QTreeView* view = ui->treeView;
    view->setModel(&generalModel);
    view->expand(generalModel.index(0, 0));
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DiskUsageScanProgressForm::OnTreeViewSelectionChanged);
    view->setColumnWidth(Name, 200);
    view->setColumnWidth(SizeText, 100);
    for (int column = Size; column <= Index; ++column)
        view->hideColumn(column);
    showBesideSize(view, OnDisk, SizeText);
    connect(view, &QTreeView::expanded, this, &DiskUsageScanProgressForm::widenNameColumn);
}

// Each level down indents the names further: the column grows with the rows
// shown, as far as leaves the sizes in view, so that deep names are not cut to
// "...". It never shrinks, so a width the user dragged wider stays.
void DiskUsageScanProgressForm::widenNameColumn()
{
    QTreeView* view = ui->treeView;
    // Public in the base class; QTreeView keeps its override protected.
    const int fitting = static_cast<const QAbstractItemView*>(view)->sizeHintForColumn(Name);
    const int wanted = std::min(fitting, view->viewport()->width() - view->columnWidth(SizeText));
    if (wanted > view->columnWidth(Name))
        view->setColumnWidth(Name, wanted);
}

void DiskUsageScanProgressForm::showBiggestFiles()
{
    biggestFilesModel.setFiles(std::exchange(biggestFiles, {}));
    QTreeView* view = ui->biggestFileTreeView;
    view->setModel(&biggestFilesModel);
    view->setColumnWidth(BiggestFilesModel::FileName, 300);
    view->setColumnWidth(BiggestFilesModel::LastAccess, 200);
    view->hideColumn(BiggestFilesModel::RawSize);
    showBesideSize(view, BiggestFilesModel::FileOnDisk, BiggestFilesModel::FileSize);
}

void DiskUsageScanProgressForm::showDataFiles()
{
    dataFilesModel.setCategories(std::exchange(categories, {}));
    QTreeView* view = ui->dataFilesTreeView;
    view->setModel(&dataFilesModel);
    view->setColumnWidth(CategoryModel::Category, 300);
    for (int column = CategoryModel::LastAccess; column <= CategoryModel::CategoryIndex; ++column)
        view->hideColumn(column);
    view->setColumnWidth(CategoryModel::LastAccess, 200);
    if (dataFilesModel.rowCount() > 0)
        view->setCurrentIndex(dataFilesModel.index(0, 0));
}

void DiskUsageScanProgressForm::OnTreeViewSelectionChanged(const QItemSelection& selected,
                                                           const QItemSelection&)
{
    if (selected.isEmpty()) {
        ui->explorerGeneralButton->setEnabled(false);
        return;
    }
    const QModelIndexList indexes = selected.indexes();
    if (indexes.isEmpty())
        return;
    const QModelIndex row = indexes.first();
    const ScanTree::Index folder = FolderTreeModel::nodeOf(row);
    ui->treemapView->setHighlighted(folder);
    ui->explorerGeneralButton->setEnabled(!row.siblingAtColumn(Path).data().toString().isEmpty());
    showLegend(folder);
}

// The folder, its ten largest children, and what the rest of it takes.
void DiskUsageScanProgressForm::showLegend(ScanTree::Index folder)
{
    const ScanTree& tree = *generalModel.tree();
    const quint64 total = tree.node(folder).size;
    summaryIcon->setPixmap(QPixmap(folderIcon));
    summaryName->setText(tree.nameText(folder));
    summarySize->setText(DiskUsageGlobal::sizeText(double(total)));

    quint64 listed = 0;
    int filled = 0;
    for (ScanTree::Index child : tree.largestChildren(folder, legendRows - 1)) {
        const quint64 size = tree.node(child).size;
        listed += size;
        showLegendRow(filled++, tree.node(child).isFolder() ? folderIcon : fileIcon,
                      shortenedName(tree.nameText(child)), size);
    }
    for (int hidden = filled; hidden < legendRows; ++hidden) {
        legendIcons[hidden]->hide();
        legendNames[hidden]->hide();
        legendSizes[hidden]->hide();
    }
    // Everything that is not among the largest children.
    if (total > listed && filled < legendRows)
        showLegendRow(filled, otherIcon, QStringLiteral("Other Smaller Items"), total - listed);
}

void DiskUsageScanProgressForm::showLegendRow(int row, const QString& icon, const QString& name,
                                              quint64 size)
{
    legendIcons[row]->setPixmap(QPixmap(icon));
    legendNames[row]->setText(name);
    legendSizes[row]->setText(DiskUsageGlobal::sizeText(double(size)));
    legendIcons[row]->show();
    legendNames[row]->show();
    legendSizes[row]->show();
}

QString DiskUsageScanProgressForm::shortenedName(const QString& name)
{
    if (name.size() <= 40)
        return name;
    return name.left(18) + QStringLiteral("...") + name.right(18);
}

void DiskUsageScanProgressForm::on_backButton_clicked()
{
    // Back twice, or during a release, starts nothing more.
    if (releaseThread)
        return;
    startRelease();
}

void DiskUsageScanProgressForm::on_explorerGeneralButton_clicked()
{
    const QModelIndex row = firstSelected(ui->treeView);
    if (row.isValid())
        ShellActions::exploreFolder(this, row.siblingAtColumn(Path).data().toString());
}

QString DiskUsageScanProgressForm::selectedFilePath() const
{
    const QModelIndex row = firstSelected(ui->biggestFileTreeView);
    if (!row.isValid())
        return {};
    return ShellActions::joinFolderAndName(
        row.siblingAtColumn(BiggestFilesModel::Folder).data().toString(),
        row.siblingAtColumn(BiggestFilesModel::FileName).data().toString());
}

void DiskUsageScanProgressForm::on_explorerBiggestButton_clicked()
{
    const QString path = selectedFilePath();
    if (!path.isEmpty())
        ShellActions::showInExplorer(path, this);
}

void DiskUsageScanProgressForm::on_openFileBiggestButton_clicked()
{
    const QString path = selectedFilePath();
    if (!path.isEmpty())
        ShellActions::openFile(path, this);
}

void DiskUsageScanProgressForm::on_dataFilesViewButton_clicked()
{
    const QModelIndex row = firstSelected(ui->dataFilesTreeView);
    const QVariant category = row.siblingAtColumn(CategoryModel::CategoryIndex).data();
    // A disabled category's row has no index, and no files to show.
    if (!category.isValid())
        return;
    const int index = category.toInt();
    auto* dialog = new ResultDetailsDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setEntries(&dataFiles[index]);
    dialog->setWindowTitle(row.siblingAtColumn(CategoryModel::Category).data().toString() +
                           QStringLiteral(" (20 Biggest Files)"));
    dialog->fill();
    dialog->exec();
}

void DiskUsageScanProgressForm::startRelease()
{
    QAbstractItemDelegate* delegate = ui->treeView->itemDelegate();
    ui->treeView->setItemDelegate(nullptr);
    delete delegate;
    for (QTreeView* view : {ui->treeView, ui->biggestFileTreeView, ui->dataFilesTreeView})
        view->setModel(nullptr);
    ui->treemapView->clear();
    // The views have let go; the tree is freed on a thread of its own.
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

    releaseThread = new DiskUsageClearRamThread(this, std::move(tree));
    connect(releaseThread, &DiskUsageClearRamThread::updateScanProgress, this,
            &DiskUsageScanProgressForm::handleUpdateScanProgress);
    connect(releaseThread, &DiskUsageClearRamThread::processFinish, this,
            &DiskUsageScanProgressForm::onClearRamFinish);
    releaseThread->start(QThread::InheritPriority);
}

void DiskUsageScanProgressForm::onClearRamFinish()
{
    releaseThread->wait();
    emit clearRAMFinish();
    emit backToMain();
}
