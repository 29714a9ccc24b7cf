#pragma once

#include "settings/Settings.h"

#include <QList>
#include <QString>

#include <functional>

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
    // Called on the scan's thread at every entry with the count so far, so
    // that a cancel can come at a known entry (as tests make it).
    std::function<void(int entries)> atEntry;

    // The folder with the given settings (their enabled exclusions) and the
    // OneDrive folder as the system tells it now.
    [[nodiscard]] static ScanRequest of(const QString& folder, const Settings& settings);
    // Few readers for a disk that pays for seeks; for one that does not (or
    // does not tell), eight per processor, from 16 to 32: a reader spends
    // most of its time waiting on a cold disk, and more readers than the
    // disk can serve cost the walk a little when the cache is warm.
    static constexpr int spinningDiskReaders = 2;
    [[nodiscard]] static int solidDiskReaders();
    [[nodiscard]] static int readersFor(const QString& folder);
};
