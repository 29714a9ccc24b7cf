#include "DiskUsageFolderInfoForm.h"

#include "platform/Shell.h"
#include "ui_DiskUsageFolderInfoForm.h"

DiskUsageFolderInfoForm::DiskUsageFolderInfoForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::DiskUsageFolderInfoForm>())
{
    ui->setupUi(this);
    connect(ui->startButton, &QAbstractButton::clicked, this,
            [this] { emit startScan(diskIndex); });
}

DiskUsageFolderInfoForm::~DiskUsageFolderInfoForm() = default;

void DiskUsageFolderInfoForm::setName(const QString& name)
{
    ui->folderNameLabel->setText(name);
    ui->folderNameLabel->adjustSize();
}

// Also sets the card's icon from the path.
void DiskUsageFolderInfoForm::setPath(const QString& path)
{
    ui->folderPathLabel->setText(path);
    ui->folderPathLabel->adjustSize();
    const QPixmap icon = platform::largeIcon(path);
    ui->icon->setPixmap(
        icon.isNull() ? QPixmap(QStringLiteral(":/resources/images/genericFolder48.png")) : icon);
}
