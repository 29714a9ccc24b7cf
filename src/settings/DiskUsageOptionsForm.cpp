#include "DiskUsageOptionsForm.h"

#include "DiskUsageEditFileTypesDialog.h"
#include "ExclusionSettings.h"
#include "FileTypeCatalogue.h"
#include "SettingsStore.h"
#include "platform/Shell.h"
#include "platform/UserFolders.h"
#include "results/ShellActions.h"
#include "ui_DiskUsageOptionsForm.h"

#include <QLoggingCategory>
#include <QMessageBox>

Q_LOGGING_CATEGORY(lcOptions, "tallyroot.options", QtInfoMsg)

namespace {

// The icon of a built-in category, found by its name in any case; none for
// other names.
QIcon categoryIcon(const QString& name)
{
    static const std::pair<const char*, const char*> icons[] = {
        {"Raster Image Files", "RasterImage16"},
        {"3D Image Files", "3dImages16"},
        {"Audio Files", "Audio16"},
        {"Backup Files", "Backup16"},
        {"Compressed Files", "CompressedFiles16"},
        {"Disk Image Files", "DiskImage16"},
        {"Document Files", "Document16"},
        {"Font Files", "Font16"},
        {"Installer and Executable Files", "Install16"},
        {"Vector Image Files", "VectorImage16"},
        {"Video Files", "Video16"},
        {"Web Files", "WebFile16"},
    };
    for (const auto& [category, icon] : icons) {
        if (name.compare(QLatin1String(category), Qt::CaseInsensitive) == 0)
            return QIcon(QStringLiteral(":/resources/images/%1.png").arg(QLatin1String(icon)));
    }
    return {};
}

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
    // A check box toggled from the keyboard changes a tree without a click.
    connect(ui->treeWidget, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item) { on_treeWidget_itemClicked(item, 0); });
    connect(ui->excludeTreeWidget, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item) { on_excludeTreeWidget_itemClicked(item, 0); });
}

DiskUsageOptionsForm::~DiskUsageOptionsForm() = default;

void DiskUsageOptionsForm::loadSettings()
{
    ExclusionSettings::load();
    exclusions = ExclusionSettings::excludeList();
    showExclusions();
    showFileTypes(FileTypeCatalogue::instance());
    ui->excludeOneDrivecheckBox->setChecked(ExclusionSettings::excludeOneDriveFolder() == 1);
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
        ui->treeWidget->addTopLevelItem(checkableItem(FileTypeCatalogue::displayText(category),
                                                      category.checked,
                                                      categoryIcon(category.name)));
    }
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

void DiskUsageOptionsForm::on_saveButton_clicked()
{
    save();
}

// The catalogue and the OneDrive flag take the page's state once it is
// written; the exclusions are read back from the store, so the scan uses what
// is stored (with any older values a shorter list left behind).
bool DiskUsageOptionsForm::save()
{
    QList<FileTypeCategory> catalogue;
    for (const QTreeWidgetItem* item : topLevelItems(ui->treeWidget))
        FileTypeCatalogue::appendStored(storedText(item), catalogue);
    const bool excludeOneDrive = ui->excludeOneDrivecheckBox->isChecked();
    SettingsStore::Batch batch;
    writeSettings(excludeOneDrive);
    if (!batch.finish()) {
        QMessageBox::warning(this, QStringLiteral("Settings not saved"),
                             QStringLiteral("The settings could not be written to %1. The "
                                            "changes are still on this page, unsaved.")
                                 .arg(SettingsStore::location()));
        return false;
    }
    FileTypeCatalogue::instance() = catalogue;
    ExclusionSettings::excludeOneDriveFolder() = excludeOneDrive ? 1 : 0;
    ExclusionSettings::load();
    exclusions = ExclusionSettings::excludeList();
    ui->saveButton->setEnabled(false);
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
}

// The catalogue keeps its flags until "Save"; a click only tells whether the
// tree now differs from it.
void DiskUsageOptionsForm::on_treeWidget_itemClicked(QTreeWidgetItem* item, int)
{
    if (!loaded || !item)
        return;
    for (const FileTypeCategory& category : std::as_const(FileTypeCatalogue::instance())) {
        if (item->text(0).contains(category.name)) {
            if (isChecked(item) != category.checked)
                ui->saveButton->setEnabled(true);
            return;
        }
    }
}

void DiskUsageOptionsForm::on_excludeTreeWidget_itemClicked(QTreeWidgetItem* item, int)
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

void DiskUsageOptionsForm::on_excludeOneDrivecheckBox_toggled(bool)
{
    if (loaded)
        ui->saveButton->setEnabled(true);
}

void DiskUsageOptionsForm::on_excludeAddButton_clicked()
{
    if (!loaded)
        return;
    const QString path = platform::browseForFolder(
        QStringLiteral("Select folder to exclude..."),
        QString::fromStdWString(platform::specialFolderPath(platform::SpecialFolder::Profile)));
    qCDebug(lcOptions).noquote() << "folderPath:" << path;
    if (path.isEmpty())
        return;
    // A full list or a folder already listed drops the new one without a word.
    if (ExclusionSettings::append(exclusions, ExcludeEntry{true, path})) {
        qCDebug(lcOptions).noquote() << "excludeFolderData.path" << path;
        qCDebug(lcOptions).noquote() << "excludeFolderData.enable" << 1;
    }
    showExclusions();
    ui->saveButton->setEnabled(true);
}

// A removal alone leaves nothing unsaved: the stored value stays until the
// next save.
void DiskUsageOptionsForm::on_excludeRemoveButton_clicked()
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

void DiskUsageOptionsForm::on_openOneDriveButton_clicked()
{
    const QString path = SettingsStore::oneDrivePath();
    if (!path.isEmpty())
        ShellActions::exploreFolder(this, path);
}

void DiskUsageOptionsForm::on_FileTypesEditButton_clicked()
{
    QTreeWidgetItem* item = ui->treeWidget->currentItem();
    if (!item)
        return;
    auto* editor = new DiskUsageEditFileTypesDialog(this);
    connect(editor, &DiskUsageEditFileTypesDialog::newValue, this,
            &DiskUsageOptionsForm::on_newFileTypeValue);
    editor->setValue(item->text(0));
    editor->show();
}

void DiskUsageOptionsForm::on_newFileTypeValue(const QString& text)
{
    qCDebug(lcOptions).noquote() << "on_newFileTypeValue:" << text;
    if (QTreeWidgetItem* item = ui->treeWidget->currentItem())
        item->setText(0, text);
    ui->saveButton->setEnabled(true);
}

void DiskUsageOptionsForm::on_FileTypesRestoreButton_clicked()
{
    const int row = ui->treeWidget->currentIndex().row();
    const auto answer =
        QMessageBox::warning(this, QStringLiteral("Confirm to restore"),
                             QStringLiteral("Are you sure you want to restore the file types?"),
                             QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        QList<FileTypeCategory> defaults;
        FileTypeCatalogue::fillDefaults(defaults);
        showFileTypes(defaults);
        ui->saveButton->setEnabled(true);
    }
    if (QTreeWidgetItem* item = ui->treeWidget->topLevelItem(row))
        ui->treeWidget->setCurrentItem(item);
}
