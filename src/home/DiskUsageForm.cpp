#include "DiskUsageForm.h"

#include "AboutDialog.h"
#include "ClickableLabel.h"
#include "DiskUsageDetailInfoDialog.h"
#include "DiskUsageFolderInfoForm.h"
#include "DiskUsageItemInfoForm.h"
#include "UpgradeDialog.h"
#include "WebLinks.h"
#include "platform/Shell.h"
#include "platform/UserFolders.h"
#include "results/DiskUsageScanProgressForm.h"
#include "results/ShellActions.h"
#include "settings/DiskUsageOptionsForm.h"
#include "settings/FileTypeCatalogue.h"
#include "settings/SettingsStore.h"
#include "ui_DiskUsageForm.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QScrollArea>
#include <QStackedLayout>
#include <QStyle>

namespace {

constexpr int shortenedLength = 36;
constexpr int shortenedPart = 16;

QString recentValueName(int index)
{
    return QStringLiteral("RecentFile%1").arg(index + 1);
}

QString specialFolder(platform::SpecialFolder which)
{
    return QString::fromStdWString(platform::specialFolderPath(which));
}

} // namespace

DiskUsageForm::DiskUsageForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageForm>())
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
    addRecentRows();
    loadRecentPaths();
    showRecentPaths();

    if (!FileTypeCatalogue::load(FileTypeCatalogue::instance()))
        FileTypeCatalogue::fillDefaults(FileTypeCatalogue::instance());
    optionsForm = new DiskUsageOptionsForm(ui->tabOptions);
    ui->optionsLayout->addWidget(optionsForm);
    optionsForm->loadSettings();
    optionsForm->show();

    ui->tabWidget->setCurrentIndex(0);
    stackedLayout = new QStackedLayout(this);
    stackedLayout->addWidget(ui->mainWidget);
}

DiskUsageForm::~DiskUsageForm() = default;

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
        connect(card, &DiskUsageItemInfoForm::showDetails, this, &DiskUsageForm::OnShowDetails);
        connect(card, &DiskUsageItemInfoForm::startScan, this, &DiskUsageForm::OnStartScan);
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
        if (onlyExisting && !QFileInfo(specialFolderPaths.at(index)).isDir())
            continue;
        auto* card = new DiskUsageFolderInfoForm(ui->foldersList);
        card->diskIndex = index;
        card->setName(QFileInfo(specialFolderPaths.at(index)).fileName());
        card->setPath(specialFolderPaths.at(index));
        connect(card, &DiskUsageFolderInfoForm::startScan, this, &DiskUsageForm::OnStartScan);
        ui->foldersLayout->addWidget(card);
    }
    ui->foldersLayout->addStretch();
}

void DiskUsageForm::addRecentRows()
{
    for (int row = 1; row <= recentRowCount; ++row) {
        auto* text = new ClickableLabel(ui->recentGroupBox);
        auto* icon = new ClickableLabel(ui->recentGroupBox);
        const QString name = QStringLiteral("recentLabel%1").arg(row);
        text->setObjectName(name);
        icon->setObjectName(name);
        icon->setMaximumWidth(20);
        // A narrow window elides the text rather than growing; the tooltip
        // has the whole path.
        text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        connect(text, &ClickableLabel::clicked, this, &DiskUsageForm::on_RecentPathClicked);
        connect(icon, &ClickableLabel::clicked, this, &DiskUsageForm::on_RecentPathClicked);
        auto* rowLayout = new QHBoxLayout;
        rowLayout->addWidget(icon);
        rowLayout->addWidget(text);
        ui->recentLayout->addLayout(rowLayout);
        recentIconLabels.append(icon);
        recentTextLabels.append(text);
    }
    ui->recentLayout->addStretch();
}

void DiskUsageForm::loadRecentPaths()
{
    recentPaths.clear();
    for (int index = 0; index < recentRowCount; ++index) {
        const QString path = SettingsStore::readString(recentValueName(index)).value_or(QString());
        if (!path.isEmpty() && QFileInfo::exists(path))
            recentPaths.append(path);
    }
}

void DiskUsageForm::showRecentPaths()
{
    for (int row = 0; row < recentRowCount; ++row) {
        ClickableLabel* text = recentTextLabels.at(row);
        ClickableLabel* icon = recentIconLabels.at(row);
        if (row >= recentPaths.size()) {
            text->setVisible(false);
            icon->setVisible(false);
            continue;
        }
        const QString& path = recentPaths.at(row);
        text->setElidedText(shortenedPath(path));
        text->setToolTip(path);
        text->setVisible(true);
        const QIcon shellIcon = platform::smallFileIcon(path);
        icon->setPixmap(shellIcon.pixmap(16, 16));
        icon->setVisible(!shellIcon.isNull());
    }
}

