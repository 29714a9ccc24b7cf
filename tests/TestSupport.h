#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QMenu>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

// Catches what a screen hands to the desktop, so no test starts a program:
// QDesktopServices::setUrlHandler("file", &catcher, "open").
class OpenedUrls : public QObject {
    Q_OBJECT

public:
    QList<QUrl> urls;

public slots:
    void open(const QUrl& url) { urls << url; }
};

// Stands in for the desktop's file opener (xdg-open) on Linux, first on PATH
// while it lives: notes each argument it is given and exits with `status`.
class FakeOpener {
public:
    FakeOpener()
        : path(qgetenv("PATH"))
    {
        QFile script(bin.filePath(QStringLiteral("xdg-open")));
        if (!script.open(QIODevice::WriteOnly))
            return;
        script.write(
            QStringLiteral("#!/bin/sh\nprintf '%s\\n' \"$1\" >> '%1'\n"
                           "exit $(cat '%2' 2>/dev/null || echo 0)\n")
                .arg(bin.filePath(QStringLiteral("opened")), bin.filePath(QStringLiteral("status")))
                .toUtf8());
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", QFile::encodeName(bin.path()) + ':' + path);
    }
    ~FakeOpener() { qputenv("PATH", path); }
    FakeOpener(const FakeOpener&) = delete;
    FakeOpener& operator=(const FakeOpener&) = delete;

    // What it was given, oldest first.
    [[nodiscard]] QStringList given() const
    {
        QFile log(bin.filePath(QStringLiteral("opened")));
        if (!log.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(log.readAll()).split('\n', Qt::SkipEmptyParts);
    }
    void forget() const { QFile::remove(bin.filePath(QStringLiteral("opened"))); }
    void setStatus(int status)
    {
        QFile file(bin.filePath(QStringLiteral("status")));
        if (file.open(QIODevice::WriteOnly))
            file.write(QByteArray::number(status));
    }

private:
    QTemporaryDir bin;
    QByteArray path;
};

// A file of `size` bytes (sparse where the file system allows), with its
// folders; false when it cannot be made.
inline bool writeSizedFile(const QString& path, qint64 size)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.resize(size);
}

// What a view's context menu offers at a point: each action's text, with
// " (off)" after those disabled. The menu is closed again.
inline QStringList menuOffers(QWidget* view, QPoint at = QPoint(5, 5))
{
    QMetaObject::invokeMethod(view, "customContextMenuRequested", Q_ARG(QPoint, at));
    QMenu* menu = view->findChild<QMenu*>();
    QStringList offered;
    for (QAction* action : menu ? menu->actions() : QList<QAction*>()) {
        if (!action->isSeparator())
            offered << action->text() + (action->isEnabled() ? "" : " (off)");
    }
    delete menu;
    return offered;
}
