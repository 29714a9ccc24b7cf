#include "IsolatedSettings.h"
#include "ScanSupport.h"
#include "TestSupport.h"
#include "scan/ScanEdit.h"

#include <QtTest>

#include <filesystem>

namespace {

// Names the first line where two texts part, so that a failure says what differs.
QByteArray firstDifference(const QByteArray& edited, const QByteArray& fresh)
{
    const QList<QByteArray> a = edited.split(',');
    const QList<QByteArray> b = fresh.split(',');
    for (qsizetype at = 0; at < std::min(a.size(), b.size()); ++at) {
        if (a[at] != b[at])
            return "edited " + a[at] + " but fresh " + b[at];
    }
    return a.size() == b.size() ? QByteArray() : QByteArray("lengths differ");
}

} // namespace

// The figures of a scan changed in place are those of a scan made afresh.
class TestScanEdit : public QObject {
    Q_OBJECT

private slots:
    void init();
    void removingEntriesGivesWhatAFreshScanGives();
    void aHardLinkRemovedLeavesItsTwinCounted();
    void aFolderReadAgainGivesWhatAFreshScanGives();
    void locatingAPath();

private:
    [[nodiscard]] QString root() const { return QDir::toNativeSeparators(dir.path()); }
    [[nodiscard]] QString path(const QString& relative) const;
    void makeTree();
    void expectFresh(const ScanResult& edited);

    IsolatedSettings isolated;
    QTemporaryDir dir;
    Settings settings;
};

QString TestScanEdit::path(const QString& relative) const
{
    return QDir::toNativeSeparators(dir.filePath(relative));
}

void TestScanEdit::init()
{
    QVERIFY(dir.isValid());
    QDir(dir.path()).removeRecursively();
    QDir().mkpath(dir.path());
    settings = Settings::defaults();
    isolated.setOneDrivePath({});
}

// More than twenty files, of several categories, with ties, so that the
// ranked lists have something to get wrong; an excluded folder besides.
void TestScanEdit::makeTree()
{
    for (int n = 1; n <= 24; ++n) {
        const QString folder = n % 3 == 0 ? "music/" : n % 3 == 1 ? "docs/old/" : "docs/";
        const QString name =
            QStringLiteral("%1%2.%3").arg(folder).arg(n).arg(n % 2 ? "mp3" : "pdf");
        QVERIFY(writeSizedFile(dir.filePath(name), 1000 * (n % 7 + 1)));
    }
    QVERIFY(writeSizedFile(dir.filePath("big.iso"), 50000));
    QVERIFY(writeSizedFile(dir.filePath("docs/old/deeper/a.txt"), 3));
    QVERIFY(writeSizedFile(dir.filePath("skip/hidden.mp3"), 90000));
    settings.exclusions = {{true, path("skip")}};
}

void TestScanEdit::expectFresh(const ScanResult& edited)
{
    const QByteArray editedJson = jsonOf(root(), edited);
    const QByteArray freshJson = jsonOf(root(), scanOf(root(), settings));
    QVERIFY2(editedJson == freshJson, firstDifference(editedJson, freshJson).constData());
}

void TestScanEdit::removingEntriesGivesWhatAFreshScanGives()
{
    makeTree();
    const ScanResult before = scanOf(root(), settings);
    const ScanTree& tree = *before.tree;
    ScanEdit edit;
    for (const char* gone : {"big.iso", "docs/old", "music/3.mp3"}) {
        const ScanTree::Index node = tree.locate(path(gone));
        QVERIFY2(node != ScanTree::none, gone);
        edit.remove(node);
        QVERIFY(QFileInfo(dir.filePath(gone)).isDir() ? QDir(dir.filePath(gone)).removeRecursively()
                                                      : QFile::remove(dir.filePath(gone)));
    }
    const ScanResult after = edit.applyTo(before);
    expectFresh(after);
    QCOMPARE(after.tree->size(), scanOf(root(), settings).tree->size());
    // What was applied to is left as it was.
    QCOMPARE(jsonOf(root(), before).size() > jsonOf(root(), after).size(), true);
    QVERIFY(tree.locate(path("big.iso")) != ScanTree::none);
}

