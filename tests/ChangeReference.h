#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

// What changed between two scans, worked out from nothing but their JSON (as
// tallyroot-scan --json writes it): every entry by its path below the scanned
// folder, folders with the size and files of the "folders" list, files with
// the size the "tree" list gives them, then a plain difference of the two.
namespace ChangeReference {

struct Entry {
    double size = 0;
    qint64 files = 0;
    bool folder = false;
};
// By path below the scanned folder, names joined by "/"; the scanned folder is "".
using Entries = QMap<QString, Entry>;

struct Change {
    qint64 bytes = 0;
    qint64 files = 0;
    QString status; // same, grown, shrunk, new
};

inline QString joined(const QString& folder, const QString& name)
{
    return folder.isEmpty() ? name : folder + '/' + name;
}

inline QString folderOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QString() : path.left(slash);
}

// The folders in pre-order, each with its depth: the names above it are
// those last seen at each lesser depth.
inline void addFolders(const QJsonArray& folders, Entries& entries)
{
    QStringList above;
    for (const QJsonValue& value : folders) {
        const QJsonObject folder = value.toObject();
        const int depth = folder["depth"].toInt();
        above.resize(depth);
        if (depth > 0)
            above[depth - 1] = folder["name"].toString();
        entries[above.mid(0, depth).join('/')] = {folder["size"].toDouble(),
                                                  folder["files"].toInteger(), true};
    }
}

// The tree in walk order: a folder says how many of the entries after it are
// its children. Excluded folders (flag 8) count nowhere.
inline void addFiles(const QJsonArray& tree, Entries& entries)
{
    struct Open {
        QString path;
        qint64 left;
    };
    QList<Open> open;
    for (qsizetype at = 0; at < tree.size(); ++at) {
        while (!open.isEmpty() && open.last().left == 0)
            open.removeLast();
        const QString folder = open.isEmpty() ? QString() : open.last().path;
        if (!open.isEmpty())
            --open.last().left;
        if (tree[at].isArray()) {
            const QJsonArray file = tree[at].toArray();
            entries[joined(folder, file[0].toString())] = {file[1].toDouble(), 1, false};
            continue;
        }
        const QJsonObject entry = tree[at].toObject();
        const QString path = at == 0 ? QString() : joined(folder, entry["name"].toString());
        if (!(entry["flags"].toInt() & 8))
            open.append({path, entry["children"].toInteger()});
    }
}

inline Entries entriesOf(const QByteArray& json)
{
    const QJsonObject scan = QJsonDocument::fromJson(json).object();
    Entries entries;
    addFolders(scan["folders"].toArray(), entries);
    addFiles(scan["tree"].toArray(), entries);
    return entries;
}

inline bool sameKind(const Entries& entries, const QString& path, bool folder)
{
    return entries.contains(path) && entries[path].folder == folder;
}

// Every entry of the newer scan.
inline QMap<QString, Change> changes(const Entries& older, const Entries& newer)
{
    QMap<QString, Change> changed;
    for (auto entry = newer.begin(); entry != newer.end(); ++entry) {
        const Entry& now = entry.value();
        if (!sameKind(older, entry.key(), now.folder)) {
            changed[entry.key()] = {qint64(now.size), now.files, QStringLiteral("new")};
            continue;
        }
        const Entry& then = older[entry.key()];
        const qint64 bytes = qint64(now.size) - qint64(then.size);
        const qint64 files = now.files - then.files;
        QString status = QStringLiteral("same");
        if (bytes > 0 || (bytes == 0 && files > 0))
            status = QStringLiteral("grown");
        else if (bytes < 0 || files < 0)
            status = QStringLiteral("shrunk");
        changed[entry.key()] = {bytes, files, status};
    }
    return changed;
}

// What went, under the newer folder it went from, each as
// "path size files folder|file"; what went inside a gone folder is not listed.
inline QMap<QString, QStringList> gone(const Entries& older, const Entries& newer)
{
    QMap<QString, QStringList> went;
    for (auto entry = older.begin(); entry != older.end(); ++entry) {
        const QString& path = entry.key();
        if (path.isEmpty() || sameKind(newer, path, entry.value().folder) ||
            !sameKind(newer, folderOf(path), true))
            continue;
        went[folderOf(path)] << QStringLiteral("%1 %2 %3 %4")
                                    .arg(path)
                                    .arg(qint64(entry.value().size))
                                    .arg(entry.value().files)
                                    .arg(entry.value().folder ? "folder" : "file");
    }
    return went;
}

} // namespace ChangeReference
