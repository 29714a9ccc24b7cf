#include "DiskUsageForm.h"

#include "AboutDialog.h"
#include "DiskUsageDetailInfoDialog.h"
#include "DiskUsageFolderInfoForm.h"
#include "DiskUsageItemInfoForm.h"
#include "HomeLog.h"
#include "RecentFolders.h"
#include "UpgradeDialog.h"
#include "WebLinks.h"
#include "desktop/ShellActions.h"
#include "platform/Shell.h"
#include "platform/UserFolders.h"
#include "results/DiskUsageScanProgressForm.h"
#include "scan/ScanKeeper.h"
#include "settings/DiskUsageOptionsForm.h"
#include "settings/SettingsStore.h"
#include "ui_DiskUsageForm.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QScrollArea>
#include <QStackedLayout>
#include <QStyle>

namespace {

QString specialFolder(platform::SpecialFolder which)
{
    return QString::fromStdWString(platform::specialFolderPath(which));
}

qint64 bytesOf(const QList<ScanHistory::Entry>& entries)
{
    qint64 bytes = 0;
    for (const ScanHistory::Entry& entry : entries)
        bytes += entry.fileBytes;
    return bytes;
}

} // namespace

DiskUsageForm::DiskUsageForm(const Settings& settings, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageForm>())
    , settings(settings)
    , keeper(std::make_unique<ScanKeeper>())
{
    ui->setupUi(this);
    // The cards sit on the tab's own background, not the darker list one.
    for (QScrollArea* area : {ui->drivesScrollArea, ui->foldersScrollArea}) {
        area->viewport()->setAutoFillBackground(false);
        area->widget()->setAutoFillBackground(false);
    }
    addDriveCards();
    addFolderCards();
    // The cards keep their width; extra width goes to the recent folders.
    const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    for (QScrollArea* area : {ui->drivesScrollArea, ui->foldersScrollArea})
        area->setMinimumWidth(area->widget()->minimumSizeHint().width() + scrollBar);
    recent = new RecentFolders(ui->recentGroupBox, ui->recentLayout);
    connect(recent, &RecentFolders::chosen, this, &DiskUsageForm::startScan);
    addOptionsPage();
    connectButtons();

    ui->tabWidget->setCurrentIndex(0);
    stackedLayout = new QStackedLayout(this);
    stackedLayout->addWidget(ui->mainWidget);
}

DiskUsageForm::~DiskUsageForm() = default;

void DiskUsageForm::connectButtons()
{
    connect(ui->selectFolderButton, &QAbstractButton::clicked, this,
            &DiskUsageForm::onSelectFolder);
    connect(ui->openScanButton, &QAbstractButton::clicked, this, &DiskUsageForm::onOpenScan);
    connect(ui->websiteButton, &QAbstractButton::clicked, this, &DiskUsageForm::onWebsite);
    connect(ui->aboutButton, &QAbstractButton::clicked, this, &DiskUsageForm::onAbout);
    connect(ui->upgradeButton, &QAbstractButton::clicked, this, &DiskUsageForm::onUpgrade);
    // Asked on every change of tab, also between the other two.
    connect(ui->tabWidget, &QTabWidget::currentChanged, this, [this] { offerToSaveOptions(); });
}

void DiskUsageForm::addOptionsPage()
{
    optionsForm = new DiskUsageOptionsForm(ui->tabOptions);
    ui->optionsLayout->addWidget(optionsForm);
    optionsForm->edit(settings);
    optionsForm->show();
    connect(optionsForm, &DiskUsageOptionsForm::saved, this, &DiskUsageForm::settingsSaved);
    connect(optionsForm, &DiskUsageOptionsForm::deleteSavedScans, this,
            &DiskUsageForm::onDeleteSavedScans);
    connect(keeper.get(), &ScanKeeper::kept, this, &DiskUsageForm::showSavedScans);
    showSavedScans();
}

const QStringList& DiskUsageForm::recentFolders() const
{
    return recent->paths();
}

