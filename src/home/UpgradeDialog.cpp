#include "UpgradeDialog.h"

#include "WebLinks.h"
#include "ui_UpgradeDialog.h"

UpgradeDialog::UpgradeDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::UpgradeDialog>())
{
    ui->setupUi(this);
    connect(ui->closeButton, &QAbstractButton::clicked, this, &QDialog::close);
    ui->versionLabel->setText(QStringLiteral("Installed: Tallyroot %1").arg(TALLYROOT_VERSION));
    const QUrl releases = WebLinks::releases();
    if (releases.isEmpty()) {
        ui->releasesLabel->setText(QStringLiteral("This build names no web address to look "
                                                  "for newer versions."));
        return;
    }
    ui->releasesLabel->setText(QStringLiteral("Newer versions: <a href=\"%1\">%1</a>")
                                   .arg(releases.toString().toHtmlEscaped()));
    ui->releasesLabel->setTextFormat(Qt::RichText);
    ui->releasesLabel->setOpenExternalLinks(true);
}

UpgradeDialog::~UpgradeDialog() = default;
