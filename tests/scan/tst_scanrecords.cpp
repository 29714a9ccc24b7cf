#include "IsolatedSettings.h"
#include "platform/NativeText.h"
#include "scan/CategoryMatcher.h"
#include "scan/DiskUsageGlobal.h"
#include "scan/ScanJsonWriter.h"
#include "scan/ScanTree.h"
#include "scan/VolumeReconciliation.h"
#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <random>

using namespace DiskUsageGlobal;

class TestScanRecords : public QObject {
    Q_OBJECT

private slots:
    void init();
    void sizeText_data();
    void sizeText();
    void lastAccessTextShowsTheUtcFields();
    void extensionKeyIsTheCompleteSuffix();
    void rankedInsertionKeepsTheLargest();
    void rankedInsertionMakesOnlyWhatItKeeps();
    void aTreeKeepsItsLargestChildrenAsData();
    void jsonStringsAreWrittenAsQtWritesThem();
    void matcher_data();
    void matcher();
    void matcherCountsACategoryOnce();
    void storedCategory_data();
    void storedCategory();
    void catalogueLoadsWhatTheCountSays();
    void exclusionsLoadFromTheirNumberedValues();
    void aVolumeScanAddsUp();

private:
    IsolatedSettings isolated;
};

void TestScanRecords::init()
{
    isolated.clear();
}

void TestScanRecords::sizeText_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << 0.0 << "0.00 KB";
    QTest::newRow("just under a MiB") << 1048575.0 << "1024.00 KB";
    QTest::newRow("a MiB") << 1048576.0 << "1.00 MB";
    QTest::newRow("a GiB") << 1073741824.0 << "1.00 GB";
    QTest::newRow("terabytes stay in GB") << 5e12 << "4656.61 GB";
}

void TestScanRecords::sizeText()
{
    QFETCH(double, bytes);
    QFETCH(QString, text);
    QCOMPARE(DiskUsageGlobal::sizeText(bytes), text);
}

void TestScanRecords::lastAccessTextShowsTheUtcFields()
{
    // 2026-11-16 03:04:41 UTC, shown with no shift to the local zone.
    QCOMPARE(lastAccessText(134392718810000000ull), QStringLiteral("Mon Nov 16 03:04:41 2026"));
    QCOMPARE(lastAccessText(0x8000000000000000ull), QString());
}

void TestScanRecords::extensionKeyIsTheCompleteSuffix()
{
    QCOMPARE(extensionKey("report.pdf"), QStringLiteral(".pdf"));
    QCOMPARE(extensionKey("backup.tar.gz"), QStringLiteral(".tar.gz"));
    QCOMPARE(extensionKey("my.notes.txt"), QStringLiteral(".notes.txt"));
    QCOMPARE(extensionKey("README"), QStringLiteral("."));
    QCOMPARE(extensionKey(".bashrc"), QStringLiteral(".bashrc"));
}

void TestScanRecords::rankedInsertionKeepsTheLargest()
{
    QList<TFileInfo> list;
    const auto offer = [&list](const QString& name, quint64 size) {
        return offerRanked(list, size, 3, [&] { return TFileInfo{{}, {}, name, size}; });
    };
    QVERIFY(offer("a", 5));
    QVERIFY(offer("b", 9));
    QVERIFY(offer("c", 5));  // a tie goes behind the earlier entry
    QVERIFY(!offer("d", 5)); // full, and nothing smaller
    QVERIFY(offer("e", 7));
    QStringList names;
    for (const auto& item : list)
        names << item.filePath;
    QCOMPARE(names, (QStringList{"b", "e", "a"}));

    QList<TFileInfo> files;
    for (int i = 0; i < 21; ++i) {
        offerRanked(files, quint64(100), biggestFilesLimit, [i] {
            return TFileInfo{{}, {}, QString::number(i), 100, 0};
        });
    }
    QCOMPARE(files.size(), 20);
    QCOMPARE(files.first().filePath, QStringLiteral("0"));
    QCOMPARE(files.last().filePath, QStringLiteral("19"));
}

