#include "ChangeReference.h"
#include "IsolatedSettings.h"
#include "ScanSupport.h"
#include "TestSupport.h"
#include "platform/NativeText.h"
#include "scan/ScanComparison.h"

#include <QtTest>

#include <algorithm>
#include <filesystem>
#include <random>

using Status = ScanComparison::Status;

// Two scans of a folder that changed between them: every entry's change, and
// what went, as a difference worked out from the two scans' JSON says.
class TestScanCompare : public QObject {
    Q_OBJECT

private slots:
    void init();
    void everyEntryChangesAsTheTwoScansSay_data();
    void everyEntryChangesAsTheTwoScansSay();
    void childrenListedInAnotherOrderAreMatchedByName_data();
    void childrenListedInAnotherOrderAreMatchedByName();
    void theFoldersThatGrewMostComeFirst();
    void theFilesOfAFolderChangeTogether();
    void changesReadAsText();

private:
    [[nodiscard]] QString at(const QString& relative) const { return dir.filePath(relative); }
    void makeFile(const QString& path, qint64 size) { QVERIFY(writeSizedFile(path, size)); }
    void makeTree(const QString& root);
    void changeTree(const QString& root);
    [[nodiscard]] static Settings excluding(const QString& root, const QString& name);
    static void checkAgainstReference(const ScanComparison& comparison, const QByteArray& olderJson,
                                      const QByteArray& newerJson);

    IsolatedSettings isolated;
    QTemporaryDir dir;
};

namespace {

// An entry's path below the scanned folder, names joined by "/".
QString relativePath(const ScanTree& tree, ScanTree::Index entry)
{
    QStringList names;
    for (; entry != 0; entry = tree.node(entry).parent)
        names.prepend(tree.nameText(entry));
    return names.join('/');
}

QString statusWord(Status status)
{
    static const char* const words[] = {"same", "grown", "shrunk", "new"};
    return QString::fromLatin1(words[int(status)]);
}

// Every entry reached from the scanned folder; excluded folders count nowhere.
std::vector<ScanTree::Index> reachable(const ScanTree& tree)
{
    std::vector<ScanTree::Index> found;
    std::vector<ScanTree::Index> pending{0};
    while (!pending.empty()) {
        const ScanTree::Index entry = pending.back();
        pending.pop_back();
        const ScanTree::Node& node = tree.node(entry);
        if (node.flags & ScanTree::Excluded)
            continue;
        found.push_back(entry);
        for (ScanTree::Index child = node.firstChild; child < node.firstChild + node.childCount;
             ++child)
            pending.push_back(child);
    }
    return found;
}

bool hardLink(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::create_hard_link(from.toStdString(), to.toStdString(), error);
    return !error;
}

} // namespace

void TestScanCompare::init()
{
    QVERIFY(dir.isValid());
    QDir(dir.path()).removeRecursively();
    QDir().mkpath(dir.path());
}

