#include "DiskUsageAddFileTypesDialog.h"

#include "ui_DiskUsageAddFileTypesDialog.h"

DiskUsageAddFileTypesDialog::DiskUsageAddFileTypesDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::DiskUsageAddFileTypesDialog>())
{
    ui->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    connect(ui->CancelButton, &QAbstractButton::clicked, this, &QDialog::close);
    connect(ui->OKButton, &QAbstractButton::clicked, this, [this] {
        emit newExtension(ui->FileTypeLineEdit->text());
        close();
    });
}

DiskUsageAddFileTypesDialog::~DiskUsageAddFileTypesDialog() = default;
