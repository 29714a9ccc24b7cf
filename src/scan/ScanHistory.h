#pragma once

#include "ScanResult.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// The scans the window made, each kept compressed in a folder of the user's
// data: a few of each scanned folder, all of them under a size cap, the
// oldest going first.
class ScanHistory {
public:
    struct Entry {
        QString file;         // the kept scan, to open with ScanFile::read
        QString folder;       // the folder that was scanned
        QDateTime scannedAt;  // UTC
        qint64 fileBytes = 0; // what the kept file takes
    };
    struct Limits {
        int perFolder = 5;
        qint64 totalBytes = 512LL << 20;
    };

    // Where the scans are kept: $XDG_DATA_HOME/tallyroot/scans on Linux,
    // %LOCALAPPDATA%\Tallyroot\scans on Windows.
    [[nodiscard]] static QString defaultLocation();
    explicit ScanHistory(QString location = defaultLocation());

    // Keeps a live scan, then lets the oldest go past the limits. False when
    // it could not be written.
    bool keep(const ScanResult& scan, const Limits& limits);
    // The kept scans of a folder, newest first.
    [[nodiscard]] QList<Entry> scansOf(const QString& folder) const;
    // When the folder's newest kept scan was made.
    [[nodiscard]] std::optional<QDateTime> lastScanned(const QString& folder) const;
    // Every kept scan, newest first.
    [[nodiscard]] QList<Entry> all() const;
    // Deletes every kept scan; false when one stayed.
    bool removeAll();

private:
    QString location;
};
