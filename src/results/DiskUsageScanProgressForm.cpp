#include "DiskUsageScanProgressForm.h"

#include "CompareDialog.h"
#include "DiskUsageScanInfoForm.h"
#include "MeasureSetting.h"
#include "RemovalQuestion.h"
#include "ResultDetailsDialog.h"
#include "desktop/ShellActions.h"
#include "scan/VolumeReconciliation.h"
#include "settings/SettingsStore.h"
#include "ui_DiskUsageScanProgressForm.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>

namespace {

// Whether the map is coloured by type (0) or by top-level folder (1).
const QString mapColouringName = QStringLiteral("MapColouring");

} // namespace

DiskUsageScanProgressForm::DiskUsageScanProgressForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageScanProgressForm>())
    , changes(this)
    , comparer(this)
{
    ui->setupUi(this);
    setUpMap();
    connectButtons();
    setUpMeasure();
    setUpActions();
    setUpComparing();
    scanPanel = addScanPanel();
    connect(scanPanel, &DiskUsageScanInfoForm::scanCancel, this,
            &DiskUsageScanProgressForm::onScanCancel);
    ui->toolBar->hide();
    ui->tabWidget->hide();
    ui->volumeSummaryLabel->hide();
    ui->originLabel->hide();
    ui->tabWidget->setCurrentIndex(0);
    ui->unreadableLabel->hide();
    connect(&scan, &ScanController::finished, this, &DiskUsageScanProgressForm::onResults);
    connect(&scan, &ScanController::released, this, &DiskUsageScanProgressForm::onReleased);
}

// The scan's threads end with the controller, before the models they fill.
DiskUsageScanProgressForm::~DiskUsageScanProgressForm() = default;

// The map and the lists follow each other: a click on the map chooses the
// folder in the tree and the file where it is listed, a folder or file chosen
// there is outlined on the map.
void DiskUsageScanProgressForm::setUpMap()
{
    TreemapView* map = ui->treemapView;
    connect(map, &TreemapView::folderClicked, this, [this](ScanTree::Index folder) {
        const QModelIndex index = generalModel.indexOf(folder);
        ui->treeView->setCurrentIndex(index);
        ui->treeView->scrollTo(index);
    });
    connect(map, &TreemapView::fileClicked, this, &DiskUsageScanProgressForm::onMapFileClicked);
    connect(ui->biggestFileTreeView, &BiggestFilesView::fileChosen, this,
            [this](const QString& path) {
                const ScanTree* tree = changes.scan().tree.get();
                const ScanTree::Index file = tree ? tree->locate(path) : ScanTree::none;
                if (file != ScanTree::none)
                    ui->treemapView->setHighlighted(file);
            });
    connect(map, &TreemapView::zoomChanged, this, [this, map](const QString& folder) {
        ui->mapPathLabel->setText(folder);
        ui->mapUpButton->setEnabled(map->canZoomOut());
    });
    connect(ui->mapUpButton, &QAbstractButton::clicked, map, &TreemapView::zoomOut);
    ui->mapUpButton->setEnabled(false);
    const std::optional<quint32> colouring = SettingsStore::readDword(mapColouringName);
    ui->mapColourBox->setCurrentIndex(colouring == 1 ? 1 : 0);
    map->setColouring(colouringOf(ui->mapColourBox->currentIndex()));
    connect(ui->mapColourBox, &QComboBox::currentIndexChanged, this, [this](int index) {
        ui->treemapView->setColouring(colouringOf(index));
        SettingsStore::writeDword(mapColouringName, quint32(index));
        showMapLegend();
    });
    connect(map, &TreemapView::categoryAmountsChanged, this,
            &DiskUsageScanProgressForm::showMapLegend);
}

TreemapPainter::Colouring DiskUsageScanProgressForm::colouringOf(int choice)
{
    return choice == 1 ? TreemapPainter::Colouring::ByFolder : TreemapPainter::Colouring::ByType;
}

