#include "DiskUsageAddFileTypesDialog.h"

#include "ui_DiskUsageAddFileTypesDialog.h"

DiskUsageAddFileTypesDialog::DiskUsageAddFileTypesDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DiskUsageAddFileTypesDialog>())
{
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
}

DiskUsageAddFileTypesDialog::~DiskUsageAddFileTypesDialog() = default;

void DiskUsageAddFileTypesDialog::on_CancelButton_clicked()
{
    close();
}

void DiskUsageAddFileTypesDialog::on_OKButton_clicked()
{
    emit newExtension(ui->FileTypeLineEdit->text());
    close();
}
