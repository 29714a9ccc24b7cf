#include "IsolatedSettings.h"
#include "ScanSupport.h"
#include "TestSupport.h"
#include "scan/ScanFile.h"
#include "scan/ScanHistory.h"
#include "scan/ScanKeeper.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

// The scans kept in the history: found again by folder, newest first, within
// the count per folder and the size cap, and gone on removeAll; the index
// that names their folders is only a help.
class TestScanHistory : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void aKeptScanOpensAgain();
    void theNewestOfAFolderAreKept();
    void theOldestGoPastTheCap();
    void aScanBiggerThanTheCapIsNotKept();
    void removeAllDeletesEveryScanAndNothingElse();
    void aDamagedOrMissingIndexIsReadAgainFromTheScans();
    void foreignFilesAreLeftAlone();
    void anOpenedScanIsNotKept();
    void aWriteThatFailsLeavesNothing();
    void theKeeperWritesOnItsThreadAndIsWaitedFor();
    void theDefaultLocationIsInTheUsersData();

private:
    [[nodiscard]] QString folder(const QString& name) const
    {
        return QDir::toNativeSeparators(dir.filePath(name));
    }
    [[nodiscard]] QString location() const { return dir.filePath("history"); }
    // The scan of a folder made so many seconds after a fixed moment.
    [[nodiscard]] ScanResult scanAt(const QString& name, int seconds) const;
    [[nodiscard]] QStringList filesIn(const QString& path) const;
    static QStringList foldersOf(const QList<ScanHistory::Entry>& entries);
    static QList<QDateTime> timesOf(const QList<ScanHistory::Entry>& entries);

    IsolatedSettings isolated;
    QTemporaryDir dir;
    QHash<QString, ScanResult> scans;
    const QDateTime start = QDateTime(QDate(2026, 3, 29), QTime(1, 30), QTimeZone::utc());
    static constexpr ScanHistory::Limits roomy{100, 1LL << 40};
};

void TestScanHistory::initTestCase()
{
    QVERIFY(dir.isValid());
    QVERIFY(writeSizedFile(dir.filePath("a/one.txt"), 1000));
    QVERIFY(writeSizedFile(dir.filePath("b/two.mp3"), 2000));
    QVERIFY(writeSizedFile(dir.filePath("c/three.pdf"), 3000));
    // Many more entries, so a bigger file.
    for (int n = 0; n < 300; ++n)
        QVERIFY(
            writeSizedFile(dir.filePath(QStringLiteral("big/%1/file%2.bin").arg(n % 7).arg(n)), n));
    for (const char* name : {"a", "b", "c", "big"})
        scans.insert(name, scanOf(folder(name)));
}

void TestScanHistory::init()
{
    QDir(location()).removeRecursively();
}

ScanResult TestScanHistory::scanAt(const QString& name, int seconds) const
{
    ScanResult scan = scans.value(name);
    scan.scannedAt = start.addSecs(seconds);
    return scan;
}

QStringList TestScanHistory::filesIn(const QString& path) const
{
    return QDir(path).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
}

QStringList TestScanHistory::foldersOf(const QList<ScanHistory::Entry>& entries)
{
    QStringList folders;
    for (const ScanHistory::Entry& entry : entries)
        folders << entry.folder;
    return folders;
}

QList<QDateTime> TestScanHistory::timesOf(const QList<ScanHistory::Entry>& entries)
{
    QList<QDateTime> times;
    for (const ScanHistory::Entry& entry : entries)
        times << entry.scannedAt;
    return times;
}

