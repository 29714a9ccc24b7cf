#include "DiskUsageItemInfoForm.h"

#include "platform/Shell.h"
#include "ui_DiskUsageItemInfoForm.h"

DiskUsageItemInfoForm::DiskUsageItemInfoForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageItemInfoForm>())
{
    ui->setupUi(this);
    connect(ui->infoButton, &QAbstractButton::clicked, this,
            [this] { emit showDetails(diskIndex); });
    connect(ui->startButton, &QAbstractButton::clicked, this,
            [this] { emit startScan(diskIndex); });
}

DiskUsageItemInfoForm::~DiskUsageItemInfoForm() = default;

void DiskUsageItemInfoForm::setVolumeName(const QString& name)
{
    ui->volumeLabel->setText(name);
    ui->volumeLabel->adjustSize();
}

void DiskUsageItemInfoForm::setFileSystem(const QString& fileSystem)
{
    ui->fsLabel->setText(fileSystem);
    ui->fsLabel->adjustSize();
}

void DiskUsageItemInfoForm::setSizeText(const QString& text, const QString& details)
{
    ui->sizeLabel->setText(text);
    ui->sizeLabel->setToolTip(details);
}

void DiskUsageItemInfoForm::setUsedPercent(int percent)
{
    ui->progressBar->setValue(percent);
}

void DiskUsageItemInfoForm::setRootPath(const QString& path)
{
    const QPixmap icon = platform::largeIcon(path);
    ui->icon->setPixmap(icon.isNull() ? QPixmap(QStringLiteral(":/resources/images/Drive48.png"))
                                      : icon);
}
