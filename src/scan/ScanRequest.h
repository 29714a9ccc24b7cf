#pragma once

#include "settings/ExcludeEntry.h"
#include "settings/FileTypeCategory.h"

#include <QList>
#include <QString>

// Everything one scan reads, taken by value when it starts: later changes to
// the settings leave a running scan alone.
struct ScanRequest {
    QString folder;
    QList<ExcludeEntry> exclusions; // the enabled ones
    QString oneDrivePath;
    bool excludeOneDrive = false;
    QList<FileTypeCategory> catalogue;
    // Threads that read folders ahead of the walk; 1 reads on the walk's own thread.
    int readers = defaultReaders();

    // The folder with the settings as they stand in memory now.
    [[nodiscard]] static ScanRequest fromSettings(const QString& folder);
    // Twice as many readers as cores, from 4 to 16.
    [[nodiscard]] static int defaultReaders();
};