void TestScanEdit::aHardLinkRemovedLeavesItsTwinCounted()
{
    QByteArray bytes(64 * 1024, 'd');
    QFile first(dir.filePath("a/data.bin"));
    QVERIFY(writeSizedFile(first.fileName(), 0));
    QVERIFY(first.open(QIODevice::WriteOnly) && first.write(bytes) == bytes.size());
    first.close();
    QVERIFY(writeSizedFile(dir.filePath("b/other.bin"), 10));
    std::error_code error;
    std::filesystem::create_hard_link(first.fileName().toStdString(),
                                      dir.filePath("b/again.bin").toStdString(), error);
    if (error)
        QSKIP("this file system has no hard links");
    const ScanResult before = scanOf(root(), settings);
    QTemporaryDir aside;
    const QString kept = aside.filePath("kept");

    // Both names stay counted once; whichever the walk met first, taking it
    // away leaves the other to count.
    for (const char* gone : {"b/other.bin", "a/data.bin", "b/again.bin"}) {
        const ScanTree::Index node = before.tree->locate(path(gone));
        QVERIFY(node != ScanTree::none);
        ScanEdit edit;
        edit.remove(node);
        QVERIFY(QFile::rename(dir.filePath(gone), kept));
        expectFresh(edit.applyTo(before));
        QVERIFY(QFile::rename(kept, dir.filePath(gone)));
    }
}

void TestScanEdit::aFolderReadAgainGivesWhatAFreshScanGives()
{
    makeTree();
    const ScanResult before = scanOf(root(), settings);
    // Changed behind the scan's back: added, grown, removed, a new folder.
    QVERIFY(writeSizedFile(dir.filePath("docs/new.pdf"), 70000));
    QVERIFY(writeSizedFile(dir.filePath("docs/2.pdf"), 123456));
    QVERIFY(QFile::remove(dir.filePath("docs/old/4.pdf")));
    QVERIFY(writeSizedFile(dir.filePath("docs/old/fresh/b.mp3"), 5));
    QVERIFY(writeSizedFile(dir.filePath("music/ignored.mp3"), 77)); // not read again

    ScanEdit edit;
    edit.replace(before.tree->locate(path("docs")), scanOf(path("docs"), settings).tree);
    const ScanResult after = edit.applyTo(before);
    QCOMPARE(after.tree->locate(path("music/ignored.mp3")), ScanTree::none);
    QVERIFY(after.tree->locate(path("docs/old/fresh/b.mp3")) != ScanTree::none);
    QVERIFY(QFile::remove(dir.filePath("music/ignored.mp3")));
    expectFresh(after);

    // Everything read again, and a change below an edit's result.
    QVERIFY(writeSizedFile(dir.filePath("music/late.mp3"), 4242));
    ScanEdit all;
    all.replace(0, scanOf(root(), settings).tree);
    expectFresh(all.applyTo(after));
}

void TestScanEdit::locatingAPath()
{
    QVERIFY(writeSizedFile(dir.filePath("photo/a.jpg"), 1));
    QVERIFY(writeSizedFile(dir.filePath("photos/b.jpg"), 1));
    const ScanResult scan = scanOf(root(), settings);
    const ScanTree& tree = *scan.tree;
    QCOMPARE(tree.locate(root()), ScanTree::Index(0));
    QCOMPARE(tree.nameText(tree.locate(path("photos/b.jpg"))), QStringLiteral("b.jpg"));
    QCOMPARE(tree.locate(path("photos/a.jpg")), ScanTree::none);
    QCOMPARE(tree.locate(root() + "x"), ScanTree::none);
    for (ScanTree::Index node = 1; node < tree.size(); ++node)
        QCOMPARE(tree.locate(tree.path(node)), node);
    // Where a path is gone, the nearest folder above it that is not.
    QCOMPARE(tree.locateNearest(path("photos/gone/deeper")), tree.locate(path("photos")));
    QCOMPARE(tree.locateNearest(path("nothing")), ScanTree::Index(0));
}

QTEST_GUILESS_MAIN(TestScanEdit)
#include "tst_scanedit.moc"
