#include "DiskUsageOptionsForm.h"

#include "AppearanceSetting.h"
#include "DiskUsageEditFileTypesDialog.h"
#include "ExclusionSettings.h"
#include "FileTypeCatalogue.h"
#include "HistorySetting.h"
#include "SettingsLog.h"
#include "SettingsStore.h"
#include "desktop/ShellActions.h"
#include "platform/Shell.h"
#include "platform/UserFolders.h"
#include "ui_DiskUsageOptionsForm.h"

#include <QLocale>
#include <QMessageBox>

namespace {

bool isChecked(const QTreeWidgetItem* item)
{
    return item->checkState(0) == Qt::Checked;
}

// What is stored for a tree row: its check state as "1;" or "0;", then its text.
QString storedText(const QTreeWidgetItem* item)
{
    return (isChecked(item) ? QStringLiteral("1;") : QStringLiteral("0;")) + item->text(0);
}

QTreeWidgetItem* checkableItem(const QString& text, bool checked, const QIcon& icon)
{
    auto* item = new QTreeWidgetItem({text});
    item->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
    item->setIcon(0, icon);
    return item;
}

// As the system writes sizes, in units of 1024 bytes, as the spin box counts.
QString sizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString savedScansText(int count, qint64 bytes)
{
    if (count == 0)
        return QStringLiteral("No saved scans");
    if (count == 1)
        return QStringLiteral("1 saved scan, %1").arg(sizeText(bytes));
    return QStringLiteral("%1 saved scans, %2").arg(count).arg(sizeText(bytes));
}

QList<QTreeWidgetItem*> topLevelItems(const QTreeWidget* tree)
{
    QList<QTreeWidgetItem*> items;
    for (int row = 0; row < tree->topLevelItemCount(); ++row)
        items << tree->topLevelItem(row);
    return items;
}

} // namespace

DiskUsageOptionsForm::DiskUsageOptionsForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageOptionsForm>())
{
    ui->setupUi(this);
    ui->tabWidget->setCurrentIndex(0);
    ui->saveButton->setEnabled(false);
    ui->historyPerFolderSpinBox->setRange(1, HistoryChoice::mostPerFolder);
    ui->historySizeSpinBox->setRange(1, HistoryChoice::mostMegabytes);
    showSavedScans(0, 0);
    connect(ui->saveButton, &QAbstractButton::clicked, this, &DiskUsageOptionsForm::save);
    // A check box toggled from the keyboard changes a tree without a click.
    for (const auto& signal : {&QTreeWidget::itemClicked, &QTreeWidget::itemChanged}) {
        connect(ui->treeWidget, signal, this, &DiskUsageOptionsForm::onFileTypeClicked);
        connect(ui->excludeTreeWidget, signal, this,
                &DiskUsageOptionsForm::onExcludedFolderClicked);
    }
    connect(ui->excludeOneDrivecheckBox, &QCheckBox::toggled, this,
            &DiskUsageOptionsForm::onOneDriveToggled);
    connect(ui->appearanceComboBox, &QComboBox::currentIndexChanged, this,
            &DiskUsageOptionsForm::onAppearanceChosen);
    connect(ui->keepHistoryCheckBox, &QCheckBox::toggled, this,
            &DiskUsageOptionsForm::onHistoryChanged);
    for (QSpinBox* limit : {ui->historyPerFolderSpinBox, ui->historySizeSpinBox})
        connect(limit, &QSpinBox::valueChanged, this, &DiskUsageOptionsForm::onHistoryChanged);
    connect(ui->deleteSavedScansButton, &QAbstractButton::clicked, this,
            &DiskUsageOptionsForm::onDeleteSavedScans);
    connect(ui->excludeRemoveButton, &QAbstractButton::clicked, this,
            &DiskUsageOptionsForm::onRemoveFolder);
    connect(ui->openOneDriveButton, &QAbstractButton::clicked, this,
            &DiskUsageOptionsForm::onOpenOneDrive);
    connect(ui->excludeAddButton, &QAbstractButton::clicked, this,
            &DiskUsageOptionsForm::onAddFolder);
    connect(ui->FileTypesEditButton, &QAbstractButton::clicked, this,
            &DiskUsageOptionsForm::onEditFileType);
    connect(ui->FileTypesRestoreButton, &QAbstractButton::clicked, this,
            &DiskUsageOptionsForm::onRestoreFileTypes);
}

