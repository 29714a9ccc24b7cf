#include "ShellActions.h"

#include "platform/Shell.h"

#include <QDir>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcShell, "tallyroot.shell", QtInfoMsg)

namespace ShellActions {

namespace {

// "C:\" reaches the shell as "C:"; a lone "/" stays, or nothing would be left.
QString withoutTrailingSeparator(QString path)
{
    if (path.size() > 1 && path.endsWith(QDir::separator()))
        path.chop(1);
    return path;
}

} // namespace

void exploreFolder(QWidget* owner, QString path)
{
    qCDebug(lcShell).noquote() << "path:" << path;
    path = QDir::toNativeSeparators(path);
    platform::exploreFolder(owner, withoutTrailingSeparator(path));
}

void showInExplorer(QString path, QObject* parent)
{
    path = QDir::toNativeSeparators(path);
    platform::showItem(withoutTrailingSeparator(path), parent);
}

void openFile(const QString& fullPath)
{
    platform::openFile(fullPath);
}

QIcon smallFileIcon(const QString& path)
{
    return platform::smallFileIcon(path);
}

QString specialFolderPath(platform::SpecialFolder which)
{
    return QString::fromStdWString(platform::specialFolderPath(which));
}

QString windowsFolderPath()
{
    return QString::fromStdWString(platform::windowsFolderPath());
}

QString joinFolderAndName(QString folder, const QString& name)
{
    if (folder.endsWith(QDir::separator()))
        folder.chop(1);
    return folder + QDir::separator() + name;
}

} // namespace ShellActions
