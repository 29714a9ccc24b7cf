#include "IsolatedSettings.h"
#include "ScanSupport.h"
#include "TestSupport.h"
#include "scan/GzipDevice.h"
#include "scan/ScanFile.h"

#include <QtTest>

#include <filesystem>

// A scan written to a file and opened again is the scan it was: every
// figure, whose it is, and every entry; a file that is not one says why.
class TestScanFile : public QObject {
    Q_OBJECT

private slots:
    void init();
    void anOpenedScanIsTheScanThatWasWritten_data();
    void anOpenedScanIsTheScanThatWasWritten();
    void aDeepTreeOpens();
    void aFileThatIsNotAWholeScanSaysWhy_data();
    void aFileThatIsNotAWholeScanSaysWhy();
    void gzipMembersFollowOneAnother();

private:
    [[nodiscard]] QString root() const { return QDir::toNativeSeparators(dir.path() + "/tree"); }
    [[nodiscard]] QString file(const QString& name) const { return dir.filePath(name); }
    void makeTree();
    [[nodiscard]] QByteArray plainJson();

    IsolatedSettings isolated;
    QTemporaryDir dir;
    Settings settings;
};

void TestScanFile::init()
{
    QVERIFY(dir.isValid());
    QDir(dir.path()).removeRecursively();
    QDir().mkpath(dir.path() + "/tree");
    settings = Settings::defaults();
    isolated.setOneDrivePath({});
}

// Categories, ties, an excluded folder, an empty one, a file of two names and
// names that JSON has to escape or that are not ASCII.
void TestScanFile::makeTree()
{
    const QString tree = dir.path() + "/tree/";
    for (int n = 1; n <= 24; ++n) {
        const QString name = QStringLiteral("%1%2.%3")
                                 .arg(n % 3 == 0   ? "music/"
                                      : n % 3 == 1 ? "docs/old/"
                                                   : "docs/")
                                 .arg(n)
                                 .arg(n % 2 ? "mp3" : "pdf");
        QVERIFY(writeSizedFile(tree + name, 1000 * (n % 7 + 1)));
    }
    QVERIFY(writeSizedFile(tree + "big.iso", 50000));
#ifdef Q_OS_WIN
    // Windows takes no quote, backslash or control character in a name.
    QVERIFY(writeSizedFile(tree + QString::fromUtf8("naïve 'quoted' 日本 😀.txt"), 77));
    QVERIFY(writeSizedFile(tree + "semi;colon/x.DOC", 5));
#else
    QVERIFY(writeSizedFile(tree + QString::fromUtf8("naïve \"quoted\" \\ 日本 😀.txt"), 77));
    QVERIFY(writeSizedFile(tree + "tab\there/x.DOC", 5));
#endif
    QVERIFY(writeSizedFile(tree + "skip/hidden.mp3", 90000));
    QVERIFY(QDir().mkpath(tree + "empty"));
    settings.exclusions = {{true, QDir::toNativeSeparators(tree + "skip")}};
    std::error_code error;
    std::filesystem::create_hard_link((tree + "big.iso").toStdString(),
                                      (tree + "music/again.iso").toStdString(), error);
}

void TestScanFile::anOpenedScanIsTheScanThatWasWritten_data()
{
    QTest::addColumn<bool>("compressed");
    QTest::newRow("plain") << false;
    QTest::newRow("gzip") << true;
}

void TestScanFile::anOpenedScanIsTheScanThatWasWritten()
{
    QFETCH(bool, compressed);
    makeTree();
    const ScanResult scan = scanOf(root(), settings);
    QCOMPARE(scan.host, ScanFile::localHost());
    QVERIFY(scan.scannedAt.isValid() && scan.isLive());
    QVERIFY(ScanFile::write(file("scan.json"), scan, compressed));

    QFile written(file("scan.json"));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.peek(2) == "\x1f\x8b", compressed);

    const ScanFile::Opened opened = ScanFile::read(file("scan.json"));
    QVERIFY2(opened.error.isEmpty(), qPrintable(opened.error));
    const ScanResult& again = opened.result;
    QCOMPARE(jsonOf(root(), again), jsonOf(root(), scan));
    QCOMPARE(again.host, scan.host);
    QCOMPARE(again.scannedAt, scan.scannedAt);
    QCOMPARE(again.openedFrom, file("scan.json"));
    QVERIFY(!again.isLive());
    // Not only the figures: every entry, with what the map and search read.
    QCOMPARE(again.tree->size(), scan.tree->size());
    for (ScanTree::Index node = 0; node < scan.tree->size(); ++node) {
        const ScanTree::Index same = again.tree->locate(scan.tree->path(node));
        QVERIFY2(same != ScanTree::none, qPrintable(scan.tree->path(node)));
        const ScanTree::Node& a = scan.tree->node(node);
        const ScanTree::Node& b = again.tree->node(same);
        QCOMPARE(b.size, a.size);
        QCOMPARE(b.onDisk, a.onDisk);
        QCOMPARE(b.lastAccessTime, a.lastAccessTime);
        QCOMPARE(b.flags, a.flags);
        QCOMPARE(b.category, a.category);
        QCOMPARE(again.tree->linkedFile(same) != 0, scan.tree->linkedFile(node) != 0);
    }
}

