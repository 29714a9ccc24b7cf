#pragma once

#include "ScanResult.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>

// The scans the window made, each kept compressed in a folder of the user's
// data: a few of each scanned folder, all of them under a size cap, the
// oldest going first.
//
// A kept scan is named after its folder and its time, "<key>-<time>.json.gz":
// the key is a short hash of the folder's path, the time its UTC moment to the
// second (a second scan of a folder within the same second takes the place of
// the first). The folder itself is noted in index.json beside them; the files
// are what is kept, so the index only names the folders, and a folder it does
// not name (the index lost or damaged) is read from the head of its newest
// scan, where the path of its first folder comes long before the tree.
// Other files in the folder are left alone.
//
// Keeping and removing may run on any thread, one at a time within the
// program; reading meanwhile sees a scan whole or not at all.
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

    [[nodiscard]] const QString& location() const { return base; }
    // Keeps a live scan, then lets the oldest go past the limits. False when
    // it is not kept: opened from a file, not written, or alone bigger than
    // the cap.
    bool keep(const ScanResult& scan, const Limits& limits);
    // The kept scans of a folder, newest first.
    [[nodiscard]] QList<Entry> scansOf(const QString& folder) const;
    // When the folder's newest kept scan was made.
    [[nodiscard]] std::optional<QDateTime> lastScanned(const QString& folder) const;
    // Every kept scan, newest first.
    [[nodiscard]] QList<Entry> all() const;
    // Deletes every kept scan; false when one stayed.
    bool removeAll();

    // The part of a kept scan's name that stands for its folder.
    [[nodiscard]] static QString keyOf(const QString& folder);

private:
    // A kept scan as its name tells it.
    struct Kept {
        QString key;
        QString file;
        QDateTime scannedAt;
        qint64 fileBytes = 0;
    };
    using Folders = QHash<QString, QString>; // key to folder

    [[nodiscard]] QList<Kept> listKept() const;
    [[nodiscard]] Folders readIndex() const;
    bool writeIndex(const Folders& folders) const;
    // The folders of the keys that have scans: as known, or from their heads.
    [[nodiscard]] static Folders foldersOf(const QList<Kept>& kept, const Folders& known);
    static void letGoPastLimits(const QList<Kept>& kept, const Limits& limits);
    [[nodiscard]] QString indexPath() const;

    QString base;
};
