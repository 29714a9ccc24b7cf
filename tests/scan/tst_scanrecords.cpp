#include "IsolatedSettings.h"
#include "platform/NativeText.h"
#include "scan/CategoryMatcher.h"
#include "scan/DiskUsageGlobal.h"
#include "scan/VolumeReconciliation.h"
#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"
#include "settings/SettingsStore.h"

#include <QtTest>

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
    void childSummaryIsNotEscapedYetReadsBack();
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
    QList<TMaxDataItem> list;
    const auto offer = [&list](const QString& name, qint64 size) {
        return offerRanked(list, size, 3, [&] {
            return TMaxDataItem{platform::toNative(name), size};
        });
    };
    QVERIFY(offer("a", 5));
    QVERIFY(offer("b", 9));
    QVERIFY(offer("c", 5));  // a tie goes behind the earlier entry
    QVERIFY(!offer("d", 5)); // full, and nothing smaller
    QVERIFY(offer("e", 7));
    QStringList names;
    for (const auto& item : list)
        names << platform::toQString(item.name);
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
    QList<TMaxDataItem> list;
    int made = 0;
    for (qint64 size : {1, 2, 3, 1, 1})
        offerRanked(list, size, 2, [&] { return ++made, TMaxDataItem{{}, size}; });
    QCOMPARE(made, 3);
}

void TestScanRecords::childSummaryIsNotEscapedYetReadsBack()
{
    const auto item = [](const char* name, qint64 size, qint32 kind) {
        return TMaxDataItem{platform::toNative(QString::fromUtf8(name)), size, kind};
    };
    const QList<TMaxDataItem> ranked{
        item("a.iso", 5000, TMaxDataItem::File), item("Music", 3000, TMaxDataItem::Folder),
        item("odd:name;x", 7, TMaxDataItem::File), item("\u00dcbung", 6, TMaxDataItem::File)};
    const QString summary = childSummary(ranked, 1);
    QCOMPARE(summary,
             QString::fromUtf8("a.iso:5000:0;Music:3000:1;odd:name;x:7:0;\u00dcbung:6:0;1"));
    QCOMPARE(childSummary({}, 0), QStringLiteral("0"));
    QVERIFY(parseChildSummary(QStringLiteral("0")).isEmpty());

    const auto names = [](const QList<SummaryEntry>& entries) {
        QStringList result;
        for (const SummaryEntry& entry : entries)
            result << QStringLiteral("%1=%2%3")
                          .arg(entry.name)
                          .arg(entry.size)
                          .arg(entry.isFolder ? "/" : "");
        return result;
    };
    QCOMPARE(names(parseChildSummary(summary)),
             QStringList({"a.iso=5000", "Music=3000/", "odd:name;x=7", "\u00dcbung=6"}));
    // Names that look like a whole entry, or like sizes: read as the ranking allows.
    QCOMPARE(
        names(parseChildSummary(childSummary(
            {item("ratio: 16", 900, TMaxDataItem::File), item("x:1:0;y", 500, TMaxDataItem::File),
             item("12", 40, TMaxDataItem::Folder), item(";", 3, TMaxDataItem::File)},
            1))),
        QStringList({"ratio: 16=900", "x:1:0;y=500", "12=40/", ";=3"}));
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
    QList<FileTypeCategory> catalogue;
    FileTypeCatalogue::fillDefaults(catalogue);
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
    QList<FileTypeCategory> catalogue;
    QVERIFY(!FileTypeCatalogue::load(catalogue)); // nothing stored: the caller fills defaults

    SettingsStore::writeDword("FileTypeDataCount", 3);
    SettingsStore::writeString("FileTypeData0", "1;A (.a)");
    SettingsStore::writeDword("FileTypeData1", 7); // not a string: skipped
    SettingsStore::writeString("FileTypeData2", "0;C (.c, .cc)");
    SettingsStore::writeString("FileTypeData3", "1;Stale (.s)");
    QVERIFY(FileTypeCatalogue::load(catalogue));
    QCOMPARE(catalogue.size(), 2);
    QCOMPARE(catalogue[0].name, QStringLiteral("A"));
    QCOMPARE(catalogue[1].extensions, (QStringList{".c", ".cc"}));
    QVERIFY(!catalogue[1].checked);

    // A count far beyond what is stored reads what there is, at once.
    SettingsStore::writeDword("FileTypeDataCount", 2147483647);
    QVERIFY(FileTypeCatalogue::load(catalogue));
    QCOMPARE(catalogue.size(), 3);
    QCOMPARE(catalogue.last().name, QStringLiteral("Stale"));

    SettingsStore::writeString("FileTypeDataCount", "3"); // the wrong type reads as missing
    QVERIFY(!FileTypeCatalogue::load(catalogue));
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
    ExclusionSettings::load();

    const QList<ExcludeEntry>& list = ExclusionSettings::excludeList();
    QCOMPARE(list.size(), 3);
    QCOMPARE(list[0].path, QStringLiteral("C:\\Temp"));
    QVERIFY(list[0].enable);
    QCOMPARE(list[1].path, QStringLiteral("D:\\Data"));
    QVERIFY(!list[1].enable);
    QVERIFY(!list[2].enable);
    QCOMPARE(ExclusionSettings::excludeOneDriveFolder(), 1u);

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
