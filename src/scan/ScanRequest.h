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
    // does not tell), eight per processor, from 16 to 32: a reader spends
    // most of its time waiting on a cold disk, and more readers than the
    // disk can serve cost the walk a little when the cache is warm.
    static constexpr int spinningDiskReaders = 2;
    [[nodiscard]] static int solidDiskReaders();
    [[nodiscard]] static int readersFor(const QString& folder);
};