DiskUsageOptionsForm::~DiskUsageOptionsForm() = default;

void DiskUsageOptionsForm::edit(const Settings& settings)
{
    loaded = false;
    stored = settings;
    exclusions = settings.exclusions;
    showExclusions();
    showFileTypes(settings.catalogue);
    ui->excludeOneDrivecheckBox->setChecked(settings.excludeOneDrive);
    // The combo box lists the choices in their enum order.
    ui->appearanceComboBox->setCurrentIndex(int(settings.appearance));
    showHistory(settings.history);
    const QString oneDrive = SettingsStore::oneDrivePath();
    ui->oneDriveInfoLabel->setText(oneDrive);
    ui->openOneDriveButton->setEnabled(!oneDrive.isEmpty());
    if (ui->treeWidget->topLevelItemCount() > 0)
        ui->treeWidget->setCurrentItem(ui->treeWidget->topLevelItem(0));
    loaded = true;
}

bool DiskUsageOptionsForm::hasUnsavedChanges() const
{
    return ui->saveButton->isEnabled();
}

void DiskUsageOptionsForm::showFileTypes(const QList<FileTypeCategory>& catalogue)
{
    ui->treeWidget->clear();
    for (const FileTypeCategory& category : catalogue) {
        ui->treeWidget->addTopLevelItem(
            checkableItem(FileTypeCatalogue::displayText(category), category.checked,
                          QIcon(FileTypeCatalogue::iconNamed(category.name))));
    }
}

void DiskUsageOptionsForm::showHistory(const HistoryChoice& history)
{
    ui->keepHistoryCheckBox->setChecked(history.enabled);
    ui->historyPerFolderSpinBox->setValue(history.perFolder);
    ui->historySizeSpinBox->setValue(history.megabytes);
    ui->historyPerFolderSpinBox->setEnabled(history.enabled);
    ui->historySizeSpinBox->setEnabled(history.enabled);
}

HistoryChoice DiskUsageOptionsForm::chosenHistory() const
{
    return {ui->keepHistoryCheckBox->isChecked(), ui->historyPerFolderSpinBox->value(),
            ui->historySizeSpinBox->value()};
}

void DiskUsageOptionsForm::showExclusions()
{
    ui->excludeTreeWidget->clear();
    for (const ExcludeEntry& entry : std::as_const(exclusions)) {
        ui->excludeTreeWidget->addTopLevelItem(
            checkableItem(entry.path, entry.enable, platform::smallFileIcon(entry.path)));
    }
    const int count = ui->excludeTreeWidget->topLevelItemCount();
    if (count > 0)
        ui->excludeTreeWidget->setCurrentItem(ui->excludeTreeWidget->topLevelItem(count - 1));
    ui->excludeRemoveButton->setEnabled(true);
}

// The settings handed back are read back from the store, so that scans use
// what is stored (with any older folders a shorter list left behind).
bool DiskUsageOptionsForm::save()
{
    SettingsStore::Batch batch;
    writeSettings(ui->excludeOneDrivecheckBox->isChecked());
    if (!batch.finish()) {
        qCWarning(lcSettings).noquote() << "not saved:" << SettingsStore::location();
        QMessageBox::warning(this, QStringLiteral("Settings not saved"),
                             QStringLiteral("The settings could not be written to %1. The "
                                            "changes are still on this page, unsaved.")
                                 .arg(SettingsStore::location()));
        return false;
    }
    stored = Settings::load();
    exclusions = stored.exclusions;
    ui->saveButton->setEnabled(false);
    emit saved(stored);
    return true;
}