QString DiskUsageForm::shortenedPath(const QString& path)
{
    if (path.size() <= shortenedLength)
        return path;
    return path.left(shortenedPart) + QStringLiteral("...") + path.right(shortenedPart);
}

// The list is written whole and never cut, so a sixth entry lands in
// RecentFile6; only five are ever read back.
void DiskUsageForm::rememberRecentPath(const QString& path)
{
    for (int index = 0; index < recentPaths.size(); ++index) {
        if (recentPaths.at(index).compare(path, Qt::CaseInsensitive) == 0) {
            recentPaths.removeAt(index);
            break;
        }
    }
    recentPaths.prepend(path);
    SettingsStore::Batch batch;
    for (int index = 0; index < recentPaths.size(); ++index)
        SettingsStore::writeString(recentValueName(index), recentPaths.at(index));
    (void)batch.finish(); // a list that cannot be stored is simply not remembered
    showRecentPaths();
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
    emit showToolbarSignal(false);
    isScanning = true;

    resultsScreen = new DiskUsageScanProgressForm(this);
    connect(resultsScreen, &DiskUsageScanProgressForm::backToMain, this,
            &DiskUsageForm::OnBackToMain);
    connect(resultsScreen, &DiskUsageScanProgressForm::scanFinish, this,
            &DiskUsageForm::OnScanFinish);
    connect(resultsScreen, &DiskUsageScanProgressForm::clearRAMStart, this,
            &DiskUsageForm::OnClearRAMStart);
    connect(resultsScreen, &DiskUsageScanProgressForm::clearRAMFinish, this,
            &DiskUsageForm::OnClearRAMFinish);
    resultsScreen->startScanning(path);
    resultsScreen->show();
    stackedLayout->addWidget(resultsScreen);
    stackedLayout->setCurrentIndex(1);

    rememberRecentPath(path);
}

void DiskUsageForm::OnShowDetails(int diskIndex)
{
    if (diskIndex < 0 || diskIndex >= drives.size())
        return;
    DiskUsageDetailInfoDialog dialog(this);
    dialog.fill(drives.at(diskIndex));
    dialog.exec();
}

void DiskUsageForm::OnStartScan(int diskIndex)
{
    if (ui->tabWidget->currentIndex() == 0) {
        if (diskIndex < 0 || diskIndex >= drives.size())
            return;
        const QString path = drives.at(diskIndex).scanPath();
        // A disk that went away since its card was made takes its card along.
        if (QFileInfo::exists(path))
            startScan(path);
        else
            addDriveCards();
        return;
    }
    if (diskIndex < 0 || diskIndex > Videos)
        diskIndex = Profile;
    startScan(specialFolderPaths.at(diskIndex));
}

void DiskUsageForm::OnBackToMain()
{
    if (!resultsScreen)
        return;
    stackedLayout->removeWidget(resultsScreen);
    resultsScreen->deleteLater();
    resultsScreen = nullptr;
    addDriveCards();
}

void DiskUsageForm::closeIfRequested()
{
    if (!closeRequested)
        return;
    emit closeApp();
    close();
}

void DiskUsageForm::OnScanFinish()
{
    emit showToolbarSignal(true);
    isScanning = false;
    closeIfRequested();
}

void DiskUsageForm::OnClearRAMStart()
{
    emit showToolbarSignal(false);
    isClearingRam = true;
}

void DiskUsageForm::OnClearRAMFinish()
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
    resultsScreen->cancelScan(true);
}

void DiskUsageForm::on_selectFolderButton_clicked()
{
    const QString path = platform::browseForFolder(QStringLiteral("Select folder to scan..."),
                                                   specialFolderPaths.at(Documents));
    if (!path.isEmpty())
        startScan(path);
}

void DiskUsageForm::on_websiteButton_clicked()
{
    ShellActions::openLink(WebLinks::website(), this);
}

void DiskUsageForm::on_aboutButton_clicked()
{
    AboutDialog dialog(this);
    dialog.exec();
}

// Asked on every change of tab, also between the other two.
void DiskUsageForm::on_tabWidget_currentChanged(int)
{
    offerToSaveOptions();
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

void DiskUsageForm::on_upgradeButton_clicked()
{
    UpgradeDialog dialog(this);
    dialog.exec();
}

// The row number is the last character of the sender's name.
void DiskUsageForm::on_RecentPathClicked()
{
    const QString name = sender() ? sender()->objectName() : QString();
    bool ok = false;
    const int row = name.right(1).toInt(&ok);
    if (!ok || row < 1 || row > recentPaths.size())
        return;
    const QString path = recentPaths.at(row - 1);
    // A folder deleted since the list was shown leaves the rows instead.
    if (!QFileInfo::exists(path)) {
        recentPaths.removeAt(row - 1);
        showRecentPaths();
    }
    startScan(path);
}