void TestScanCompare::makeTree(const QString& root)
{
    const QString tree = root + '/';
    makeFile(tree + "big.iso", 5'000'000);
    for (int i = 1; i <= 12; ++i)
        makeFile(tree + QStringLiteral("docs/a%1.txt").arg(i), i * 1000);
    makeFile(tree + "docs/old/x.pdf", 70'000);
    makeFile(tree + "docs/old/deeper/y.pdf", 7'000);
    makeFile(tree + "photos/p1.jpg", 400'000);
    makeFile(tree + "photos/p2.jpg", 500'000);
    makeFile(tree + "music/song.mp3", 300'000);
    makeFile(tree + "music/other.mp3", 200'000);
    makeFile(tree + "keep/same.bin", 4096);
    QVERIFY(hardLink(tree + "keep/same.bin", tree + "keep/twin.bin"));
    makeFile(tree + "swap", 10);
    makeFile(tree + "outside/counted.bin", 900);
    makeFile(tree + "inside/left-out.bin", 800);
    QVERIFY(QDir().mkpath(tree + "empty"));
}

// Added, grown, shrunk, removed, moved, a folder renamed, hard links added,
// a file become a folder, an empty file added; "outside" is left out of the newer scan,
// "inside" only of the older one.
void TestScanCompare::changeTree(const QString& root)
{
    const QString tree = root + '/';
    makeFile(tree + "docs/new.txt", 33'000);
    makeFile(tree + "music/new/deep.bin", 1'234'567);
    makeFile(tree + "docs/a1.txt", 91'000);
    makeFile(tree + "docs/a2.txt", 500);
    QVERIFY(QDir(tree + "docs/old").removeRecursively());
    QVERIFY(QFile::remove(tree + "music/other.mp3"));
    QVERIFY(QFile::rename(tree + "big.iso", tree + "music/big.iso"));
    QVERIFY(QDir().rename(tree + "photos", tree + "pictures"));
    QVERIFY(hardLink(tree + "music/song.mp3", tree + "docs/song-link.mp3"));
    QVERIFY(hardLink(tree + "keep/same.bin", tree + "pictures/third.bin"));
    QVERIFY(QFile::remove(tree + "swap"));
    makeFile(tree + "swap/inner.txt", 20);
    makeFile(tree + "inside/more.bin", 700);
    makeFile(tree + "empty/nothing.txt", 0);
}

Settings TestScanCompare::excluding(const QString& root, const QString& name)
{
    Settings settings = Settings::defaults();
    settings.exclusions = {{true, QDir::toNativeSeparators(root + '/' + name)}};
    return settings;
}

void TestScanCompare::checkAgainstReference(const ScanComparison& comparison,
                                            const QByteArray& olderJson,
                                            const QByteArray& newerJson)
{
    using namespace ChangeReference;
    const Entries older = entriesOf(olderJson);
    const Entries newer = entriesOf(newerJson);
    const QMap<QString, Change> expected = changes(older, newer);
    const QMap<QString, QStringList> expectedGone = gone(older, newer);
    const ScanTree& tree = comparison.newer();
    const std::vector<ScanTree::Index> entries = reachable(tree);
    QCOMPARE(qsizetype(entries.size()), expected.size());
    QMap<QString, QStringList> reportedGone;
    for (ScanTree::Index entry : entries) {
        const QString path = relativePath(tree, entry);
        QVERIFY2(expected.contains(path), qPrintable(path));
        const ScanComparison::Change change = comparison.changeOf(entry);
        const QString shown = QStringLiteral("%1: %2 %3 %4")
                                  .arg(path)
                                  .arg(change.bytes)
                                  .arg(change.files)
                                  .arg(statusWord(change.status));
        const Change& wanted = expected[path];
        QCOMPARE(shown, QStringLiteral("%1: %2 %3 %4")
                            .arg(path)
                            .arg(wanted.bytes)
                            .arg(wanted.files)
                            .arg(wanted.status));
        for (const ScanComparison::Gone& went : comparison.goneFrom(entry)) {
            QCOMPARE(went.folder, entry);
            const ScanTree::Node& then = comparison.older().node(went.entry);
            const ScanComparison::Change taken = comparison.goneChangeOf(went.entry);
            reportedGone[path] << QStringLiteral("%1 %2 %3 %4")
                                      .arg(joined(path, comparison.older().nameText(went.entry)))
                                      .arg(-taken.bytes)
                                      .arg(-taken.files)
                                      .arg(then.isFolder() ? "folder" : "file");
        }
    }
    for (QStringList& list : reportedGone)
        list.sort();
    QCOMPARE(reportedGone, expectedGone);
}

void TestScanCompare::everyEntryChangesAsTheTwoScansSay_data()
{
    QTest::addColumn<bool>("elsewhere");
    QTest::newRow("the same folder scanned again") << false;
    QTest::newRow("a changed copy in another folder") << true;
}

void TestScanCompare::everyEntryChangesAsTheTwoScansSay()
{
    QFETCH(bool, elsewhere);
    const QString before = at("tree");
    const QString after = elsewhere ? at("copy") : before;
    makeTree(before);
    const ScanResult older = scanOf(before, excluding(before, "inside"));
    if (elsewhere)
        makeTree(after);
    changeTree(after);
    const ScanResult newer = scanOf(after, excluding(after, "outside"));
    const ScanComparison comparison(older.tree, newer.tree);
    checkAgainstReference(comparison, jsonOf(before, older), jsonOf(after, newer));
    if (QTest::currentTestFailed())
        return;

    // The reference is no echo of the engine: the changes it agreed on are these.
    const ScanTree& tree = *newer.tree;
    const auto changeOf = [&](const QString& relative) {
        const ScanTree::Index entry = tree.locate(after + '/' + relative);
        return entry == ScanTree::none ? ScanComparison::Change{} : comparison.changeOf(entry);
    };
    QCOMPARE(comparison.changeOf(0).bytes,
             qint64(newer.tree->node(0).size) - qint64(older.tree->node(0).size));
    QCOMPARE(changeOf("pictures").status, Status::New);
    QCOMPARE(changeOf("pictures").bytes, 400'000 + 500'000 + 4096);
    QCOMPARE(changeOf("music").bytes, 5'000'000 + 1'234'567 - 200'000);
    QCOMPARE(changeOf("music").files, 1 + 1 - 1);
    QCOMPARE(changeOf("docs/a2.txt").status, Status::Shrunk);
    QCOMPARE(changeOf("docs/song-link.mp3").bytes, 300'000);
    QCOMPARE(changeOf("keep").status, Status::Same);
    QCOMPARE(changeOf("empty").status, Status::Grown);
    QCOMPARE(changeOf("swap").status, Status::New);
    QCOMPARE(changeOf("inside").status, Status::New);
    QCOMPARE(changeOf("outside").status, Status::Same);
    QStringList goneFromRoot;
    for (const ScanComparison::Gone& went : comparison.goneFrom(0))
        goneFromRoot << comparison.older().nameText(went.entry);
    goneFromRoot.sort();
    QCOMPARE(goneFromRoot, (QStringList{"big.iso", "outside", "photos", "swap"}));
}

// Listings of the same folder may come in any order: a folder that changed
// is matched by names, found by hash past a few unmatched children.
void TestScanCompare::childrenListedInAnotherOrderAreMatchedByName_data()
{
    QTest::addColumn<int>("children");
    QTest::newRow("a few") << 5;
    QTest::newRow("many") << 300;
}

void TestScanCompare::childrenListedInAnotherOrderAreMatchedByName()
{
    QFETCH(int, children);
    QStringList names;
    for (int n = 0; n < children; ++n)
        names << QStringLiteral("entry %1").arg(n);
    const auto treeOf = [](const QStringList& listed, const QString& folderName) {
        auto tree = std::make_shared<ScanTree>(QStringLiteral("/x"), platform::toNative("x"));
        const ScanTree::Index first = tree->addChildren(0, ScanTree::Index(listed.size()));
        for (qsizetype n = 0; n < listed.size(); ++n) {
            const auto child = ScanTree::Index(first + n);
            tree->setName(child, platform::toNative(listed[n]));
            tree->node(child).size = std::uint64_t(listed[n].size());
            if (listed[n] == folderName)
                tree->node(child).flags = ScanTree::Folder;
        }
        return tree;
    };
    QStringList shuffled = names;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
    shuffled.removeOne(names[1]);
    shuffled << QStringLiteral("added 1") << QStringLiteral("added 2");
    // The same name as a file before and as a folder now is two entries.
    const QString becomesFolder = names[3];
    const ScanComparison comparison(treeOf(names, {}), treeOf(shuffled, becomesFolder));
    const ScanTree& newer = comparison.newer();
    for (ScanTree::Index child = 1; child < newer.size(); ++child) {
        const QString name = newer.nameText(child);
        const ScanTree::Index older = comparison.olderOf(child);
        const bool kept = names.contains(name) && name != becomesFolder;
        QVERIFY2(kept == (older != ScanTree::none), qPrintable(name));
        if (kept)
            QCOMPARE(comparison.older().nameText(older), name);
    }
    QStringList gone;
    for (const ScanComparison::Gone& went : comparison.goneFrom(0))
        gone << comparison.older().nameText(went.entry);
    QCOMPARE(gone, (QStringList{names[1], becomesFolder}));
}

void TestScanCompare::theFoldersThatGrewMostComeFirst()
{
    const QString root = at("tree");
    makeFile(root + "/a/file", 100);
    makeFile(root + "/b/file", 100);
    makeFile(root + "/c/file", 100);
    makeFile(root + "/c/shrinks", 5000);
    const ScanResult older = scanOf(root);
    makeFile(root + "/a/more", 1000);       // a: +1000
    makeFile(root + "/b/inner/more", 1000); // b and b/inner: +1000
    makeFile(root + "/d/new", 3000);        // d: +3000, new
    makeFile(root + "/c/more", 1000);       // c: +1000 - 5000
    QVERIFY(QFile::remove(root + "/c/shrinks"));
    makeFile(root + "/big", 2000);
    const ScanComparison comparison(older.tree, scanOf(root).tree);
    const ScanTree& tree = comparison.newer();
    const auto paths = [&](const std::vector<ScanTree::Index>& entries) {
        QStringList listed;
        for (ScanTree::Index entry : entries)
            listed << relativePath(tree, entry);
        return listed;
    };
    QCOMPARE(paths(comparison.grownFolders(20)), (QStringList{"d", "a", "b", "b/inner"}));
    QCOMPARE(paths(comparison.grownFolders(2)), (QStringList{"d", "a"}));
    QCOMPARE(paths(comparison.grownFolders(0)), QStringList());
    // Files too, ties in listing order.
    QStringList children = paths(comparison.grownChildren(0, 3));
    QCOMPARE(children.size(), 3);
    QCOMPARE(children[0], QStringLiteral("d"));
    QCOMPARE(children[1], QStringLiteral("big"));
    QVERIFY(children[2] == "a" || children[2] == "b");
}

void TestScanCompare::theFilesOfAFolderChangeTogether()
{
    const QString root = at("tree");
    makeFile(root + "/grows", 100);
    makeFile(root + "/goes", 300);
    makeFile(root + "/sub/file", 7);
    const ScanResult older = scanOf(root);
    makeFile(root + "/grows", 1100);
    QVERIFY(QFile::remove(root + "/goes"));
    makeFile(root + "/comes", 50);
    makeFile(root + "/sub/other", 9);
    makeFile(root + "/fresh/file", 4);
    const ScanComparison comparison(older.tree, scanOf(root).tree);
    const ScanComparison::Change files = comparison.filesChangeOf(0);
    QCOMPARE(files.bytes, 1000 - 300 + 50);
    QCOMPARE(files.files, 0);
    QCOMPARE(files.status, Status::Grown);
    const ScanTree::Index fresh = comparison.newer().locate(root + "/fresh");
    QCOMPARE(comparison.filesChangeOf(fresh).status, Status::New);
}

void TestScanCompare::changesReadAsText()
{
    using Change = ScanComparison::Change;
    QCOMPARE(ScanComparison::changeText(Change{1 << 20, 2, Status::Grown}),
             QStringLiteral("+1.00 MB, +2 files"));
    QCOMPARE(ScanComparison::changeText(Change{-512, -1, Status::Shrunk}),
             QStringLiteral("\u22120.50 KB, \u22121 file"));
    QCOMPARE(ScanComparison::changeText(Change{0, 3, Status::Grown}), QStringLiteral("+3 files"));
    QCOMPARE(ScanComparison::changeText(Change{}), QStringLiteral("no change"));
}

QTEST_GUILESS_MAIN(TestScanCompare)
#include "tst_scancompare.moc"
