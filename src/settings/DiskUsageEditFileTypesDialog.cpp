#include "DiskUsageEditFileTypesDialog.h"

#include "DiskUsageAddFileTypesDialog.h"
#include "ui_DiskUsageEditFileTypesDialog.h"

#include "SettingsLog.h"
#include <QMessageBox>

DiskUsageEditFileTypesDialog::DiskUsageEditFileTypesDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DiskUsageEditFileTypesDialog>())
{
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->DeleteButton, &QAbstractButton::clicked, this,
            &DiskUsageEditFileTypesDialog::onDelete);
    connect(ui->CancelButton, &QAbstractButton::clicked, this, &QDialog::close);
    connect(ui->SaveButton, &QAbstractButton::clicked, this, &DiskUsageEditFileTypesDialog::onSave);
    connect(ui->AddButton, &QAbstractButton::clicked, this, &DiskUsageEditFileTypesDialog::onAdd);
}

DiskUsageEditFileTypesDialog::~DiskUsageEditFileTypesDialog() = default;

// "Name (.a, .b)": the name before "(", the extensions inside, each trimmed.
// A text without "(" is all name.
void DiskUsageEditFileTypesDialog::setValue(const QString& displayText)
{
    const qsizetype open = displayText.indexOf('(');
    categoryName = (open < 0 ? displayText : displayText.left(open)).trimmed();
    QString inside = open < 0 ? QString() : displayText.mid(open + 1).trimmed();
    if (inside.endsWith(')'))
        inside.chop(1);
    ui->treeWidget->clear();
    for (const QString& part : inside.split(',')) {
        if (!part.trimmed().isEmpty())
            ui->treeWidget->addTopLevelItem(new QTreeWidgetItem({part.trimmed()}));
    }
    ui->treeWidget->setHeaderLabel(QStringLiteral("File Extensions for ") + categoryName);
    if (ui->treeWidget->topLevelItemCount() > 0)
        ui->treeWidget->setCurrentItem(ui->treeWidget->topLevelItem(0));
}

// Deliberately lenient: no trimming, no change of case, duplicates allowed.
void DiskUsageEditFileTypesDialog::addExtension(const QString& fileType)
{
    qCDebug(lcSettings).noquote() << "on_newFileExtensionValue:" << fileType;
    if (fileType.isEmpty())
        return;
    const QString extension = fileType.startsWith('.') ? fileType : QStringLiteral(".") + fileType;
    ui->treeWidget->addTopLevelItem(new QTreeWidgetItem({extension}));
    ui->SaveButton->setEnabled(true);
}

void DiskUsageEditFileTypesDialog::onDelete()
{
    QTreeWidgetItem* item = ui->treeWidget->currentItem();
    if (!item)
        return;
    const auto answer = QMessageBox::warning(
        this, QStringLiteral("Confirm to delete"),
        QStringLiteral("Are you sure you want to delete %1?").arg(item->text(0)),
        QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes)
        delete ui->treeWidget->takeTopLevelItem(ui->treeWidget->indexOfTopLevelItem(item));
    // Also after No.
    ui->SaveButton->setEnabled(true);
}

// With every extension deleted the text ends in " (", which reads back as a
// category with none.
void DiskUsageEditFileTypesDialog::onSave()
{
    QStringList extensions;
    for (int row = 0; row < ui->treeWidget->topLevelItemCount(); ++row)
        extensions << ui->treeWidget->topLevelItem(row)->text(0);
    QString value = categoryName + QStringLiteral(" (");
    if (!extensions.isEmpty())
        value += extensions.join(QStringLiteral(", ")) + QLatin1Char(')');
    emit newValue(value);
    close();
}

void DiskUsageEditFileTypesDialog::onAdd()
{
    auto* dialog = new DiskUsageAddFileTypesDialog(this);
    connect(dialog, &DiskUsageAddFileTypesDialog::newExtension, this,
            &DiskUsageEditFileTypesDialog::addExtension);
    dialog->show();
}
