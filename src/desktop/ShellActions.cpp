#include "ShellActions.h"

#include "platform/Shell.h"

#include <QDesktopServices>
#include <QDir>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QUrl>

Q_LOGGING_CATEGORY(lcDesktop, "tallyroot.desktop", QtInfoMsg)

namespace ShellActions {

namespace {

// "C:\" reaches the shell as "C:"; a lone "/" stays, or nothing would be left.
QString withoutTrailingSeparator(QString path)
{
    if (path.size() > 1 && path.endsWith(QDir::separator()))
        path.chop(1);
    return path;
}

void tellIfNotOpened(bool opened, QWidget* owner, const QString& what)
{
    if (opened)
        return;
    qCWarning(lcDesktop).noquote() << "not opened:" << what;
    QMessageBox::warning(owner, QStringLiteral("Could not open"),
                         QStringLiteral("No program on this system could open:\n%1").arg(what));
}

} // namespace

void exploreFolder(QString path, QWidget* owner)
{
    qCDebug(lcDesktop).noquote() << "path:" << path;
    path = withoutTrailingSeparator(QDir::toNativeSeparators(path));
    tellIfNotOpened(platform::exploreFolder(owner, platform::fileManagerPath(path)), owner, path);
}

void showInExplorer(QString path, QWidget* owner)
{
    path = withoutTrailingSeparator(QDir::toNativeSeparators(path));
    tellIfNotOpened(platform::showItem(platform::fileManagerPath(path), owner), owner, path);
}

void openFile(const QString& fullPath, QWidget* owner)
{
    const QString shown = QDir::toNativeSeparators(fullPath);
    platform::openFile(fullPath, owner, [owner, shown](const QString& reason) {
        qCWarning(lcDesktop).noquote() << "not opened:" << shown << reason;
        QMessageBox::warning(owner, QStringLiteral("Could not open"),
                             QStringLiteral("%1\n\ncould not be opened. %2").arg(shown, reason));
    });
}

void openLink(const QUrl& link, QWidget* owner)
{
    tellIfNotOpened(QDesktopServices::openUrl(link), owner,
                    link.isLocalFile() ? QDir::toNativeSeparators(link.toLocalFile())
                                       : link.toString());
}

} // namespace ShellActions
