#include "WebLinks.h"

#include <QCoreApplication>

namespace WebLinks {

QString webAddress()
{
    return QStringLiteral(TALLYROOT_WEB_ADDRESS);
}

QUrl userGuide()
{
    return QUrl::fromLocalFile(QCoreApplication::applicationDirPath() +
                               QStringLiteral("/user-guide.html"));
}

QUrl website()
{
    return webAddress().isEmpty() ? userGuide() : QUrl(webAddress());
}

QUrl releases()
{
    return webAddress().isEmpty() ? QUrl() : QUrl(webAddress() + QStringLiteral("/releases"));
}

} // namespace WebLinks
