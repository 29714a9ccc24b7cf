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
    // Threads that read folders ahead of the walk; 1 reads on the walk's own
    // thread; 0 leaves the choice to readersFor() as the scan starts.
    int readers = 0;

    // The folder with the settings as they stand in memory now.
    [[nodiscard]] static ScanRequest fromSettings(const QString& folder);
    // Few readers for a disk that pays for seeks; for one that does not (or
    // does not tell), four per processor, from 8 to 32: a reader spends its
    // time waiting on a cold disk, while a warm one makes every reader beyond
    // the processors cost the walk a little.
    static constexpr int spinningDiskReaders = 2;
    [[nodiscard]] static int solidDiskReaders();
    [[nodiscard]] static int readersFor(const QString& folder);
};
