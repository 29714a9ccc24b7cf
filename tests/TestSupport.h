#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QObject>
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

// A file of `size` bytes (sparse where the file system allows), with its
// folders; false when it cannot be made.
inline bool writeSizedFile(const QString& path, qint64 size)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.resize(size);
}