void TestScanRecords::rankedInsertionMakesOnlyWhatItKeeps()
{
    QList<TFileInfo> list;
    int made = 0;
    for (quint64 size : {1, 2, 3, 1, 1})
        offerRanked(list, size, 2, [&] { return ++made, TFileInfo{{}, {}, {}, size}; });
    QCOMPARE(made, 3);
}

namespace {

// A folder of the given children, each a file (false) or folder (true).
ScanTree::Index addChildren(ScanTree& tree, ScanTree::Index folder,
                            const QList<std::tuple<QString, quint64, bool>>& children)
{
    const ScanTree::Index first = tree.addChildren(folder, ScanTree::Index(children.size()));
    for (int child = 0; child < children.size(); ++child) {
        const auto& [name, size, isFolder] = children[child];
        const ScanTree::Index node = first + ScanTree::Index(child);
        tree.setName(node, platform::toNative(name));
        tree.node(node).size = size;
        tree.node(node).flags = isFolder ? ScanTree::Folder : 0;
        tree.node(folder).size += size;
    }
    return first;
}

} // namespace

// The legend, the map and the JSON read a folder's largest children from the
// tree, never from text: a name may hold anything a summary is made of.
void TestScanRecords::aTreeKeepsItsLargestChildrenAsData()
{
    ScanTree tree(QStringLiteral("/scan"), platform::toNative(QStringLiteral("scan")));
    const QString trap = "a" + QString(":0:0;a").repeated(50);
    const ScanTree::Index first = addChildren(tree, 0,
                                              {{"Music", 3000, true},
                                               {"a.iso", 5000, false},
                                               {"odd:name;x", 3000, false},
                                               {"x:999999999999:1;y", 5000, false},
                                               {trap, 9000, false},
                                               {"gone", 0, true}});
    tree.node(first + 5).flags |= ScanTree::Excluded;
    addChildren(tree, first, {{"inner", 0, true}});
    tree.node(first).size = 3000;

    std::vector<QString> names;
    for (ScanTree::Index child : tree.largestChildren(0, 10))
        names.push_back(tree.nameText(child));
    // Ties: files before folders, each in listing order; the excluded one nowhere.
    QCOMPARE(names,
             (std::vector<QString>{trap, "a.iso", "x:999999999999:1;y", "odd:name;x", "Music"}));
    QVERIFY(!tree.node(tree.largestChildren(0, 10)[2]).isFolder());
    QCOMPARE(tree.largestChildren(0, 2).size(), std::size_t(2));
    QCOMPARE(tree.shownSubfolders(0), std::vector<ScanTree::Index>{first});
    QCOMPARE(tree.childSummary(first, tree.largestChildren(first, 10)),
             QStringLiteral("inner:0:1;1"));
    QCOMPARE(tree.childSummary(0, tree.largestChildren(0, 10)),
             trap + ":9000:0;a.iso:5000:0;x:999999999999:1;y:5000:0;odd:name;x:3000:0;"
                    "Music:3000:1;1");
    QCOMPARE(tree.path(first + 1), platform::childPath("/scan", "a.iso"));
    QCOMPARE(tree.percentage(first + 2), 12.0); // 3000 of 25000
    QCOMPARE(tree.percentage(first + 4), 36.0);
    QCOMPARE(tree.percentage(0), 100.0);
}

void TestScanRecords::jsonStringsAreWrittenAsQtWritesThem()
{
    QStringList texts{"",
                      "plain",
                      "quote\" and \\ back",
                      "tab\tnew\nline\r\b\f",
                      QString(QChar(1)) + QChar(0x1f) + QChar(0x7f),
                      "\u00fcber \u65e5\u672c",
                      QString::fromUcs4(U"\U0001F600 emoji")};
    // A lone surrogate: how a Linux name that is not UTF-8 is held.
    texts << QString(QChar(0xdcff)) + "x" << QString(QChar(0xd83d)) + "y" + QChar(0xd83d);
    std::mt19937 random(11);
    for (int text = 0; text < 200; ++text) {
        QString mixed;
        for (int unit = 0; unit < 12; ++unit) {
            const int pick = int(random() % 4);
            mixed += QChar(char16_t(pick == 0   ? random() % 0x80
                                    : pick == 1 ? 0xd800 + random() % 0x800
                                    : pick == 2 ? 0x80 + random() % 0x780
                                                : random() % 0x10000));
        }
        texts << mixed;
    }
    for (const QString& text : texts) {
        QByteArray ours;
        ScanJsonWriter::appendString(ours, text);
        const QByteArray qt = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        QCOMPARE(ours, qt.mid(1, qt.size() - 2));
    }
}

