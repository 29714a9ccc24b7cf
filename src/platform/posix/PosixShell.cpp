#include "../Shell.h"

#include "../NativeText.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace platform {

namespace {

const QString fileManagerService = QStringLiteral("org.freedesktop.FileManager1");

// A file URL of the path's own bytes, so that a name which is not UTF-8 still
// names its file.
QUrl localUrl(const QString& path)
{
    const QByteArray bytes = QByteArray::fromStdString(toNative(path));
    return QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/"));
}

// What the exit status of xdg-open says went wrong.
QString openerFailure(int status, QProcess::ExitStatus exit)
{
    if (exit == QProcess::CrashExit)
        return QStringLiteral("The desktop's opener (xdg-open) stopped unexpectedly.");
    switch (status) {
    case 2:
        return QStringLiteral("The file is not there any more.");
    case 3:
        return QStringLiteral("No program on this system opens files of this type.");
    case 4:
        return QStringLiteral("The program meant to open it failed.");
    default:
        return QStringLiteral("The desktop's opener (xdg-open) ended with status %1.").arg(status);
    }
}

} // namespace

QString fileManagerPath(const QString& path)
{
    return path;
}

bool exploreFolder(QWidget*, const QString& path)
{
    return QDesktopServices::openUrl(localUrl(path));
}

// The desktop's file manager selects the item when it offers ShowItems over
// D-Bus; without one, the folder that holds the item is opened instead.
bool showItem(const QString& path, QObject*)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected() && bus.interface()->isServiceRegistered(fileManagerService)) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            fileManagerService, "/org/freedesktop/FileManager1", fileManagerService, "ShowItems");
        call << QStringList{localUrl(path).toString(QUrl::FullyEncoded)} << QString();
        if (bus.send(call))
            return true;
    }
    return QDesktopServices::openUrl(localUrl(QFileInfo(path).path()));
}

// Run here rather than through QDesktopServices, which starts xdg-open and
// forgets it, so that its failure ("no method available") reaches the user.
void openFile(const QString& path, QObject* context,
              const std::function<void(const QString& reason)>& failed)
{
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty()) {
        failed(QStringLiteral("This system has no program that opens files (xdg-open)."));
        return;
    }
    // No parent, and left running when the program ends: xdg-open may wait
    // for the program it started, which a closing window must not end.
    auto* process = new QProcess;
    process->setProgram(opener);
    process->setArguments({QString::fromLatin1(localUrl(path).toEncoded())});
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    const QPointer<QObject> guard(context);
    QObject::connect(process, &QProcess::finished, process,
                     [process, guard, failed](int status, QProcess::ExitStatus exit) {
                         process->deleteLater();
                         if (guard && (exit != QProcess::NormalExit || status != 0))
                             failed(openerFailure(status, exit));
                     });
    QObject::connect(process, &QProcess::errorOccurred, process,
                     [process, guard, failed](QProcess::ProcessError error) {
                         if (error != QProcess::FailedToStart)
                             return;
                         process->deleteLater();
                         if (guard)
                             failed(QStringLiteral("xdg-open could not be started."));
                     });
    process->start();
}

QIcon smallFileIcon(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    return QFileIconProvider().icon(info);
}

QIcon folderIcon()
{
    return QFileIconProvider().icon(QFileIconProvider::Folder);
}

QPixmap largeIcon(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    const QPixmap pixmap = QFileIconProvider().icon(info).pixmap(48, 48);
    // Without an icon theme the style's own icons are too small for a card.
    return pixmap.width() >= 48 ? pixmap : QPixmap();
}

QString browseForFolder(const QString& title, const QString& start)
{
    return QFileDialog::getExistingDirectory(nullptr, title, start);
}

} // namespace platform
