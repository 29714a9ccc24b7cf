#include "WebLinks.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace WebLinks {

QString webAddress()
{
    return QStringLiteral(TALLYROOT_WEB_ADDRESS);
}

// Beside the program in a build or the Windows folder; where an installed
// Linux program keeps its documentation otherwise.
QUrl userGuide()
{
    const QString programs = QCoreApplication::applicationDirPath();
    const QString beside = programs + QStringLiteral("/user-guide.html");
    const QString installed = programs + QStringLiteral("/../share/doc/tallyroot/user-guide.html");
    return QUrl::fromLocalFile(QFileInfo::exists(beside) || !QFileInfo::exists(installed)
                                   ? beside
                                   : QFileInfo(installed).canonicalFilePath());
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