// Also replaces the cards shown before, so that free space and disks that
// came or went are current again.
void DiskUsageForm::addDriveCards()
{
    // Later: a card may be the one whose click got us here.
    while (QLayoutItem* item = ui->drivesLayout->takeAt(0)) {
        if (QWidget* card = item->widget()) {
            card->hide();
            card->deleteLater();
        }
        delete item;
    }
    drives = DriveInfo::readDrives();
    for (int index = 0; index < drives.size(); ++index) {
        const DriveInfo& drive = drives.at(index);
        auto* card = new DiskUsageItemInfoForm(ui->drivesList);
        card->diskIndex = index;
        card->setVolumeName(drive.name);
        card->setFileSystem(drive.fileSystem);
        card->setSizeText(drive.sizeText(), drive.sizeDetails());
        card->setUsedPercent(drive.usedPercent());
        card->setRootPath(drive.rootPath);
        connect(card, &DiskUsageItemInfoForm::showDetails, this, &DiskUsageForm::onShowDetails);
        connect(card, &DiskUsageItemInfoForm::startScan, this, &DiskUsageForm::onDriveScan);
        ui->drivesLayout->addWidget(card);
    }
    ui->drivesLayout->addStretch();
}

void DiskUsageForm::addFolderCards()
{
    using platform::SpecialFolder;
    specialFolderPaths[Documents] = specialFolder(SpecialFolder::Documents);
    specialFolderPaths[Downloads] = SettingsStore::downloadsPath();
    specialFolderPaths[Music] = specialFolder(SpecialFolder::Music);
    specialFolderPaths[Pictures] = specialFolder(SpecialFolder::Pictures);
    specialFolderPaths[Videos] = specialFolder(SpecialFolder::Videos);
    specialFolderPaths[Profile] = specialFolder(SpecialFolder::Profile);

    // Windows has every special folder; a Linux desktop may have made only some.
    const bool onlyExisting = QSysInfo::kernelType() != QLatin1String("winnt");
    for (int index = 0; index < int(specialFolderPaths.size()); ++index) {
        const QString& path = specialFolderPaths.at(index);
        if (onlyExisting && !QFileInfo(path).isDir())
            continue;
        auto* card = new DiskUsageFolderInfoForm(ui->foldersList);
        card->diskIndex = index;
        card->setName(QFileInfo(path).fileName());
        card->setPath(path);
        connect(card, &DiskUsageFolderInfoForm::startScan, this, [this, path] { startScan(path); });
        ui->foldersLayout->addWidget(card);
    }
    ui->foldersLayout->addStretch();
}

void DiskUsageForm::startScan(const QString& path)
{
    // The home page is hidden while results are shown, so a second screen
    // could only orphan the first; a special folder that was not found has
    // no path to scan.
    if (resultsScreen || path.isEmpty())
        return;
    // A folder that is gone would scan to nothing and take a recent row.
    if (!QFileInfo::exists(path)) {
        QMessageBox::warning(
            this, QStringLiteral("Folder not found"),
            QStringLiteral("%1 does not exist.").arg(QDir::toNativeSeparators(path)));
        return;
    }
    DiskUsageScanProgressForm* results = addResultsScreen();
    connect(results, &DiskUsageScanProgressForm::scanCompleted, this,
            [this, path](const ScanResult& scan) { onScanCompleted(path, scan); });
    results->startScanning(ScanRequest::of(path, settings));
    recent->remember(path);
}

void DiskUsageForm::openScan(const QString& file)
{
    if (resultsScreen || file.isEmpty())
        return;
    addResultsScreen()->openScanFile(file);
}

// The results screen in place of this page, until it asks to go back.
DiskUsageScanProgressForm* DiskUsageForm::addResultsScreen()
{
    emit showToolbarSignal(false);
    isScanning = true;

    resultsScreen = new DiskUsageScanProgressForm(this);
    using Results = DiskUsageScanProgressForm;
    connect(resultsScreen, &Results::backToMain, this, &DiskUsageForm::onBackToMain);
    connect(resultsScreen, &Results::scanFinish, this, &DiskUsageForm::onScanFinish);
    connect(resultsScreen, &Results::clearRAMStart, this, &DiskUsageForm::onClearRAMStart);
    connect(resultsScreen, &Results::clearRAMFinish, this, &DiskUsageForm::onClearRAMFinish);
    connect(resultsScreen, &Results::openFailed, this, &DiskUsageForm::onOpenFailed);
    resultsScreen->show();
    stackedLayout->addWidget(resultsScreen);
    stackedLayout->setCurrentIndex(1);
    return resultsScreen;
}