void TestScanHistory::aKeptScanOpensAgain()
{
    ScanHistory history(location());
    const ScanResult scan = scans.value("a");
    QVERIFY(scan.scannedAt.isValid());
    QVERIFY(history.keep(scan, roomy));

    const QList<ScanHistory::Entry> entries = history.scansOf(folder("a"));
    QCOMPARE(entries.size(), 1);
    const ScanHistory::Entry& entry = entries.first();
    QCOMPARE(entry.folder, folder("a"));
    QCOMPARE(entry.scannedAt, scan.scannedAt);
    QCOMPARE(QFileInfo(entry.file).absolutePath(), QFileInfo(location()).absoluteFilePath());
    QCOMPARE(entry.fileBytes, QFileInfo(entry.file).size());
    // Its name tells its folder and its time.
    QVERIFY(QFileInfo(entry.file).fileName().startsWith(ScanHistory::keyOf(folder("a"))));
    QVERIFY(entry.file.contains(scan.scannedAt.toUTC().toString("yyyyMMdd'T'HHmmss'Z'")));

    QFile file(entry.file);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.read(2), QByteArray("\x1f\x8b")); // gzip
    file.close();
    const ScanFile::Opened opened = ScanFile::read(entry.file);
    QCOMPARE(opened.error, QString());
    QCOMPARE(jsonOf(folder("a"), opened.result), jsonOf(folder("a"), scan));
    QCOMPARE(opened.result.scannedAt, scan.scannedAt);

    QCOMPARE(history.lastScanned(folder("a")), std::optional<QDateTime>(scan.scannedAt));
    QCOMPARE(history.scansOf(folder("a") + QDir::separator()).size(), 1);
    QVERIFY(history.scansOf(folder("b")).isEmpty());
    QCOMPARE(history.lastScanned(folder("b")), std::nullopt);
    QCOMPARE(timesOf(history.all()), QList<QDateTime>{scan.scannedAt});
}

void TestScanHistory::theNewestOfAFolderAreKept()
{
    ScanHistory history(location());
    QVERIFY(history.keep(scanAt("b", -100), {3, roomy.totalBytes}));
    for (int second = 0; second < 5; ++second)
        QVERIFY(history.keep(scanAt("a", second), {3, roomy.totalBytes}));

    const QList<ScanHistory::Entry> kept = history.scansOf(folder("a"));
    QCOMPARE(timesOf(kept), QList({start.addSecs(4), start.addSecs(3), start.addSecs(2)}));
    QCOMPARE(foldersOf(kept), QStringList(3, folder("a")));
    QCOMPARE(history.scansOf(folder("b")).size(), 1);
    QCOMPARE(history.lastScanned(folder("a")), std::optional(start.addSecs(4)));
    QCOMPARE(foldersOf(history.all()),
             QStringList({folder("a"), folder("a"), folder("a"), folder("b")}));
    // Only what is listed is on disk, with the index.
    QCOMPARE(filesIn(location()).size(), 5);

    // Fewer allowed: the older go at the next keep.
    QVERIFY(history.keep(scanAt("a", 10), {1, roomy.totalBytes}));
    QCOMPARE(timesOf(history.scansOf(folder("a"))), QList<QDateTime>{start.addSecs(10)});
    QCOMPARE(history.scansOf(folder("b")).size(), 1);
}

void TestScanHistory::theOldestGoPastTheCap()
{
    ScanHistory history(location());
    // Each scan's size as kept: its time is in it, so a byte more or less.
    const QList<QPair<QString, int>> keeps{{"a", 0}, {"b", 1},   {"c", 2},
                                           {"a", 3}, {"big", 4}, {"b", 5}};
    QHash<int, qint64> bytes;
    for (const auto& [name, second] : keeps)
        QVERIFY(history.keep(scanAt(name, second), roomy));
    for (const ScanHistory::Entry& entry : history.all())
        bytes[int(start.secsTo(entry.scannedAt))] = entry.fileBytes;
    QCOMPARE(bytes.size(), 6);
    QVERIFY(bytes[4] > bytes[3]);
    QVERIFY(history.removeAll());

    const ScanHistory::Limits limits{5, bytes[0] + bytes[1] + bytes[2] - 1};
    QVERIFY(history.keep(scanAt("a", 0), limits));
    QVERIFY(history.keep(scanAt("b", 1), limits));
    QCOMPARE(history.all().size(), 2);
    QVERIFY(history.keep(scanAt("c", 2), limits));
    QCOMPARE(foldersOf(history.all()), QStringList({folder("c"), folder("b")}));
    QVERIFY(history.removeAll());

    // Once one does not fit, every older one goes too, however small.
    QVERIFY(history.keep(scanAt("a", 3), roomy));
    QVERIFY(history.keep(scanAt("big", 4), roomy));
    QVERIFY(history.keep(scanAt("b", 5), {5, bytes[5] + bytes[4] - 1}));
    QCOMPARE(foldersOf(history.all()), QStringList({folder("b")}));
}