void TestScanRecords::matcher_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QList<int>>("categories");
    using L = QList<int>;
    QTest::newRow("plain") << "report.pdf" << L{5};
    QTest::newRow("upper case") << "PHOTO.JPG" << L{8};
    QTest::newRow("two-part key") << "ARCHIVE.TAR.GZ" << L{3};
    QTest::newRow("only the complete suffix counts") << "photo.backup.jpg" << L{};
    QTest::newRow("a.b.zip is not .zip") << "a.b.zip" << L{};
    QTest::newRow("no dot") << "Makefile" << L{};
    QTest::newRow("ogv stands with audio") << "clip.ogv" << L{1};
    QTest::newRow("non-ASCII name, ASCII key") << "\u00fcbung.Mp3" << L{1};
    QTest::newRow("non-ASCII key") << "x.\u00e4bc" << L{12};
    QTest::newRow("non-ASCII key, other case") << "x.\u00c4BC" << L{12};
}

void TestScanRecords::matcher()
{
    QFETCH(QString, fileName);
    QFETCH(QList<int>, categories);
    QList<FileTypeCategory> catalogue = FileTypeCatalogue::defaults();
    catalogue.append({"Custom", {QString::fromUtf8(".\u00e4bc")}, true, 0, 0});
    const CategoryMatcher matcher(catalogue);

    // Both ways in: the native name the walk has, and a QString.
    for (const CategoryMatcher::Indexes* found :
         {matcher.match(platform::toNative(fileName)), matcher.match(fileName)})
        QCOMPARE(found ? *found : QList<int>{}, categories);
}

void TestScanRecords::matcherCountsACategoryOnce()
{
    QList<FileTypeCategory> catalogue{{"A", {".x", ".X", ".y"}, true, 0, 0},
                                      {"Off", {".x"}, false, 0, 0},
                                      {"B", {".y", ".x"}, true, 0, 0}};
    const CategoryMatcher matcher(catalogue);
    QCOMPARE(*matcher.match(QStringLiteral("f.x")), (QList<int>{0, 2}));
}

void TestScanRecords::storedCategory_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("appended");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("extensions");
    QTest::newRow("unchecked") << "0;Video Files (.avi)" << true << false << "Video Files"
                               << QStringList{".avi"};
    QTest::newRow("any other flag is checked")
        << "x;Video Files (.avi)" << true << true << "Video Files" << QStringList{".avi"};
    QTest::newRow("no extensions")
        << "1;Font Files ()" << true << true << "Font Files" << QStringList{};
    QTest::newRow("trimmed") << "1;Font Files (.fnt,.fon )" << true << true << "Font Files"
                             << QStringList{".fnt", ".fon"};
    QTest::newRow("no parenthesis")
        << "1;Loose .a" << true << true << "Loose .a" << QStringList{"Loose ."};
    QTest::newRow("leading semicolon")
        << ";Font Files (.fnt)" << false << false << "" << QStringList{};
    QTest::newRow("no semicolon") << "Font Files (.fnt)" << false << false << "" << QStringList{};
}

void TestScanRecords::storedCategory()
{
    QFETCH(QString, stored);
    QFETCH(bool, appended);
    QList<FileTypeCategory> catalogue;
    FileTypeCatalogue::appendStored(stored, catalogue);
    QCOMPARE(catalogue.size(), appended ? 1 : 0);
    if (!appended)
        return;
    QTEST(catalogue.first().checked, "checked");
    QTEST(catalogue.first().name, "name");
    QTEST(catalogue.first().extensions, "extensions");
}

