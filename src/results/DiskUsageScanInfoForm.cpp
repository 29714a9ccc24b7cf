#include "DiskUsageScanInfoForm.h"

#include "ui_DiskUsageScanInfoForm.h"

DiskUsageScanInfoForm::DiskUsageScanInfoForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageScanInfoForm>())
{
    ui->setupUi(this);
    pendingCount.setSingleShot(true);
    connect(&pendingCount, &QTimer::timeout, this, &DiskUsageScanInfoForm::showItemCount);
}

DiskUsageScanInfoForm::~DiskUsageScanInfoForm() = default;

void DiskUsageScanInfoForm::setTitle(const QString& title)
{
    ui->label->setText(title);
}

void DiskUsageScanInfoForm::setPath(const QString& path)
{
    ui->pathLabel->setText(path);
}

namespace {
constexpr int countInterval = 40; // ms
} // namespace

void DiskUsageScanInfoForm::setItemCount(int count)
{
    itemCount = count;
    if (count < 0) {
        pendingCount.stop();
        ui->itemScanLabel->hide();
        return;
    }
    if (pendingCount.isActive())
        return;
    if (!sinceShown.isValid() || sinceShown.elapsed() >= countInterval)
        showItemCount();
    else
        pendingCount.start(countInterval - int(sinceShown.elapsed()));
}

void DiskUsageScanInfoForm::showItemCount()
{
    sinceShown.start();
    ui->itemScanLabel->setText(QString::number(itemCount) + QStringLiteral(" items scanned"));
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

void DiskUsageScanInfoForm::on_pushButton_clicked()
{
    emit scanCancel();
}