void TestScanHistory::aScanBiggerThanTheCapIsNotKept()
{
    ScanHistory history(location());
    QVERIFY(history.keep(scanAt("a", 0), roomy));
    const qint64 small = history.all().value(0).fileBytes;

    QVERIFY(!history.keep(scanAt("big", 1), {5, small}));
    QCOMPARE(foldersOf(history.all()), QStringList{folder("a")});
    const QString big = ScanHistory::keyOf(folder("big"));
    for (const QString& name : filesIn(location()))
        QVERIFY2(!name.startsWith(big), qPrintable(name));

    // Nothing fits: nothing stays.
    QVERIFY(!history.keep(scanAt("b", 2), {5, 10}));
    QVERIFY(history.all().isEmpty());
}

void TestScanHistory::removeAllDeletesEveryScanAndNothingElse()
{
    ScanHistory history(location());
    QVERIFY(history.keep(scanAt("a", 0), roomy));
    QVERIFY(history.keep(scanAt("b", 1), roomy));
    QVERIFY(history.removeAll());
    QVERIFY(history.all().isEmpty());
    QVERIFY(history.scansOf(folder("a")).isEmpty());
    // The folder was only ours.
    QVERIFY(!QFileInfo::exists(location()));
    QVERIFY(history.removeAll());

    QVERIFY(history.keep(scanAt("a", 2), roomy));
    QVERIFY(writeSizedFile(QDir(location()).filePath("notes.txt"), 10));
    // What a write stopped in the middle left behind.
    const QString leftover = QFileInfo(history.all().value(0).file).fileName() + ".Ab12Cd";
    QVERIFY(writeSizedFile(QDir(location()).filePath(leftover), 10));
    QVERIFY(history.removeAll());
    QVERIFY(history.all().isEmpty());
    QCOMPARE(filesIn(location()), QStringList{"notes.txt"});
}

void TestScanHistory::aDamagedOrMissingIndexIsReadAgainFromTheScans()
{
    ScanHistory history(location());
    QVERIFY(history.keep(scanAt("a", 0), roomy));
    QVERIFY(history.keep(scanAt("b", 1), roomy));
    const QString index = QDir(location()).filePath("index.json");
    QFile file(index);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject folders =
        QJsonDocument::fromJson(file.readAll()).object().value("folders").toObject();
    file.close();
    QCOMPARE(folders.size(), 2);
    QCOMPARE(folders.value(ScanHistory::keyOf(folder("a"))).toString(), folder("a"));

    const QStringList expected{folder("b"), folder("a")};
    for (const QByteArray& damaged : {QByteArray("{\"folders\":{\"0123"), QByteArray("[1,2]"),
                                      QByteArray("{\"folders\":{}}")}) {
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(damaged);
        file.close();
        QCOMPARE(foldersOf(history.all()), expected);
        QCOMPARE(history.scansOf(folder("a")).size(), 1);
    }
    // An index that names a folder under another's key is not believed.
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QJsonDocument(QJsonObject{{"folders", QJsonObject{{ScanHistory::keyOf(folder("a")),
                                                                  folder("c")}}}})
                   .toJson());
    file.close();
    QCOMPARE(foldersOf(history.all()), expected);
    QVERIFY(QFile::remove(index));
    QCOMPARE(foldersOf(history.all()), expected);
    QCOMPARE(history.lastScanned(folder("b")), std::optional(start.addSecs(1)));

    // The next keep writes it whole again.
    QVERIFY(history.keep(scanAt("c", 2), roomy));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QJsonDocument::fromJson(file.readAll()).object().value("folders").toObject().size(),
             3);
}

void TestScanHistory::foreignFilesAreLeftAlone()
{
    ScanHistory history(location());
    const QDir here(location());
    QVERIFY(here.mkpath("."));
    QVERIFY(writeSizedFile(here.filePath("notes.txt"), 100));
    QVERIFY(here.mkpath("sub"));
    // A scan, but not named as one kept here.
    QVERIFY(ScanFile::write(here.filePath("scan.json.gz"), scans.value("b"), true));
    // Named as one, but not a scan: no folder can be told for it.
    QFile junk(here.filePath("0123456789abcdef-20250101T000000Z.json.gz"));
    QVERIFY(junk.open(QIODevice::WriteOnly));
    junk.write("not a scan at all");
    junk.close();

    QVERIFY(history.keep(scanAt("a", 0), {1, roomy.totalBytes}));
    QVERIFY(history.keep(scanAt("a", 1), {1, roomy.totalBytes}));
    QCOMPARE(foldersOf(history.all()), QStringList{folder("a")});
    QCOMPARE(history.scansOf(folder("a")).size(), 1);
    QVERIFY(history.scansOf(folder("b")).isEmpty());
    for (const char* name : {"notes.txt", "sub", "scan.json.gz"})
        QVERIFY2(here.exists(name), name);
    QVERIFY(history.removeAll());
    QCOMPARE(filesIn(location()), QStringList({"notes.txt", "scan.json.gz", "sub"}));
}