void TestScanRecords::catalogueLoadsWhatTheCountSays()
{
    QVERIFY(FileTypeCatalogue::load().isEmpty()); // nothing stored: the settings take the defaults
    QCOMPARE(Settings::load().catalogue.size(), 12);

    SettingsStore::writeDword("FileTypeDataCount", 3);
    SettingsStore::writeString("FileTypeData0", "1;A (.a)");
    SettingsStore::writeDword("FileTypeData1", 7); // not a string: skipped
    SettingsStore::writeString("FileTypeData2", "0;C (.c, .cc)");
    SettingsStore::writeString("FileTypeData3", "1;Stale (.s)");
    QList<FileTypeCategory> catalogue = FileTypeCatalogue::load();
    QCOMPARE(catalogue.size(), 2);
    QCOMPARE(catalogue[0].name, QStringLiteral("A"));
    QCOMPARE(catalogue[1].extensions, (QStringList{".c", ".cc"}));
    QVERIFY(!catalogue[1].checked);

    // A count far beyond what is stored reads what there is, at once.
    SettingsStore::writeDword("FileTypeDataCount", 2147483647);
    catalogue = FileTypeCatalogue::load();
    QCOMPARE(catalogue.size(), 3);
    QCOMPARE(catalogue.last().name, QStringLiteral("Stale"));

    SettingsStore::writeString("FileTypeDataCount", "3"); // the wrong type reads as missing
    QVERIFY(FileTypeCatalogue::load().isEmpty());
}

void TestScanRecords::exclusionsLoadFromTheirNumberedValues()
{
    SettingsStore::writeString("ExludeFolder2", "1;C:\\Temp");
    SettingsStore::writeString("ExludeFolder3", "0;D:\\Data");
    SettingsStore::writeString("ExludeFolder4", "abc;E:\\Other");
    SettingsStore::writeString("ExludeFolder5", "F:\\NoFlag");
    SettingsStore::writeString("ExludeFolder6", "1;c:\\temp"); // the same folder again
    SettingsStore::writeString("ExludeFolder10", "1;G:\\NeverRead");
    SettingsStore::writeDword("ExcludeOneDriveFolder", 1);
    const QList<ExcludeEntry> list = ExclusionSettings::load();
    QCOMPARE(list.size(), 3);
    QCOMPARE(list[0].path, QStringLiteral("C:\\Temp"));
    QVERIFY(list[0].enable);
    QCOMPARE(list[1].path, QStringLiteral("D:\\Data"));
    QVERIFY(!list[1].enable);
    QVERIFY(!list[2].enable);
    QVERIFY(ExclusionSettings::loadExcludeOneDrive());

    QList<ExcludeEntry> full;
    for (int i = 0; i < 11; ++i)
        ExclusionSettings::append(full, {true, QString::number(i)});
    QCOMPARE(full.size(), ExclusionSettings::maximumFolders);
}

void TestScanRecords::aVolumeScanAddsUp()
{
    platform::VolumeRecord volume;
    volume.totalBytes = 100ull << 30;
    volume.freeToCaller = 30ull << 30;
    volume.reservedBytes = 5ull << 30;
    ScanFigures scan;
    scan.totalOnDisk = 60ull << 30;
    scan.unreadable = QStringList{"/root/secret", "/lost+found"};
    scan.elsewhere = QStringList{"/proc"};
    scan.excludedFolders = 1;
    const VolumeReconciliation sums(volume, scan);
    // Used as df counts it: neither free to the user nor reserved.
    QCOMPARE(sums.usedOnVolume(), 65ull << 30);
    QCOMPARE(sums.text(),
             QStringLiteral("Volume: 65.00 GB used, 60.00 GB found on disk by this scan (92%). "
                            "The other 5.00 GB: 2 folders not readable, 1 other file system not "
                            "entered, 1 excluded folder, the file system's own data. 5.00 GB "
                            "more is reserved for the system."));
    QCOMPARE(sums.details().split('\n').size(), 5);

    // All of it found, nothing reserved (Windows): the line stops at the figures.
    scan = {};
    scan.totalOnDisk = 70ull << 30;
    volume.reservedBytes = 0;
    QCOMPARE(VolumeReconciliation(volume, scan).text(),
             QStringLiteral("Volume: 70.00 GB used, 70.00 GB found on disk by this scan (100%)."));
    // A folder inside a volume is no volume's root.
    QVERIFY(!VolumeReconciliation::of(QDir::tempPath() + "/no-such-mount", scan));
}

QTEST_GUILESS_MAIN(TestScanRecords)
#include "tst_scanrecords.moc"
