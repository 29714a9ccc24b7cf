#include "AboutDialog.h"

#include "WebLinks.h"
#include "desktop/ShellActions.h"
#include "ui_AboutDialog.h"

#include <QUrl>

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::AboutDialog>())
{
    ui->setupUi(this);
    connect(ui->closeButton, &QAbstractButton::clicked, this, &QDialog::close);
    const bool windows = QSysInfo::kernelType() == QLatin1String("winnt");
    ui->platformLabel->setText(windows ? QStringLiteral("for Windows 11/10")
                                       : QStringLiteral("for Linux"));
    const QString shown = WebLinks::webAddress().isEmpty() ? QStringLiteral("Tallyroot User Guide")
                                                           : WebLinks::webAddress();
    ui->webLabel->setText(QStringLiteral("<a href=\"%1\">%2</a>")
                              .arg(WebLinks::website().toString(), shown.toHtmlEscaped()));
    ui->webLabel->setTextFormat(Qt::RichText);
    ui->webLabel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                                          Qt::LinksAccessibleByKeyboard);
    connect(ui->webLabel, &QLabel::linkActivated, this,
            [this](const QString& link) { ShellActions::openLink(QUrl(link), this); });
    ui->titleLabel->setText(QStringLiteral("Tallyroot"));
}

AboutDialog::~AboutDialog() = default;