// Nested far deeper than a JSON reader of nested values would take.
void TestScanFile::aDeepTreeOpens()
{
    QString deep = dir.path() + "/tree";
    for (int level = 0; level < 300; ++level)
        deep += "/d";
    QVERIFY(writeSizedFile(deep + "/leaf.bin", 12));
    const ScanResult scan = scanOf(root(), settings);
    QVERIFY(ScanFile::write(file("deep.json.gz"), scan, true));
    const ScanFile::Opened opened = ScanFile::read(file("deep.json.gz"));
    QVERIFY2(opened.error.isEmpty(), qPrintable(opened.error));
    QCOMPARE(jsonOf(root(), opened.result), jsonOf(root(), scan));
}

QByteArray TestScanFile::plainJson()
{
    makeTree();
    QByteArray json = jsonOf(root(), scanOf(root(), settings));
    return json;
}

void TestScanFile::aFileThatIsNotAWholeScanSaysWhy_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("compressed");
    QTest::addColumn<QString>("said");
    const QByteArray json = plainJson();
    QTest::newRow("text") << QByteArray("hello, world\n") << false << "is not a Tallyroot scan";
    QTest::newRow("empty") << QByteArray() << false << "is not a Tallyroot scan";
    QTest::newRow("other JSON") << QByteArray(R"({"name":"x","version":3})") << false
                                << "is not a Tallyroot scan";
    QTest::newRow("older scan") << QByteArray(R"({"folders":[],"path":"/x","unreadable":[]})")
                                << false << "kept only the folders";
    QByteArray newer = json;
    newer.replace("\"format\":2,", "\"format\":3,");
    QTest::newRow("newer") << newer << false << "newer Tallyroot (format 3)";
    QTest::newRow("cut in the tree") << json.left(json.size() - 40) << false << "is cut short";
    QTest::newRow("cut in the head")
        << json.left(json.indexOf("\"folders\"") + 30) << false << "is cut short";
    QTest::newRow("cut, gzip") << json.left(json.size() * 2 / 3) << true << "is cut short";
    QByteArray damaged = json;
    damaged[damaged.indexOf("\"tree\":[") + 30] = '#';
    QTest::newRow("damaged") << damaged << false << "is damaged";
    QByteArray counted = json;
    counted.replace("\"children\":0", "\"children\":1");
    QTest::newRow("children miscounted") << counted << false << "is damaged";
    QTest::newRow("gzip damaged") << QByteArray("\x1f\x8b\x08\x00garbage garbage", 19) << false
                                  << "is damaged";
}

void TestScanFile::aFileThatIsNotAWholeScanSaysWhy()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, compressed);
    QFETCH(QString, said);
    QFile bad(file("bad.json"));
    QVERIFY(bad.open(QIODevice::WriteOnly));
    if (compressed) {
        // The whole of it compressed, then the file cut: a gzip member with no end.
        QBuffer whole;
        whole.open(QIODevice::WriteOnly);
        GzipDevice gzip(whole);
        QVERIFY(gzip.open(QIODevice::WriteOnly));
        gzip.write(content);
        QVERIFY(gzip.finish());
        bad.write(whole.data().left(whole.data().size() / 2));
    } else {
        bad.write(content);
    }
    bad.close();
    const ScanFile::Opened opened = ScanFile::read(bad.fileName());
    QVERIFY2(opened.error.contains(QDir::toNativeSeparators(bad.fileName())),
             qPrintable(opened.error));
    QVERIFY2(opened.error.contains(said), qPrintable(opened.error));
    QVERIFY(!opened.result.tree);

    const ScanFile::Opened missing = ScanFile::read(file("none.json"));
    QVERIFY(missing.error.startsWith(QDir::toNativeSeparators(file("none.json"))));
}

// What `cat a.gz b.gz` makes reads as the two joined, as gunzip reads it.
void TestScanFile::gzipMembersFollowOneAnother()
{
    QBuffer joined;
    joined.open(QIODevice::WriteOnly);
    for (const QByteArray& part : {QByteArray("first "), QByteArray(200000, 'x')}) {
        GzipDevice gzip(joined);
        QVERIFY(gzip.open(QIODevice::WriteOnly));
        QCOMPARE(gzip.write(part), part.size());
        QVERIFY(gzip.finish());
    }
    joined.close();
    QVERIFY(joined.open(QIODevice::ReadOnly));
    GzipDevice gzip(joined);
    QVERIFY(gzip.open(QIODevice::ReadOnly));
    const QByteArray read = gzip.readAll();
    QCOMPARE(read.size(), 200006);
    QVERIFY(read.startsWith("first xx"));
    QVERIFY(!gzip.isCutShort());
}

QTEST_GUILESS_MAIN(TestScanFile)
#include "tst_scanfile.moc"
