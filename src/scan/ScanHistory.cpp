#include "ScanHistory.h"

#include "GzipDevice.h"
#include "JsonPull.h"
#include "ScanFile.h"
#include "ScanLog.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTimeZone>

#include <algorithm>
#include <optional>

namespace {

// Two keeps, or a keep and a removal, would each let go of what the other
// counts on; within the program they take turns.
QMutex changing;

constexpr int indexFormat = 1;
constexpr qsizetype keyLength = 16;
const QString timeFormat = QStringLiteral("yyyyMMdd'T'HHmmss");

// Matched without a regular expression: keeps run on a thread of their own,
// and under Wine a regular expression matched off the GUI thread leaves the
// process hanging at its exit.
bool allOf(QStringView text, bool (*test)(QChar))
{
    return std::all_of(text.begin(), text.end(), test);
}

bool isHexDigit(QChar c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// KEY-yyyyMMddTHHmmssZ.json.gz: the key and the stamp, or nothing.
struct KeptName {
    QStringView key;
    QStringView stamp;
};
std::optional<KeptName> keptName(QStringView name)
{
    constexpr QStringView ending = u"Z.json.gz";
    constexpr qsizetype stampLength = 15;
    if (name.size() != keyLength + 1 + stampLength + ending.size() || !name.endsWith(ending) ||
        name[keyLength] != u'-')
        return std::nullopt;
    const QStringView key = name.left(keyLength);
    const QStringView stamp = name.mid(keyLength + 1, stampLength);
    if (!allOf(key, isHexDigit) || stamp[8] != u'T' || !allOf(stamp.left(8), isDigit) ||
        !allOf(stamp.mid(9), isDigit))
        return std::nullopt;
    return KeptName{key, stamp};
}

// A kept scan or the index, or what a write of one left behind when the
// program was stopped in the middle of it (the name, a dot and a suffix).
bool isOurs(QStringView fileName)
{
    const auto isKept = [](QStringView name) {
        return name == u"index.json" || keptName(name).has_value();
    };
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return isKept(fileName) || (dot > 0 && dot + 1 < fileName.size() && isKept(fileName.left(dot)));
}

// Whether two paths name one folder: as the system compares them, and with
// or without a separator at the end.
QString comparable(const QString& folder)
{
    const QString path = QDir::cleanPath(QDir::fromNativeSeparators(folder));
#ifdef Q_OS_WIN
    return path.toCaseFolded();
#else
    return path;
#endif
}

QString nameOf(const QString& key, const QDateTime& scannedAt)
{
    return key + '-' + scannedAt.toUTC().toString(timeFormat) + QStringLiteral("Z.json.gz");
}

QDateTime timeOf(const QString& stamp)
{
    // Read as parts: read whole, the time would be local and could fall in
    // the hour a clock change skips.
    const QDate date = QDate::fromString(stamp.left(8), QStringLiteral("yyyyMMdd"));
    const QTime time = QTime::fromString(stamp.mid(9, 6), QStringLiteral("HHmmss"));
    return QDateTime(date, time, QTimeZone::utc());
}

// The scanned folder as the head of a kept scan gives it: the path of the
// first of its folders, which comes after the biggest files and the
// categories, long before the tree. Empty when the file is not a scan.
QString folderFromHead(const QString& file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    GzipDevice data(source);
    data.open(QIODevice::ReadOnly);
    JsonPull json(data);
    std::string key;
    if (!json.expect('{'))
        return {};
    for (bool more = !json.take('}'); more; more = json.nextItem('}')) {
        if (!json.readString(key) || !json.expect(':'))
            return {};
        if (key != "folders") {
            if (!json.skipValue())
                return {};
            continue;
        }
        if (!json.expect('[') || !json.expect('{'))
            return {};
        for (bool field = !json.take('}'); field; field = json.nextItem('}')) {
            if (!json.readString(key) || !json.expect(':'))
                return {};
            if (key == "path") {
                std::string path;
                return json.readString(path) ? QString::fromStdString(path) : QString();
            }
            if (!json.skipValue())
                return {};
        }
        return {};
    }
    return {};
}

void letGo(const QString& file, const char* why)
{
    if (QFile::remove(file))
        qCDebug(lcScan).noquote() << QStringLiteral("history: let go, %1:").arg(QLatin1String(why))
                                  << file;
    else
        qCWarning(lcScan).noquote() << "history: could not delete:" << file;
}

} // namespace

QString ScanHistory::defaultLocation()
{
#ifdef Q_OS_WIN
    // The local application data, which does not roam with the user: scans
    // are large and of this machine. As the environment names it, so that it
    // can be pointed elsewhere; else the known folder.
    QString data = QDir::fromNativeSeparators(qEnvironmentVariable("LOCALAPPDATA"));
    if (data.isEmpty())
        data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString scans = QStringLiteral("/Tallyroot/scans");
#else
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString scans = QStringLiteral("/tallyroot/scans");
#endif
    return data.isEmpty() ? QString() : data + scans;
}

ScanHistory::ScanHistory(QString where)
    : base(std::move(where))
{}

QString ScanHistory::keyOf(const QString& folder)
{
    const QByteArray hash =
        QCryptographicHash::hash(comparable(folder).toUtf8(), QCryptographicHash::Sha1);
    return QString::fromLatin1(hash.toHex().left(keyLength));
}

QString ScanHistory::indexPath() const
{
    return QDir(base).filePath(QStringLiteral("index.json"));
}

bool ScanHistory::keep(const ScanResult& scan, const Limits& limits)
{
    if (!scan.isLive() || !scan.tree) {
        qCDebug(lcScan).noquote() << "history: not kept, opened from:" << scan.openedFrom;
        return false;
    }
    // An empty location would be the working folder.
    if (base.isEmpty() || !QDir().mkpath(base)) {
        qCWarning(lcScan).noquote() << "history: no folder to keep scans in:" << base;
        return false;
    }
    const QString folder = scan.tree->rootPath();
    const QString key = keyOf(folder);
    const QDateTime scannedAt =
        scan.scannedAt.isValid() ? scan.scannedAt : QDateTime::currentDateTimeUtc();
    const QString file = QDir(base).filePath(nameOf(key, scannedAt));
    QMutexLocker lock(&changing);
    if (!ScanFile::write(file, scan, true)) {
        qCWarning(lcScan).noquote() << "history: could not write:" << file;
        return false;
    }
    qCDebug(lcScan).noquote() << "history: kept:" << file;
    letGoPastLimits(listKept(), limits);
    Folders known = readIndex();
    known.insert(key, folder);
    writeIndex(foldersOf(listKept(), known));
    return QFileInfo::exists(file);
}

// Newest first: a folder's newest few stay, then scans stay while they fit
// under the cap; once one does not, it and every older one go. A scan that
// would not fit even alone goes without taking the older ones along.
void ScanHistory::letGoPastLimits(const QList<Kept>& kept, const Limits& limits)
{
    QHash<QString, int> perFolder;
    qint64 total = 0;
    bool full = false;
    for (const Kept& scan : kept) {
        if (++perFolder[scan.key] > limits.perFolder) {
            letGo(scan.file, "past the count per folder");
        } else if (scan.fileBytes > limits.totalBytes) {
            letGo(scan.file, "bigger than the cap alone");
        } else if (full || total + scan.fileBytes > limits.totalBytes) {
            full = true;
            letGo(scan.file, "past the cap");
        } else {
            total += scan.fileBytes;
        }
    }
}

QList<ScanHistory::Kept> ScanHistory::listKept() const
{
    if (base.isEmpty())
        return {};
    QList<Kept> kept;
    const QFileInfoList files =
        QDir(base).entryInfoList(QDir::Files); // a name filter would be a regular expression
    for (const QFileInfo& info : files) {
        const QString fileName = info.fileName();
        const std::optional<KeptName> name = keptName(fileName);
        if (!name)
            continue;
        const QDateTime scannedAt = timeOf(name->stamp.toString());
        if (scannedAt.isValid())
            kept.append({name->key.toString(), info.filePath(), scannedAt, info.size()});
    }
    std::sort(kept.begin(), kept.end(), [](const Kept& one, const Kept& other) {
        return one.scannedAt != other.scannedAt ? one.scannedAt > other.scannedAt
                                                : one.file > other.file;
    });
    return kept;
}

// A missing or damaged index names no folder: the heads name them again.
ScanHistory::Folders ScanHistory::readIndex() const
{
    QFile file(indexPath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QJsonParseError error;
    const QJsonDocument index = QJsonDocument::fromJson(file.readAll(), &error);
    const QJsonObject folders = index.object().value(QStringLiteral("folders")).toObject();
    if (error.error != QJsonParseError::NoError || folders.isEmpty())
        qCDebug(lcScan).noquote() << "history: index names no folder:" << file.fileName();
    Folders known;
    for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
        const QString path = folder.value().toString();
        if (!path.isEmpty() && keyOf(path) == folder.key())
            known.insert(folder.key(), path);
    }
    return known;
}

bool ScanHistory::writeIndex(const Folders& folders) const
{
    QJsonObject named;
    for (auto folder = folders.begin(); folder != folders.end(); ++folder)
        named.insert(folder.key(), folder.value());
    const QJsonObject index{{QStringLiteral("format"), indexFormat},
                            {QStringLiteral("folders"), named}};
    const QByteArray json = QJsonDocument(index).toJson();
    QSaveFile file(indexPath());
    if (file.open(QIODevice::WriteOnly) && file.write(json) == json.size() && file.commit())
        return true;
    qCWarning(lcScan).noquote() << "history: could not write the index:" << file.fileName();
    return false;
}

ScanHistory::Folders ScanHistory::foldersOf(const QList<Kept>& kept, const Folders& known)
{
    Folders folders;
    for (const Kept& scan : kept) {
        if (folders.contains(scan.key))
            continue;
        QString folder = known.value(scan.key);
        // The newest scan comes first, so a folder is read from its newest.
        if (folder.isEmpty()) {
            folder = folderFromHead(scan.file);
            qCDebug(lcScan).noquote() << "history: folder read from the head:" << folder;
        }
        if (!folder.isEmpty() && keyOf(folder) == scan.key)
            folders.insert(scan.key, folder);
    }
    return folders;
}

QList<ScanHistory::Entry> ScanHistory::scansOf(const QString& folder) const
{
    const QString key = keyOf(folder);
    const QString named = readIndex().value(key, folder);
    // Another folder of the same key, however unlikely, is not this one's.
    if (comparable(named) != comparable(folder))
        return {};
    QList<Entry> entries;
    for (const Kept& scan : listKept()) {
        if (scan.key == key)
            entries.append({scan.file, named, scan.scannedAt, scan.fileBytes});
    }
    return entries;
}

std::optional<QDateTime> ScanHistory::lastScanned(const QString& folder) const
{
    const QList<Entry> entries = scansOf(folder);
    if (entries.isEmpty())
        return std::nullopt;
    return entries.first().scannedAt;
}

// A scan whose folder cannot be told, not even from its head, is not listed.
QList<ScanHistory::Entry> ScanHistory::all() const
{
    const QList<Kept> kept = listKept();
    const Folders folders = foldersOf(kept, readIndex());
    QList<Entry> entries;
    for (const Kept& scan : kept) {
        if (folders.contains(scan.key))
            entries.append({scan.file, folders.value(scan.key), scan.scannedAt, scan.fileBytes});
    }
    return entries;
}

bool ScanHistory::removeAll()
{
    if (base.isEmpty())
        return true;
    QMutexLocker lock(&changing);
    QDir folder(base);
    bool removed = true;
    int count = 0;
    for (const QFileInfo& info : folder.entryInfoList(QDir::Files)) {
        if (!isOurs(info.fileName()))
            continue;
        if (QFile::remove(info.filePath())) {
            ++count;
        } else {
            qCWarning(lcScan).noquote() << "history: could not delete:" << info.filePath();
            removed = false;
        }
    }
    // Only an empty folder goes: a file of the user's own stays with it.
    folder.rmdir(base);
    qCDebug(lcScan).noquote() << "history: deleted files:" << count;
    return removed;
}