void DiskUsageOptionsForm::writeSettings(bool excludeOneDrive)
{
    const QList<QTreeWidgetItem*> folders = topLevelItems(ui->excludeTreeWidget);
    for (int row = 0; row < folders.size(); ++row)
        SettingsStore::writeString(QStringLiteral("ExludeFolder%1").arg(row),
                                   storedText(folders.at(row)));
    const QList<QTreeWidgetItem*> fileTypes = topLevelItems(ui->treeWidget);
    SettingsStore::writeDword(QStringLiteral("FileTypeDataCount"), quint32(fileTypes.size()));
    for (int row = 0; row < fileTypes.size(); ++row)
        SettingsStore::writeString(QStringLiteral("FileTypeData%1").arg(row),
                                   storedText(fileTypes.at(row)));
    SettingsStore::writeDword(QStringLiteral("ExcludeOneDriveFolder"), excludeOneDrive ? 1 : 0);
    AppearanceSetting::write(AppearanceChoice(ui->appearanceComboBox->currentIndex()));
    HistorySetting::write(chosenHistory());
}

// The settings keep their flags until "Save"; a click only tells whether the
// tree now differs from them.
void DiskUsageOptionsForm::onFileTypeClicked(QTreeWidgetItem* item)
{
    if (!loaded || !item)
        return;
    for (const FileTypeCategory& category : std::as_const(stored.catalogue)) {
        if (item->text(0).contains(category.name)) {
            if (isChecked(item) != category.checked)
                ui->saveButton->setEnabled(true);
            return;
        }
    }
}

void DiskUsageOptionsForm::onExcludedFolderClicked(QTreeWidgetItem* item)
{
    if (!loaded || !item)
        return;
    for (const ExcludeEntry& entry : std::as_const(exclusions)) {
        if (item->text(0).contains(entry.path)) {
            if (isChecked(item) != entry.enable)
                ui->saveButton->setEnabled(true);
            return;
        }
    }
}

void DiskUsageOptionsForm::onOneDriveToggled()
{
    if (loaded)
        ui->saveButton->setEnabled(true);
}

void DiskUsageOptionsForm::onAppearanceChosen()
{
    if (loaded)
        ui->saveButton->setEnabled(true);
}

void DiskUsageOptionsForm::onHistoryChanged()
{
    // The limits stay as they were while nothing is kept, to come back with it.
    const bool enabled = ui->keepHistoryCheckBox->isChecked();
    ui->historyPerFolderSpinBox->setEnabled(enabled);
    ui->historySizeSpinBox->setEnabled(enabled);
    if (loaded)
        ui->saveButton->setEnabled(true);
}

void DiskUsageOptionsForm::showSavedScans(int count, qint64 bytes)
{
    savedScanCount = count;
    savedScanBytes = bytes;
    ui->savedScansLabel->setText(savedScansText(count, bytes));
    ui->deleteSavedScansButton->setEnabled(count > 0);
}

