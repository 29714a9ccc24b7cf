#include "../Shell.h"

#include "../NativeText.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
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

} // namespace

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

bool openFile(const QString& path)
{
    return QDesktopServices::openUrl(localUrl(path));
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