void DiskUsageScanProgressForm::showMapLegend()
{
    const TreemapView* map = ui->treemapView;
    const ScanTree* tree = changes.scan().tree.get();
    if (!tree)
        return ui->mapLegend->clear();
    if (map->showsChanges())
        ui->mapLegend->showChanges();
    else if (map->colouring() == TreemapPainter::Colouring::ByFolder)
        ui->mapLegend->showBranches(*tree, map->measure());
    else if (map->categoryAmounts())
        ui->mapLegend->showCategories(categoryNames(), *map->categoryAmounts(), map->measure());
    else
        ui->mapLegend->clear(); // until the map has counted them again
}

void DiskUsageScanProgressForm::onMapFileClicked(ScanTree::Index file)
{
    const ScanTree* tree = changes.scan().tree.get();
    if (!tree)
        return;
    ui->biggestFileTreeView->selectPath(tree->path(file));
    const QStringList names = categoryNames();
    const std::uint8_t category = tree->node(file).category;
    if (category < names.size())
        ui->dataFilesTreeView->selectNamed(names[category]);
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

// The switch starts where the last results left it.
void DiskUsageScanProgressForm::setUpMeasure()
{
    const ScanTree::Measure measure = MeasureSetting::load();
    ui->onDiskMeasureButton->setChecked(measure == ScanTree::Measure::OnDisk);
    generalModel.setMeasure(measure);
    ui->treemapView->setMeasure(measure);
    // Of two exclusive buttons, this one toggles at every switch.
    connect(ui->onDiskMeasureButton, &QAbstractButton::toggled, this,
            &DiskUsageScanProgressForm::onMeasureChanged);
}

ScanTree::Measure DiskUsageScanProgressForm::chosenMeasure() const
{
    return ui->onDiskMeasureButton->isChecked() ? ScanTree::Measure::OnDisk
                                                : ScanTree::Measure::Size;
}

// The tree's rows move in place, keeping the user's selection and open
// folders; the map is laid out again.
void DiskUsageScanProgressForm::onMeasureChanged()
{
    const ScanTree::Measure measure = chosenMeasure();
    MeasureSetting::write(measure);
    generalModel.setMeasure(measure);
    ui->treemapView->setMeasure(measure);
    showMapLegend();
    onFolderSelected();
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
    this->request = request;
    scan.start(std::move(request));
}

void DiskUsageScanProgressForm::openScanFile(const QString& file)
{
    if (scanPanel) {
        scanPanel->setTitle(QStringLiteral("Opening a saved scan. Please wait ..."));
        scanPanel->setPath(QDir::toNativeSeparators(file));
        scanPanel->setItemCount(-1);
        scanPanel->setMaximum(0);
    }
    scan.open(file);
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
    ScanResult taken = scan.takeResult();
    if (!scan.openError().isEmpty()) {
        emit scanFinish();
        if (!releaseAfterResults && !cancelled)
            emit openFailed(scan.openError());
        return emit backToMain();
    }
    if (!taken.isLive())
        scannedFolder = taken.tree->rootPath();
    changes.setScan(std::move(taken), request);
    const ScanResult& result = changes.scan();
    generalModel.setTree(result.tree, oneDrivePath);
    showUnreadable(result.unreadable);
    showVolumeSummary(result);
    showOrigin(result);
    const bool whole = !cancelled && !releaseAfterResults;
    if (whole)
        showResults();
    ui->explorerGeneralButton->setEnabled(false);
    if (whole && result.isLive() && result.tree)
        emit scanCompleted(result);
    emit scanFinish();
    if (releaseAfterResults)
        return startRelease();
    if (generalModel.rowCount() > 0)
        ui->treeView->setCurrentIndex(generalModel.index(0, 0));
}

void DiskUsageScanProgressForm::showResults()
{
    const ScanResult& result = changes.scan();
    ui->treeView->showFolders(&generalModel);
    connect(ui->treeView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DiskUsageScanProgressForm::onFolderSelected);
    ui->toolBar->show();
    ui->volumeSummaryLabel->setVisible(!ui->volumeSummaryLabel->text().isEmpty());
    ui->tabWidget->show();
    biggestFilesModel.setFiles(result.biggestFiles);
    ui->biggestFileTreeView->showFiles(&biggestFilesModel);
    dataFilesModel.setCategories(result.categories);
    ui->dataFilesTreeView->showCategories(&dataFilesModel);
    ui->treemapView->setCategoryNames(categoryNames());
    ui->treemapView->setSource(generalModel.tree());
    ui->searchPanel->setTree(result.tree, categoryNames());
}

QStringList DiskUsageScanProgressForm::categoryNames() const
{
    QStringList names;
    for (const FileTypeCategory& category : changes.scan().categories)
        names << category.name;
    return names;
}

// A scan of a volume's root says how it adds up against the volume, as it is
// now: so only a scan made now.
void DiskUsageScanProgressForm::showVolumeSummary(const ScanFigures& result)
{
    const std::optional<VolumeReconciliation> volume =
        result.isLive() ? VolumeReconciliation::of(scannedFolder, result) : std::nullopt;
    ui->volumeSummaryLabel->setText(volume ? volume->text() : QString());
    ui->volumeSummaryLabel->setToolTip(volume ? volume->details() : QString());
}

// A scan read from a file says whose it is, and that the disk may have
// changed since.
void DiskUsageScanProgressForm::showOrigin(const ScanResult& result)
{
    ui->originLabel->setVisible(!result.isLive());
    if (result.isLive())
        return;
    const QString when =
        result.scannedAt.isValid()
            ? QLocale().toString(result.scannedAt.toLocalTime(), QLocale::ShortFormat)
            : QStringLiteral("an unknown date");
    const QString host = result.host.isEmpty() ? QStringLiteral("an unknown machine") : result.host;
    ui->originLabel->setText(
        QStringLiteral("Saved scan of %1 on %2, %3. Not live: the disk may have changed since.")
            .arg(QDir::toNativeSeparators(result.tree->rootPath()), host, when));
    ui->originLabel->setToolTip(
        QStringLiteral("Opened from %1").arg(QDir::toNativeSeparators(result.openedFrom)));
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
    const std::shared_ptr<const ScanComparison>& comparison = comparer.comparison();
    if (comparison && comparison->newerTree() == generalModel.tree())
        ui->maxItemWidget->showChanges(*comparison, *folder);
    else
        ui->maxItemWidget->showFolder(*generalModel.tree(), *folder, generalModel.measure());
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
    ResultDetailsDialog dialog(changes.scan().dataFiles[*category], this);
    dialog.setWindowTitle(ui->dataFilesTreeView->selectedName() +
                          QStringLiteral(" (20 Biggest Files)"));
    resultActions.attachTo(dialog.filesView());
    details = &dialog;
    detailsCategory = *category;
    dialog.exec();
    details = nullptr;
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
    comparer.stop();
    ui->compareLabel->hide();
    stopComparingAction->setEnabled(false);
    ui->treeView->letGo();
    ui->biggestFileTreeView->setModel(nullptr);
    ui->dataFilesTreeView->setModel(nullptr);
    ui->treemapView->clear();
    ui->mapLegend->clear();
    ui->searchPanel->clear();
    ui->searchPanel->resultsView()->setModel(nullptr);
    std::shared_ptr<const ScanTree> tree = generalModel.tree();
    generalModel.clear();
    changes.setScan({}, {});
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

void DiskUsageScanProgressForm::setUpActions()
{
    using Form = DiskUsageScanProgressForm;
    const QList<QWidget*> views{ui->treeView, ui->biggestFileTreeView, ui->treemapView,
                                ui->searchPanel->resultsView()};
    for (QWidget* view : views)
        resultActions.attachTo(view);
    // Find works from anywhere on the screen.
    resultActions.find.setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(&resultActions.find);
    connect(&resultActions, &ResultActions::prepare, this, &Form::onPrepareActions);
    connect(&resultActions.find, &QAction::triggered, this, &Form::onFind);
    connect(ui->searchPanel, &SearchPanel::chosen, this, &Form::onSearchChosen);
    connect(&resultActions.open, &QAction::triggered, this, &Form::onOpen);
    connect(&resultActions.showInFolder, &QAction::triggered, this, &Form::onShowInFolder);
    connect(&resultActions.copyPath, &QAction::triggered, this, &Form::onCopyPath);
    connect(&resultActions.refresh, &QAction::triggered, this, &Form::onRefresh);
    connect(&resultActions.refreshAll, &QAction::triggered, this, &Form::onRefreshAll);
    connect(&resultActions.moveToTrash, &QAction::triggered, this,
            [this] { onRemove(ResultChanges::Removal::ToTrash); });
    connect(&resultActions.deletePermanently, &QAction::triggered, this,
            [this] { onRemove(ResultChanges::Removal::Permanently); });
    connect(&changes, &ResultChanges::changed, this, &Form::onScanChanged);
    connect(&changes, &ResultChanges::finished, this, &Form::onChangesFinished);
    ui->changeStatusLabel->hide();
}

// The map acts only on the tile the user clicked, while it is drawn: never on
// a folder for its file, nor on something chosen elsewhere meanwhile.
std::vector<ScanTree::Index> DiskUsageScanProgressForm::entriesOf(const QWidget* view) const
{
    const ScanTree* tree = changes.scan().tree.get();
    if (!tree || !ui->treeView->model())
        return {};
    if (view == ui->treeView)
        return ui->treeView->selectedFolders();
    if (view == ui->treemapView) {
        const ScanTree::Index chosen = ui->treemapView->chosenNode();
        return chosen != ScanTree::none ? std::vector{chosen} : std::vector<ScanTree::Index>{};
    }
    if (view == ui->searchPanel->resultsView())
        return ui->searchPanel->selectedNodes();
    QStringList paths;
    if (view == ui->biggestFileTreeView)
        paths = ui->biggestFileTreeView->selectedFilePaths();
    else if (details && view == details->filesView())
        paths = details->selectedPaths();
    std::vector<ScanTree::Index> entries;
    for (const QString& path : paths) {
        const ScanTree::Index file = tree->locate(path);
        if (file != ScanTree::none)
            entries.push_back(file);
    }
    return entries;
}

std::vector<ScanTree::Index> DiskUsageScanProgressForm::chosenEntries() const
{
    return entriesOf(actingOn);
}

void DiskUsageScanProgressForm::onPrepareActions(QWidget* view)
{
    actingOn = view;
    const std::vector<ScanTree::Index> entries = entriesOf(view);
    const bool idle = canChange();
    const bool any = !entries.empty();
    const bool removable =
        idle && any && std::find(entries.begin(), entries.end(), 0) == entries.end();
    // In the search's list, Enter shows the entry in the tree.
    resultActions.open.setEnabled(entries.size() == 1 && view != ui->searchPanel->resultsView());
    resultActions.showInFolder.setEnabled(any);
    resultActions.copyPath.setEnabled(any);
    resultActions.refresh.setEnabled(idle && any);
    resultActions.refreshAll.setEnabled(idle);
    resultActions.moveToTrash.setEnabled(removable);
    resultActions.deletePermanently.setEnabled(removable);
}

// A scan read from a file may not match the disk: nothing is removed or read
// again on its word.
bool DiskUsageScanProgressForm::canChange() const
{
    return !changes.isBusy() && changes.scan().tree && changes.scan().isLive();
}

void DiskUsageScanProgressForm::onOpen()
{
    const std::vector<ScanTree::Index> entries = chosenEntries();
    if (entries.size() == 1)
        handOver(entries.front(), false);
}

void DiskUsageScanProgressForm::onShowInFolder()
{
    const std::vector<ScanTree::Index> entries = chosenEntries();
    if (!entries.empty())
        handOver(entries.front(), true);
}

// A folder always opens in the file manager; a file opens, or is shown there.
void DiskUsageScanProgressForm::handOver(ScanTree::Index entry, bool showFile)
{
    const ScanTree& tree = *changes.scan().tree;
    if (tree.node(entry).isFolder())
        ShellActions::exploreFolder(tree.shownPath(entry), this);
    else if (showFile)
        ShellActions::showInExplorer(tree.path(entry), this);
    else
        ShellActions::openFile(tree.path(entry), this);
}

void DiskUsageScanProgressForm::onCopyPath()
{
    QStringList paths;
    for (ScanTree::Index entry : chosenEntries())
        paths << changes.scan().tree->shownPath(entry);
    if (!paths.isEmpty())
        QGuiApplication::clipboard()->setText(paths.join('\n'));
}

// A file is read again with its folder.
void DiskUsageScanProgressForm::onRefresh()
{
    if (!canChange())
        return;
    const ScanTree& tree = *changes.scan().tree;
    std::vector<ScanTree::Index> folders;
    for (ScanTree::Index entry : chosenEntries())
        folders.push_back(tree.node(entry).isFolder() ? entry : tree.node(entry).parent);
    if (folders.empty())
        return;
    onChangesStarted(folders.size() == 1
                         ? QStringLiteral("Reading %1 again...").arg(tree.nameText(folders.front()))
                         : QStringLiteral("Reading %1 folders again...").arg(folders.size()));
    changes.refresh(folders);
}

void DiskUsageScanProgressForm::onRefreshAll()
{
    if (!canChange())
        return;
    onChangesStarted(QStringLiteral("Reading everything again..."));
    changes.refresh({0});
}

void DiskUsageScanProgressForm::onRemove(ResultChanges::Removal how)
{
    if (!canChange())
        return;
    const ScanTree& tree = *changes.scan().tree;
    const std::vector<ScanTree::Index> entries = ResultChanges::removable(tree, chosenEntries());
    if (entries.empty())
        return;
    const RemovalQuestion question(tree, entries, how);
    if (!question.ask(actingOn ? actingOn->window() : this))
        return;
    onChangesStarted(how == ResultChanges::Removal::ToTrash
                         ? QStringLiteral("Moving to the %1...").arg(RemovalQuestion::trashName())
                         : QStringLiteral("Deleting..."));
    changes.remove(entries, how);
}

// Back would let go of the results the work reads.
void DiskUsageScanProgressForm::onChangesStarted(const QString& doing)
{
    ui->backButton->setEnabled(false);
    ui->changeStatusLabel->setText(doing);
    ui->changeStatusLabel->setToolTip({});
    ui->changeStatusLabel->show();
}

// Everything follows the changed scan; the tree keeps the user's place.
void DiskUsageScanProgressForm::onScanChanged()
{
    const ScanResult& result = changes.scan();
    comparer.follow(result);
    const FolderTreeView::Place place = ui->treeView->place();
    const QString category = ui->dataFilesTreeView->selectedName();
    generalModel.setTree(result.tree, oneDrivePath);
    ui->treeView->restore(place);
    biggestFilesModel.setFiles(result.biggestFiles);
    dataFilesModel.setCategories(result.categories);
    ui->dataFilesTreeView->selectNamed(category);
    ui->treemapView->follow(result.tree);
    ui->searchPanel->setTree(result.tree, categoryNames());
    if (details)
        details->setFiles(result.dataFiles[detailsCategory]);
    onFolderSelected();
    showUnreadable(result.unreadable);
    showVolumeSummary(result);
}

void DiskUsageScanProgressForm::onChangesFinished(const QList<ResultChanges::Failure>& failures)
{
    ui->backButton->setEnabled(true);
    QLabel* label = ui->changeStatusLabel;
    label->setVisible(!failures.isEmpty());
    if (failures.isEmpty())
        return;
    const ResultChanges::Failure& first = failures.first();
    QString text = QStringLiteral("Could not remove %1: %2").arg(first.path, first.reason);
    if (failures.size() > 1)
        text += QStringLiteral(" (and %1 more)").arg(failures.size() - 1);
    QStringList lines;
    for (const ResultChanges::Failure& failure : failures)
        lines << failure.path + QStringLiteral(": ") + failure.reason;
    label->setText(text);
    label->setToolTip(lines.join('\n'));
}

void DiskUsageScanProgressForm::onFind()
{
    ui->tabWidget->setCurrentWidget(ui->searchTab);
    ui->searchPanel->focusSearch();
}

// A file shows as its folder, chosen in the tree.
void DiskUsageScanProgressForm::onSearchChosen(ScanTree::Index entry)
{
    const ScanTree& tree = *changes.scan().tree;
    const ScanTree::Index folder = tree.node(entry).isFolder() ? entry : tree.node(entry).parent;
    const QModelIndex row = generalModel.indexOf(folder);
    ui->tabWidget->setCurrentWidget(ui->generalTab);
    ui->treeView->setCurrentIndex(row);
    ui->treeView->scrollTo(row);
    ui->treeView->setFocus();
}

void DiskUsageScanProgressForm::setUpComparing()
{
    using Form = DiskUsageScanProgressForm;
    auto* menu = new QMenu(this);
    stopComparingAction = menu->addAction(QStringLiteral("Stop Comparing"));
    stopComparingAction->setObjectName(QStringLiteral("stopComparingAction"));
    stopComparingAction->setEnabled(false);
    ui->compareButton->setMenu(menu);
    ui->compareLabel->hide();
    connect(ui->compareButton, &QAbstractButton::clicked, this, &Form::onCompare);
    connect(stopComparingAction, &QAction::triggered, this, &Form::onStopComparing);
    connect(&comparer, &ScanComparer::compared, this, &Form::onCompared);
    connect(&comparer, &ScanComparer::failed, this, &Form::onCompareFailed);
}

void DiskUsageScanProgressForm::onCompare()
{
    CompareDialog dialog(ScanHistory().scansOf(scannedFolder), scannedFolder, this);
    if (dialog.exec() != QDialog::Accepted || !changes.scan().tree)
        return;
    const QString file = dialog.chosenFile();
    comparer.compareWith(file, changes.scan(), scannedFolder);
    showChanges();
    ui->compareLabel->setText(QStringLiteral("Reading %1...").arg(QFileInfo(file).fileName()));
    ui->compareLabel->setToolTip(QDir::toNativeSeparators(file));
    ui->compareLabel->show();
    stopComparingAction->setEnabled(true);
}

void DiskUsageScanProgressForm::onCompared()
{
    showChanges();
    const QDateTime scannedAt = comparer.olderScannedAt();
    const QString since = scannedAt.isValid()
                              ? QLocale().toString(scannedAt.toLocalTime(), QLocale::ShortFormat)
                              : QFileInfo(comparer.olderFile()).fileName();
    ui->compareLabel->setText(
        QStringLiteral("Since %1: %2")
            .arg(since, ScanComparison::changeText(comparer.comparison()->changeOf(0))));
}

void DiskUsageScanProgressForm::onCompareFailed(const QString& reason)
{
    onStopComparing();
    QMessageBox::warning(this, QStringLiteral("Compare with an Older Scan"), reason);
}

void DiskUsageScanProgressForm::onStopComparing()
{
    comparer.stop();
    showChanges();
    ui->compareLabel->hide();
    stopComparingAction->setEnabled(false);
}

// The views follow the comparison of the scan they show, or go back to none.
void DiskUsageScanProgressForm::showChanges()
{
    const std::shared_ptr<const ScanComparison>& comparison = comparer.comparison();
    ui->treeView->showChanges(comparison);
    ui->treemapView->showChanges(comparison);
    showMapLegend();
    onFolderSelected();
}