// Deleting is not a setting: it happens at once, not on "Save".
void DiskUsageOptionsForm::onDeleteSavedScans()
{
    if (savedScanCount == 0)
        return;
    const QString size = sizeText(savedScanBytes);
    const QString question = savedScanCount == 1
                                 ? QStringLiteral("Delete the saved scan? It takes %1.").arg(size)
                                 : QStringLiteral("Delete the %1 saved scans? They take %2.")
                                       .arg(savedScanCount)
                                       .arg(size);
    const auto answer =
        QMessageBox::question(this, QStringLiteral("Delete saved scans"),
                              question + QStringLiteral(" They cannot be compared with again."),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return;
    qCDebug(lcSettings) << "deleting saved scans:" << savedScanCount;
    emit deleteSavedScans();
}

void DiskUsageOptionsForm::savedScansDeleted(int left, qint64 leftBytes)
{
    const int deleted = savedScanCount - left;
    const qint64 freed = savedScanBytes - leftBytes;
    showSavedScans(left, leftBytes);
    if (left == 0) {
        QMessageBox::information(this, QStringLiteral("Saved scans deleted"),
                                 QStringLiteral("The saved scans were deleted: %1 freed.")
                                     .arg(sizeText(std::max<qint64>(freed, 0))));
        return;
    }
    qCWarning(lcSettings) << "saved scans left:" << left << "deleted:" << deleted;
    QMessageBox::warning(this, QStringLiteral("Saved scans not deleted"),
                         left == 1
                             ? QStringLiteral("1 saved scan could not be deleted.")
                             : QStringLiteral("%1 saved scans could not be deleted.").arg(left));
}

void DiskUsageOptionsForm::onAddFolder()
{
    if (!loaded)
        return;
    const QString path = platform::browseForFolder(
        QStringLiteral("Select folder to exclude..."),
        QString::fromStdWString(platform::specialFolderPath(platform::SpecialFolder::Profile)));
    qCDebug(lcSettings).noquote() << "folderPath:" << path;
    if (path.isEmpty())
        return;
    // A full list or a folder already listed drops the new one without a word.
    if (ExclusionSettings::append(exclusions, ExcludeEntry{true, path})) {
        qCDebug(lcSettings).noquote() << "excludeFolderData.path" << path;
        qCDebug(lcSettings).noquote() << "excludeFolderData.enable" << 1;
    }
    showExclusions();
    ui->saveButton->setEnabled(true);
}

// A removal alone leaves nothing unsaved: the stored value stays until the
// next save.
void DiskUsageOptionsForm::onRemoveFolder()
{
    QTreeWidgetItem* item = ui->excludeTreeWidget->currentItem();
    if (!item)
        return;
    for (qsizetype index = 0; index < exclusions.size(); ++index) {
        if (exclusions.at(index).path.compare(item->text(0), Qt::CaseInsensitive) == 0) {
            exclusions.removeAt(index);
            delete ui->excludeTreeWidget->takeTopLevelItem(
                ui->excludeTreeWidget->indexOfTopLevelItem(item));
            return;
        }
    }
}

void DiskUsageOptionsForm::onOpenOneDrive()
{
    const QString path = SettingsStore::oneDrivePath();
    if (!path.isEmpty())
        ShellActions::exploreFolder(path, this);
}

void DiskUsageOptionsForm::onEditFileType()
{
    QTreeWidgetItem* item = ui->treeWidget->currentItem();
    if (!item)
        return;
    auto* editor = new DiskUsageEditFileTypesDialog(this);
    connect(editor, &DiskUsageEditFileTypesDialog::newValue, this,
            &DiskUsageOptionsForm::onFileTypeEdited);
    editor->setValue(item->text(0));
    editor->show();
}

void DiskUsageOptionsForm::onFileTypeEdited(const QString& text)
{
    qCDebug(lcSettings).noquote() << "on_newFileTypeValue:" << text;
    if (QTreeWidgetItem* item = ui->treeWidget->currentItem())
        item->setText(0, text);
    ui->saveButton->setEnabled(true);
}

void DiskUsageOptionsForm::onRestoreFileTypes()
{
    const int row = ui->treeWidget->currentIndex().row();
    const auto answer =
        QMessageBox::warning(this, QStringLiteral("Confirm to restore"),
                             QStringLiteral("Are you sure you want to restore the file types?"),
                             QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        showFileTypes(FileTypeCatalogue::defaults());
        ui->saveButton->setEnabled(true);
    }
    if (QTreeWidgetItem* item = ui->treeWidget->topLevelItem(row))
        ui->treeWidget->setCurrentItem(item);
}
