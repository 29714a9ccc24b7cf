#include "DiskUsageScanInfoForm.h"

#include "ScanController.h"
#include "ui_DiskUsageScanInfoForm.h"

DiskUsageScanInfoForm::DiskUsageScanInfoForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageScanInfoForm>())
{
    ui->setupUi(this);
    connect(ui->pushButton, &QAbstractButton::clicked, this, &DiskUsageScanInfoForm::scanCancel);
}

DiskUsageScanInfoForm::~DiskUsageScanInfoForm() = default;

void DiskUsageScanInfoForm::setTitle(const QString& title)
{
    ui->titleLabel->setText(title);
}

void DiskUsageScanInfoForm::setPath(const QString& path)
{
    ui->pathLabel->setText(path);
}

void DiskUsageScanInfoForm::setItemCount(int count)
{
    if (count < 0) {
        ui->itemScanLabel->hide();
        return;
    }
    ui->itemScanLabel->setText(QString::number(count) + QStringLiteral(" items scanned"));
    ui->itemScanLabel->show();
}

void DiskUsageScanInfoForm::setMaximum(int maximum)
{
    ui->progressBar->setMaximum(maximum);
}

void DiskUsageScanInfoForm::step()
{
    ui->progressBar->setValue(ui->progressBar->value() + 1);
}

void DiskUsageScanInfoForm::disableCancel()
{
    ui->pushButton->setEnabled(false);
}

void DiskUsageScanInfoForm::follow(const ScanController& scan)
{
    using Panel = DiskUsageScanInfoForm;
    connect(&scan, &ScanController::folderEntered, this, &Panel::setPath);
    connect(&scan, &ScanController::itemCountChanged, this, &Panel::setItemCount);
    connect(&scan, &ScanController::stepsKnown, this, &Panel::setMaximum);
    connect(&scan, &ScanController::stepped, this, &Panel::step);
}
