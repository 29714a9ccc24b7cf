#include "CompareDialog.h"

#include "scan/DiskUsageGlobal.h"
#include "ui_CompareDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QLocale>
#include <QPushButton>

CompareDialog::CompareDialog(QList<ScanHistory::Entry> kept, const QString& folder, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::CompareDialog>())
    , scans(std::move(kept))
{
    ui->setupUi(this);
    ui->folderLabel->setText(
        QStringLiteral("Scans kept of %1:").arg(QDir::toNativeSeparators(folder)));
    ui->buttonBox->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Compare"));
    fill();
    connect(ui->scanList, &QTreeWidget::itemSelectionChanged, this,
            &CompareDialog::onSelectionChanged);
    connect(ui->scanList, &QTreeWidget::itemActivated, this, &CompareDialog::onAccepted);
    connect(ui->otherFileButton, &QAbstractButton::clicked, this, &CompareDialog::onOtherFile);
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &CompareDialog::onAccepted);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    onSelectionChanged();
}

CompareDialog::~CompareDialog() = default;

// Times show in the user's zone; the history keeps them in UTC.
void CompareDialog::fill()
{
    for (const ScanHistory::Entry& scan : scans) {
        auto* row = new QTreeWidgetItem(ui->scanList);
        row->setText(0, QLocale().toString(scan.scannedAt.toLocalTime(), QLocale::ShortFormat));
        row->setText(1, DiskUsageGlobal::sizeText(double(scan.fileBytes)));
        row->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        row->setToolTip(0, QDir::toNativeSeparators(scan.file));
    }
    ui->scanList->setVisible(!scans.isEmpty());
    ui->noScansLabel->setVisible(scans.isEmpty());
    if (!scans.isEmpty())
        ui->scanList->setCurrentItem(ui->scanList->topLevelItem(0));
}

void CompareDialog::onSelectionChanged()
{
    ui->buttonBox->button(QDialogButtonBox::Ok)
        ->setEnabled(!ui->scanList->selectedItems().isEmpty());
}

void CompareDialog::onOtherFile()
{
    const QString file = QFileDialog::getOpenFileName(
        this, QStringLiteral("Open a Scan"), QString(),
        QStringLiteral("Tallyroot scans (*.json *.json.gz);;All files (*)"));
    if (file.isEmpty())
        return;
    chosen = file;
    accept();
}

void CompareDialog::onAccepted()
{
    const QList<QTreeWidgetItem*> selected = ui->scanList->selectedItems();
    if (selected.isEmpty())
        return;
    chosen = scans[ui->scanList->indexOfTopLevelItem(selected.first())].file;
    accept();
}