void TestScanHistory::anOpenedScanIsNotKept()
{
    const QString file = dir.filePath("opened.json.gz");
    QVERIFY(ScanFile::write(file, scans.value("a"), true));
    const ScanFile::Opened opened = ScanFile::read(file);
    QCOMPARE(opened.error, QString());
    QVERIFY(!opened.result.isLive());

    ScanHistory history(location());
    QVERIFY(!history.keep(opened.result, roomy));
    QVERIFY(history.all().isEmpty());
    QVERIFY(filesIn(location()).isEmpty());
    QVERIFY(!history.keep(ScanResult(), roomy));
    QVERIFY(filesIn(location()).isEmpty());
}

void TestScanHistory::aWriteThatFailsLeavesNothing()
{
    // Where the scan would go, a folder stands.
    const ScanResult scan = scanAt("a", 0);
    const QString name =
        ScanHistory::keyOf(folder("a")) + "-" + start.toString("yyyyMMdd'T'HHmmss'Z'") + ".json.gz";
    QVERIFY(QDir(location()).mkpath(name));
    ScanHistory history(location());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^history: could not write: "));
    QVERIFY(!history.keep(scan, roomy));
    QCOMPARE(filesIn(location()), QStringList{name});
    QVERIFY(history.all().isEmpty());

    // No folder can be made for the history.
    QVERIFY(writeSizedFile(dir.filePath("plain"), 1));
    ScanHistory nowhere(dir.filePath("plain/scans"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^history: no folder to keep scans in"));
    QVERIFY(!nowhere.keep(scan, roomy));
    QVERIFY(nowhere.all().isEmpty());
    QVERIFY(QFileInfo(dir.filePath("plain")).isFile());
}

void TestScanHistory::theKeeperWritesOnItsThreadAndIsWaitedFor()
{
    {
        ScanKeeper keeper(location());
        QSignalSpy kept(&keeper, &ScanKeeper::kept);
        keeper.keep(scanAt("a", 0), roomy);
        QVERIFY(kept.wait(20000));
        QCOMPARE(kept.takeFirst().value(0).toBool(), true);
        QCOMPARE(keeper.history().all().size(), 1);
        // Handed over and let go of at once: the keeper holds the tree.
        ScanResult scan = scanAt("big", 1);
        keeper.keep(scan, roomy);
        scan = {};
        scans.remove("big");
        keeper.keep(scanAt("b", 2), roomy);
        // The keeper goes, maybe before the writes end.
    }
    ScanHistory history(location());
    QCOMPARE(foldersOf(history.all()), QStringList({folder("b"), folder("big"), folder("a")}));
    // Nothing half written stays beside them.
    const QRegularExpression ours("^([0-9a-f]{16}-\\d{8}T\\d{6}Z\\.json\\.gz|index\\.json)$");
    for (const QString& name : filesIn(location()))
        QVERIFY2(ours.match(name).hasMatch(), qPrintable(name));
    scans.insert("big", scanOf(folder("big")));

    ScanKeeper keeper(location());
    keeper.keep(scanAt("c", 3), roomy);
    // Taken after the keep before it.
    QVERIFY(keeper.removeAll());
    QVERIFY(history.all().isEmpty());
}

void TestScanHistory::theDefaultLocationIsInTheUsersData()
{
#ifdef Q_OS_WIN
    const QString local = QDir::fromNativeSeparators(qEnvironmentVariable("LOCALAPPDATA"));
    QVERIFY(!local.isEmpty());
    QCOMPARE(ScanHistory::defaultLocation().toLower(), (local + "/Tallyroot/scans").toLower());
#else
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath("data")));
    QCOMPARE(ScanHistory::defaultLocation(), dir.filePath("data/tallyroot/scans"));
    QCOMPARE(ScanHistory().location(), dir.filePath("data/tallyroot/scans"));
    qputenv("XDG_DATA_HOME", before);
#endif
}

QTEST_MAIN(TestScanHistory)
#include "tst_scanhistory.moc"
