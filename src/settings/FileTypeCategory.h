#pragma once

#include <QString>
#include <QStringList>

// One group of data files: a name and the extensions that belong to it.
struct FileTypeCategory {
    QString name;
    QStringList extensions; // each with its leading dot: ".mp3", ".tar.gz"
    bool checked = true;    // unchecked categories take no part in a scan
    qint64 spare = 0;
    qint64 totalSize = 0; // bytes of every matching file of the last scan
};