void DiskUsageForm::onShowDetails(int diskIndex)
{
    if (diskIndex < 0 || diskIndex >= drives.size())
        return;
    DiskUsageDetailInfoDialog dialog(this);
    dialog.fill(drives.at(diskIndex));
    dialog.exec();
}

void DiskUsageForm::onDriveScan(int diskIndex)
{
    if (diskIndex < 0 || diskIndex >= drives.size())
        return;
    const QString path = drives.at(diskIndex).scanPath();
    // A disk that went away since its card was made takes its card along.
    if (QFileInfo::exists(path))
        startScan(path);
    else
        addDriveCards();
}

void DiskUsageForm::onBackToMain()
{
    if (!resultsScreen)
        return;
    stackedLayout->removeWidget(resultsScreen);
    resultsScreen->deleteLater();
    resultsScreen = nullptr;
    addDriveCards();
    recent->refresh();
}

void DiskUsageForm::closeIfRequested()
{
    if (!closeRequested)
        return;
    emit closeApp();
    close();
}

void DiskUsageForm::onScanFinish()
{
    emit showToolbarSignal(true);
    isScanning = false;
    closeIfRequested();
}

// The settings as they are when the scan ends decide whether it is kept.
void DiskUsageForm::onScanCompleted(const QString& path, const ScanResult& scan)
{
    recent->markScanned(path, scan.scannedAt);
    if (!settings.history.enabled)
        return;
    qCDebug(lcHome).noquote() << "keeping scan:" << path;
    keeper->keep(scan, {settings.history.perFolder, settings.history.totalBytes()});
}

void DiskUsageForm::showSavedScans()
{
    const QList<ScanHistory::Entry> kept = keeper->history().all();
    optionsForm->showSavedScans(int(kept.size()), bytesOf(kept));
}

// A scan still being written is waited for, so that it goes too.
void DiskUsageForm::onDeleteSavedScans()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool removed = keeper->removeAll();
    QApplication::restoreOverrideCursor();
    qCDebug(lcHome) << "saved scans deleted:" << removed;
    const QList<ScanHistory::Entry> left = keeper->history().all();
    optionsForm->savedScansDeleted(int(left.size()), bytesOf(left));
}

void DiskUsageForm::onClearRAMStart()
{
    emit showToolbarSignal(false);
    isClearingRam = true;
}

void DiskUsageForm::onClearRAMFinish()
{
    emit showToolbarSignal(true);
    isClearingRam = false;
    closeIfRequested();
}

void DiskUsageForm::stopScan()
{
    if (!resultsScreen)
        return;
    closeRequested = true;
    resultsScreen->cancelScan();
}

void DiskUsageForm::onSelectFolder()
{
    const QString path = platform::browseForFolder(QStringLiteral("Select folder to scan..."),
                                                   specialFolderPaths.at(Documents));
    if (!path.isEmpty())
        startScan(path);
}

void DiskUsageForm::onOpenScan()
{
    const QString file = QFileDialog::getOpenFileName(
        this, QStringLiteral("Open a saved scan"), specialFolderPaths.at(Documents),
        QStringLiteral("Tallyroot scans (*.json *.json.gz *.gz);;All files (*)"));
    openScan(file);
}

// Said over the home page, which is back by then as it was.
void DiskUsageForm::onOpenFailed(const QString& why)
{
    onBackToMain();
    QMessageBox::warning(this, QStringLiteral("Cannot open the scan"), why);
}

void DiskUsageForm::onWebsite()
{
    ShellActions::openLink(WebLinks::website(), this);
}

void DiskUsageForm::onAbout()
{
    AboutDialog dialog(this);
    dialog.exec();
}

bool DiskUsageForm::offerToSaveOptions(bool cancellable)
{
    if (!optionsForm || !optionsForm->hasUnsavedChanges())
        return true;
    const QMessageBox::StandardButtons answers =
        QMessageBox::Yes | QMessageBox::No |
        (cancellable ? QMessageBox::Cancel : QMessageBox::NoButton);
    const auto answer = QMessageBox::warning(
        this, QStringLiteral("Confirm to save changes"),
        QStringLiteral("There are unsaved changes in the Options page. Do you want to save the "
                       "changes now?"),
        answers);
    if (answer == QMessageBox::Cancel)
        return false;
    return answer != QMessageBox::Yes || optionsForm->save();
}

void DiskUsageForm::onUpgrade()
{
    UpgradeDialog dialog(this);
    dialog.exec();
}
