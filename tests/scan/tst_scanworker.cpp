#include "IsolatedSettings.h"
#include "ScanSupport.h"
#include "platform/NativeText.h"
#include "results/CategoryModel.h"
#include "results/Columns.h"
#include "results/FolderTreeModel.h"
#include "scan/DiskUsageClearRamThread.h"
#include "scan/DiskUsageWorkerThread.h"
#include "scan/ScanJsonWriter.h"
#include "scan/TreeSearch.h"
#include "settings/Settings.h"

#include <QBuffer>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <filesystem>
#include <functional>

using namespace DiskUsageGlobal;

namespace {

using namespace FolderColumn;

// One scan of a folder, with everything it produced and signalled; the tree
// shown by the models the results screen shows it by.
// What the options page would hand over; each test starts from the defaults.
Settings settings;

struct ScanRun {
    FolderTreeModel folderModel;
    CategoryModel dataFilesModel;
    ScanResult result;
    QByteArray json; // the whole result as tallyroot-scan writes it
    QList<TFileInfo> biggest;
    QList<QList<TMainDataFile>> dataFiles;
    QStringList paths;
    QList<int> subFolderTotals;
    int progress = 0;
    int items = 0;
    int itemsShown = 0; // the count a screen reads once the scan has ended
    int resultReady = 0;
    DiskUsageWorkerThread* worker = nullptr; // while the scan runs

    // The hooks run on the scan's thread: onItem at every entry with the entry
    // count, onPath when the walk enters a folder below the root.
    explicit ScanRun(const QString& path,
                     const std::function<void(DiskUsageWorkerThread&, int)>& onItem = {},
                     const std::function<void(const QString&)>& onPath = {}, int readers = 0)
    {
        ScanRequest request = ScanRequest::of(path, settings);
        request.readers = readers;
        request.atEntry = [this, onItem](int total) {
            items = total;
            if (onItem)
                onItem(*worker, total);
        };
        const QString oneDrive = request.oneDrivePath;
        DiskUsageWorkerThread thread(nullptr, std::move(request));
        worker = &thread;
        const auto direct = Qt::DirectConnection;
        QObject::connect(
            &thread, &DiskUsageWorkerThread::updatePath, &thread,
            [this, onPath](const QString& p) {
                paths << p;
                if (onPath)
                    onPath(p);
            },
            direct);
        QObject::connect(
            &thread, &DiskUsageWorkerThread::updateTotalSubFolder, &thread,
            [this](int total) { subFolderTotals << total; }, direct);
        QObject::connect(
            &thread, &DiskUsageWorkerThread::updateScanProgress, &thread, [this] { ++progress; },
            direct);
        QObject::connect(
            &thread, &DiskUsageWorkerThread::resultReady, &thread, [this] { ++resultReady; },
            direct);
        thread.start();
        thread.wait();
        itemsShown = thread.itemsScanned();
        result = thread.takeResult();
        json = jsonOf(path, result);
        folderModel.setTree(result.tree, oneDrive);
        dataFilesModel.setCategories(result.categories);
        biggest = result.biggestFiles;
        dataFiles = result.dataFiles;
    }

    [[nodiscard]] QModelIndex root() const { return folderModel.index(0, 0); }
};

QVariant cell(const QModelIndex& folder, int column)
{
    return folder.siblingAtColumn(column).data(Qt::DisplayRole);
}

int rowsBelow(const QModelIndex& folder)
{
    return folder.model()->rowCount(folder);
}

QModelIndex childNamed(const QModelIndex& parent, const QString& name)
{
    for (int row = 0; row < rowsBelow(parent); ++row) {
        const QModelIndex child = parent.model()->index(row, 0, parent);
        if (child.data().toString() == name)
            return child;
    }
    return {};
}

QImage iconOf(const QModelIndex& folder)
{
    return qvariant_cast<QIcon>(folder.data(Qt::DecorationRole)).pixmap(16).toImage();
}

void makeFile(const QString& path, qint64 size)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(size));
}

// Makes a chain of folders below base, one level at a time relative to the
// working folder, so that no path is ever longer than one name. Returns how
// many levels were made.
int makeChain(const QString& base, const QString& step, int depth, qint64 leafSize)
{
    const QString start = QDir::currentPath();
    QDir::setCurrent(base);
    int made = 0;
    while (made < depth && QDir().mkdir(step) && QDir::setCurrent(step))
        ++made;
    QFile leaf("leaf.bin");
    if (leaf.open(QIODevice::WriteOnly))
        leaf.resize(leafSize);
    leaf.close();
    QDir::setCurrent(start);
    return made;
}

void removeChain(const QString& base, const QString& step, int depth)
{
    const QString start = QDir::currentPath();
    QDir::setCurrent(base);
    for (int level = 0; level < depth; ++level)
        QDir::setCurrent(step);
    QFile::remove("leaf.bin");
    for (int level = 0; level < depth; ++level) {
        QDir::setCurrent("..");
        QDir().rmdir(step);
    }
    QDir::setCurrent(start);
}

} // namespace

class TestScanWorker : public QObject {
    Q_OBJECT

private slots:
    void init();
    void anEmptyFolder();
    void foldersCarryTheirSubtrees();
    void percentagesAreSharesOfTheParent();
    void theTwentyBiggestFiles();
    void hardLinkedFilesTakeSpaceOnce();
    void categoriesCountEveryMatchingFile();
    void exclusionsArePlainPrefixes();
    void oneDriveFolders();
    void oddNamesAndADeepChain();
    void cancellingKeepsTheTotalsConsistent();
    void aLargeFolderCountsWhileItIsRead();
    void anyNumberOfReadersGivesTheSameResult();
    void foldersChangingInTheReadAheadKeepTheTotalsConsistent();
    void theModelsShowWhatAnIndependentWalkFinds();
    void releasingFreesTheTree();
    void searchFindsByNameAndSize();

private:
    // The scanned folder as a user would pick it, and paths below it joined as
    // the walk joins them.
    [[nodiscard]] QString scanRoot() const { return QDir::toNativeSeparators(dir.path()); }
    [[nodiscard]] QString under(const QString& relative) const;

    IsolatedSettings isolated;
    QTemporaryDir dir;
};

QString TestScanWorker::under(const QString& relative) const
{
    QString path = scanRoot();
    for (const QString& name : relative.split('/'))
        path = platform::childPath(path, name);
    return path;
}

void TestScanWorker::init()
{
    QVERIFY(dir.isValid());
    QDir(dir.path()).removeRecursively();
    QDir().mkpath(dir.path());
    settings = Settings::defaults();
    isolated.setOneDrivePath({});
}

void TestScanWorker::anEmptyFolder()
{
    const ScanRun scan(scanRoot());
    QCOMPARE(scan.folderModel.rowCount(), 1);
    const QModelIndex root = scan.root();
    QCOMPARE(root.data().toString(), QFileInfo(dir.path()).fileName());
    QCOMPARE(cell(root, Size).toULongLong(), 0ull);
    QCOMPARE(cell(root, Percentage).toDouble(), 100.0);
    QCOMPARE(cell(root, MaxData).toString(), QStringLiteral("0"));
    QCOMPARE(cell(root, Path).toString(), scanRoot());
    QCOMPARE(scan.subFolderTotals, QList<int>{1});
    QCOMPARE(scan.resultReady, 1);
}

void TestScanWorker::foldersCarryTheirSubtrees()
{
    makeFile(dir.filePath("a.iso"), 5000);
    makeFile(dir.filePath("Music/song.mp3"), 3000);
    QDir().mkpath(dir.filePath("Music/empty"));
    makeFile(dir.filePath("docs/r.txt"), 3);
    makeFile(dir.filePath("docs/y.txt"), 4);
    const ScanRun scan(scanRoot());

    const QModelIndex root = scan.root();
    QCOMPARE(cell(root, Size).toULongLong(), 8007ull);
    QCOMPARE(cell(root, Files).toInt(), 4);
    QCOMPARE(cell(root, Folders).toInt(), 3);
    QCOMPARE(cell(root, MaxData).toString(),
             QStringLiteral("a.iso:5000:0;Music:3000:1;docs:7:1;2"));
    // The JSON names them as data too, beside the summary.
    const QJsonArray largest =
        QJsonDocument::fromJson(scan.json)["folders"][0]["largestChildren"].toArray();
    QCOMPARE(largest.size(), 3);
    QCOMPARE(largest[0].toObject(),
             (QJsonObject{{"kind", "file"}, {"name", "a.iso"}, {"size", 5000}}));
    QCOMPARE(largest[1].toObject(),
             (QJsonObject{{"kind", "folder"}, {"name", "Music"}, {"size", 3000}}));
    const QModelIndex music = childNamed(root, "Music");
    QVERIFY(music.isValid());
    QCOMPARE(cell(music, MaxData).toString(), QStringLiteral("song.mp3:3000:0;empty:0:1;1"));
    QCOMPARE(cell(music, Path).toString(), under("Music"));

    // Folders are numbered as they finish: children before their parents.
    QCOMPARE(cell(root, Index).toInt(), 3);
    QVERIFY(cell(childNamed(music, "empty"), Index).toInt() < cell(music, Index).toInt());
    QSet<int> indexes{cell(root, Index).toInt()};
    for (const QModelIndex& folder :
         QList<QModelIndex>{music, childNamed(music, "empty"), childNamed(root, "docs")})
        indexes.insert(cell(folder, Index).toInt());
    QCOMPARE(indexes, (QSet<int>{0, 1, 2, 3}));

    QCOMPARE(scan.items, 7);
    QCOMPARE(scan.subFolderTotals, QList<int>{3});
    QCOMPARE(scan.progress, 2);
    QCOMPARE(QSet<QString>(scan.paths.begin(), scan.paths.end()),
             (QSet<QString>{under("Music"), under("docs")}));
}

void TestScanWorker::percentagesAreSharesOfTheParent()
{
    for (const char* name : {"a", "b", "c"})
        makeFile(dir.filePath(QString("three/%1/f").arg(name)), 10);
    makeFile(dir.filePath("alone/inner/f"), 10);
    const ScanRun scan(scanRoot());

    const QModelIndex three = childNamed(scan.root(), "three");
    for (int row = 0; row < rowsBelow(three); ++row)
        QCOMPARE(cell(scan.folderModel.index(row, 0, three), Percentage).toDouble(), 33.33);
    QCOMPARE(cell(three, Percentage).toDouble(), 75.0);
    QCOMPARE(cell(childNamed(childNamed(scan.root(), "alone"), "inner"), Percentage).toDouble(),
             100.0);
}

void TestScanWorker::theTwentyBiggestFiles()
{
    for (int size = 1; size <= 25; ++size)
        makeFile(dir.filePath(QString("sub%1/f%2.bin").arg(size % 3).arg(size)), size);
    makeFile(dir.filePath("zero.bin"), 0);
    const ScanRun scan(scanRoot());

    QCOMPARE(scan.biggest.size(), 20);
    for (int i = 0; i < 20; ++i) {
        const quint64 size = 25 - i;
        QCOMPARE(scan.biggest[i].size, size);
        QCOMPARE(scan.biggest[i].filePath, under(QString("sub%1/f%2.bin").arg(size % 3).arg(size)));
    }
}

void TestScanWorker::hardLinkedFilesTakeSpaceOnce()
{
    constexpr quint64 written = 64 * 1024;
    makeFile(dir.filePath("b/placeholder"), 0);
    QDir().mkpath(dir.filePath("a"));
    QFile data(dir.filePath("a/data.bin"));
    QVERIFY(data.open(QIODevice::WriteOnly));
    data.write(QByteArray(written, 'd'));
    data.close();
    std::error_code error;
    std::filesystem::create_hard_link(data.fileName().toStdString(),
                                      dir.filePath("b/again.bin").toStdString(), error);
    if (error)
        QSKIP("this file system has no hard links");
    const ScanRun scan(scanRoot());
    const quint64 a = cell(childNamed(scan.root(), "a"), OnDisk).toULongLong();
    const quint64 b = cell(childNamed(scan.root(), "b"), OnDisk).toULongLong();
    // Its size counts in both folders, the space it takes only where the walk met it first.
    QCOMPARE(cell(childNamed(scan.root(), "b"), Size).toULongLong(), written);
    QVERIFY(std::max(a, b) >= written);
    QVERIFY(std::min(a, b) < written);
    QCOMPARE(scan.biggest.first().onDisk, scan.biggest.last().onDisk);
}

void TestScanWorker::categoriesCountEveryMatchingFile()
{
    QList<FileTypeCategory>& catalogue = settings.catalogue;
    catalogue[10].checked = false; // Video Files
    for (int size = 1; size <= 25; ++size)
        makeFile(dir.filePath(QString("d/doc%1.txt").arg(size)), size);
    makeFile(dir.filePath("song.MP3"), 3000);
    makeFile(dir.filePath("backup.TAR.GZ"), 2048);
    makeFile(dir.filePath("film.mkv"), 999);
    const ScanRun scan(scanRoot());

    QCOMPARE(scan.result.categories[5].totalSize, 325); // every .txt, not only the 20 kept
    QCOMPARE(catalogue[5].totalSize, 0);                // the settings' own catalogue is left alone
    QCOMPARE(scan.dataFiles[5].size(), 20);
    QCOMPARE(scan.dataFiles[5].first().size, 25);
    QCOMPARE(scan.dataFiles[5].first().fileName, QStringLiteral("doc25.txt"));
    // The folder as the user sees it: the system's separators, on screen and in the JSON.
    QCOMPARE(scan.dataFiles[5].first().filePath, under("d"));
    const QJsonValue written = QJsonDocument::fromJson(scan.json)["categories"][5]["files"][0];
    QCOMPARE(written["filePath"].toString(), under("d"));
    QVERIFY(scan.dataFiles[10].isEmpty());
    QSet<int> indexes;
    for (const auto& list : scan.dataFiles) {
        for (const auto& file : list)
            indexes.insert(file.index);
    }
    QCOMPARE(indexes.size(), 22);
    QVERIFY(*std::min_element(indexes.begin(), indexes.end()) >= 100);

    // Largest total first, ties in catalogue order; the disabled category's
    // row, empty, last.
    const CategoryModel& rows = scan.dataFilesModel;
    QCOMPARE(rows.rowCount(), 12);
    const auto at = [&rows](int row, int column) { return rows.index(row, column).data(); };
    QCOMPARE(at(0, CategoryColumn::Category).toString(), QStringLiteral("Audio Files"));
    QList<int> zeroTotals;
    for (int row = 0; row < 11; ++row) {
        const int category = at(row, CategoryColumn::CategoryIndex).toInt();
        QCOMPARE(at(row, CategoryColumn::Mebibytes).toDouble(),
                 double(scan.result.categories[category].totalSize) * 9.5367431640625e-7);
        if (row > 0)
            QVERIFY(at(row, CategoryColumn::Mebibytes).toDouble() <=
                    at(row - 1, CategoryColumn::Mebibytes).toDouble());
        if (scan.result.categories[category].totalSize == 0)
            zeroTotals << category;
    }
    QVERIFY(std::is_sorted(zeroTotals.begin(), zeroTotals.end()));
    QVERIFY(!at(11, CategoryColumn::Category).isValid());
    QVERIFY(!at(11, CategoryColumn::CategoryIndex).isValid());
}

void TestScanWorker::exclusionsArePlainPrefixes()
{
    makeFile(dir.filePath("Temp/x"), 10);
    makeFile(dir.filePath("Temporary/y"), 20);
    makeFile(dir.filePath("Keep/z"), 40);
    makeFile(dir.filePath("Tempfile.txt"), 80);
    settings.exclusions = {{true, under("Temp")}, {false, under("Keep")}};
    const ScanRun scan(scanRoot());

    const QModelIndex root = scan.root();
    QCOMPARE(rowsBelow(root), 1);
    QCOMPARE(scan.folderModel.index(0, 0, root).data().toString(), QStringLiteral("Keep"));
    QCOMPARE(cell(root, Size).toULongLong(), 120ull); // a file is never excluded
    QCOMPARE(cell(root, Folders).toInt(), 1);
    QCOMPARE(scan.subFolderTotals, QList<int>{4});
    QCOMPARE(scan.paths, QStringList{under("Keep")});
}

void TestScanWorker::oneDriveFolders()
{
    makeFile(dir.filePath("OneDrive/notes/n.txt"), 5);
    makeFile(dir.filePath("Local/l.txt"), 7);
    isolated.setOneDrivePath(platform::toNative(under("OneDrive")));
    const QImage cloud = QIcon(":/resources/images/genericCloudFolder.png").pixmap(16).toImage();
    {
        const ScanRun scan(scanRoot());
        const QModelIndex oneDrive = childNamed(scan.root(), "OneDrive");
        QVERIFY(oneDrive.isValid());
        QCOMPARE(iconOf(oneDrive), cloud);
        QCOMPARE(iconOf(scan.folderModel.index(0, 0, oneDrive)), cloud);
        QVERIFY(iconOf(childNamed(scan.root(), "Local")) != cloud);
    }
    settings.excludeOneDrive = true;
    const ScanRun scan(scanRoot());
    QVERIFY(!childNamed(scan.root(), "OneDrive").isValid());
    QCOMPARE(cell(scan.root(), Size).toULongLong(), 7ull);
}

void TestScanWorker::oddNamesAndADeepChain()
{
    const QStringList names{"a:b;c.d.e", "no dot", "\u65e5\u672c\u8a9e.txt", ";;", "x.y.z.tar.gz"};
    for (const QString& name : names)
        makeFile(dir.filePath("odd/" + name), 11);
    QDir().mkpath(dir.filePath("odd/folder:with;marks"));

    // 1,500 folders deep: paths of some 90,000 characters.
    if (QSysInfo::kernelType() == QLatin1String("winnt"))
        QSKIP("Windows paths end at 32,767 characters; this chain needs about 90,000");
    const QString deep = dir.filePath("deep");
    const QString step = QString(60, 'n');
    QDir().mkpath(deep);
    const int made = makeChain(deep, step, 1500, 123);
    if (made < 1500) {
        removeChain(deep, step, made);
        QSKIP(qPrintable(QString("this system made a folder chain only %1 levels deep").arg(made)));
    }
    const ScanRun scan(scanRoot());
    removeChain(deep, step, made);

    const QModelIndex odd = childNamed(scan.root(), "odd");
    QCOMPARE(cell(odd, Files).toInt(), names.size());
    QCOMPARE(cell(odd, Size).toULongLong(), quint64(11 * names.size()));
    QVERIFY(childNamed(odd, "folder:with;marks").isValid());
    const QModelIndex chain = childNamed(scan.root(), "deep");
    QCOMPARE(cell(chain, Folders).toInt(), 1500);
    QCOMPARE(cell(chain, Size).toULongLong(), 123ull);
    QVERIFY(cell(chain, Path).toString().size() < 100);
}

namespace {

// For a tree with files only in its leaves: every other folder's totals are
// the sums of its subfolders'.
void expectSumsOfSubfolders(const QModelIndex& folder)
{
    if (rowsBelow(folder) == 0)
        return;
    quint64 size = 0;
    int files = 0;
    int folders = rowsBelow(folder);
    for (int row = 0; row < rowsBelow(folder); ++row) {
        const QModelIndex child = folder.model()->index(row, 0, folder);
        expectSumsOfSubfolders(child);
        size += cell(child, Size).toULongLong();
        files += cell(child, Files).toInt();
        folders += cell(child, Folders).toInt();
    }
    QCOMPARE(cell(folder, Size).toULongLong(), size);
    QCOMPARE(cell(folder, Files).toInt(), files);
    QCOMPARE(cell(folder, Folders).toInt(), folders);
}

} // namespace

void TestScanWorker::cancellingKeepsTheTotalsConsistent()
{
    for (int folder = 0; folder < 6; ++folder) {
        for (int file = 0; file < 30; ++file)
            makeFile(dir.filePath(QString("f%1/g/x%2").arg(folder).arg(file)), file + 1);
    }
    constexpr int stopAt = 70;
    const ScanRun scan(scanRoot(), [](DiskUsageWorkerThread& worker, int total) {
        if (total == stopAt)
            worker.setCancel(true);
    });

    QCOMPARE(scan.resultReady, 1);
    QCOMPARE(scan.items, stopAt);
    QCOMPARE(scan.result.itemsScanned, stopAt);
    QCOMPARE(scan.itemsShown, stopAt); // not what was read ahead
    expectSumsOfSubfolders(scan.root());
    const int files = cell(scan.root(), Files).toInt();
    QVERIFY(files > 0 && files < 6 * 30);
    QVERIFY(rowsBelow(scan.root()) < 6);
}

void TestScanWorker::aLargeFolderCountsWhileItIsRead()
{
    constexpr int files = 3000;
    for (int file = 0; file < files; ++file)
        makeFile(dir.filePath(QString("big/f%1").arg(file)), 1);
    // The whole folder is read before the walk meets its first entry; the
    // count shown has moved by then.
    int shownAtFirst = 0;
    const ScanRun scan(dir.filePath("big"),
                       [&shownAtFirst](DiskUsageWorkerThread& worker, int total) {
                           if (total == 1)
                               shownAtFirst = worker.itemsScanned();
                       });
    QCOMPARE(shownAtFirst, files);
    QCOMPARE(scan.itemsShown, files);
}

void TestScanWorker::anyNumberOfReadersGivesTheSameResult()
{
    for (int a = 0; a < 6; ++a) {
        for (int b = 0; b < 5; ++b) {
            for (int f = 0; f < 4; ++f)
                makeFile(
                    dir.filePath(
                        QString("a%1/b%2/f%3.%4").arg(a).arg(b).arg(f).arg(f % 2 ? "txt" : "mp3")),
                    100 * a + 10 * b + f);
        }
    }
    makeFile(dir.filePath("OneDrive/cloud.txt"), 50);
    makeFile(dir.filePath("skip/inner/x.bin"), 70);
    isolated.setOneDrivePath(platform::toNative(under("OneDrive")));
    settings.excludeOneDrive = true;
    settings.exclusions = {{true, under("skip")}};
    // Whole, and cancelled at the 40th entry.
    for (const int stopAt : {-1, 40}) {
        const auto cancelAt = [stopAt](DiskUsageWorkerThread& worker, int total) {
            if (total == stopAt)
                worker.setCancel(true);
        };
        const ScanRun plain(scanRoot(), cancelAt, {}, 1);
        QCOMPARE(plain.items, stopAt < 0 ? 6 + 6 * 5 + 6 * 5 * 4 + 2 : stopAt);
        for (const int readers : {2, 8, 32}) {
            const ScanRun ahead(scanRoot(), cancelAt, {}, readers);
            QCOMPARE(ahead.json, plain.json);
        }
    }
}

void TestScanWorker::foldersChangingInTheReadAheadKeepTheTotalsConsistent()
{
    for (int folder = 0; folder < 8; ++folder) {
        for (int file = 0; file < 20; ++file)
            makeFile(dir.filePath(QString("d%1/e/x%2").arg(folder).arg(file)), file + 1);
    }
    // Each folder below the root goes when the walk reaches it: the readers
    // may have listed it before, or not.
    const ScanRun scan(
        scanRoot(), {}, [](const QString& path) { QDir(path).removeRecursively(); }, 8);
    QCOMPARE(rowsBelow(scan.root()), 8);
    expectSumsOfSubfolders(scan.root());
}

namespace {

// What a plain walk of the disk finds, in the order the system lists each
// folder, for comparison with what the views show.
struct Reference {
    struct Folder {
        QString name;
        QString path;
        quint64 size = 0;
        int files = 0;
        int folders = 0;
        std::vector<Folder> subfolders; // in listing order
    };
    struct File {
        QString path;
        quint64 size;
    };
    QStringList excluded;
    QString vanishing;       // a folder that goes before the scan lists it: empty
    std::vector<File> files; // every file in the order a depth-first walk meets it

    Folder walk(const QString& path, const QString& name)
    {
        namespace fs = std::filesystem;
        Folder folder{name, path, 0, 0, 0, {}};
        if (path == vanishing)
            return folder;
        for (const fs::directory_entry& entry : fs::directory_iterator(platform::toNative(path))) {
            const QString child =
                platform::childPath(path, platform::toQString(entry.path().filename().native()));
            const fs::file_status status = entry.symlink_status();
            if (fs::is_directory(status)) {
                if (excluded.contains(child))
                    continue;
                folder.subfolders.push_back(
                    walk(child, platform::toQString(entry.path().filename().native())));
                const Folder& sub = folder.subfolders.back();
                folder.size += sub.size;
                folder.files += sub.files;
                folder.folders += sub.folders + 1;
                continue;
            }
            const quint64 size = fs::is_symlink(status)
                                     ? quint64(fs::read_symlink(entry.path()).native().size())
                                     : quint64(entry.file_size());
            files.push_back({child, size});
            folder.size += size;
            ++folder.files;
        }
        return folder;
    }

    // The rows as the folder tree shows them: pre-order, each folder's
    // subfolders largest first, ties in listing order.
    static void rows(const Folder& folder, quint64 parentSize, QStringList& out)
    {
        const double share =
            parentSize == 0 ? 100.0 : ScanTree::percentage(folder.size, parentSize);
        out << QStringLiteral("%1|%2|%3|%4|%5|%6")
                   .arg(folder.name, sizeText(double(folder.size)))
                   .arg(folder.files)
                   .arg(folder.folders)
                   .arg(share)
                   .arg(folder.path);
        std::vector<const Folder*> ordered;
        for (const Folder& sub : folder.subfolders)
            ordered.push_back(&sub);
        std::stable_sort(ordered.begin(), ordered.end(),
                         [](const Folder* a, const Folder* b) { return a->size > b->size; });
        for (const Folder* sub : ordered)
            rows(*sub, folder.size, out);
    }

    // The largest `limit` of some files, ties in the order met.
    [[nodiscard]] std::vector<File> largest(const std::function<bool(const File&)>& which,
                                            std::size_t limit) const
    {
        std::vector<File> chosen;
        std::copy_if(files.begin(), files.end(), std::back_inserter(chosen), which);
        std::stable_sort(chosen.begin(), chosen.end(),
                         [](const File& a, const File& b) { return a.size > b.size; });
        chosen.resize(std::min(limit, chosen.size()));
        return chosen;
    }
};

void shownRows(const QAbstractItemModel& model, const QModelIndex& folder, QStringList& out)
{
    out << QStringLiteral("%1|%2|%3|%4|%5|%6")
               .arg(cell(folder, Name).toString(), cell(folder, SizeText).toString())
               .arg(cell(folder, Files).toInt())
               .arg(cell(folder, Folders).toInt())
               .arg(cell(folder, Percentage).toDouble())
               .arg(cell(folder, Path).toString());
    for (int row = 0; row < model.rowCount(folder); ++row)
        shownRows(model, model.index(row, 0, folder), out);
}

} // namespace

// A tree with ties at every level, a folder that cannot be read, links and
// an excluded folder: the folder rows, the biggest files and each category's
// files are what a plain walk of the same disk gives.
void TestScanWorker::theModelsShowWhatAnIndependentWalkFinds()
{
    for (const char* name : {"t1", "t2", "t3"}) {
        makeFile(dir.filePath(QString("%1/a.txt").arg(name)), 300);
        makeFile(dir.filePath(QString("%1/b.mp3").arg(name)), 300);
        QDir().mkpath(dir.filePath(QString("%1/e1").arg(name)));
        QDir().mkpath(dir.filePath(QString("%1/e2").arg(name)));
    }
    for (int file = 0; file < 30; ++file)
        makeFile(dir.filePath(QString("many/f%1.pdf").arg(file)), 100 * (file % 4));
    makeFile(dir.filePath("tie1.mp3"), 600);
    makeFile(dir.filePath("tie2.mp3"), 600);
    makeFile(dir.filePath("skip/inner/x.txt"), 5000);
    makeFile(dir.filePath("goes/g.txt"), 700);
    std::error_code error;
    std::filesystem::create_directory_symlink(platform::toNative(under("t1")),
                                              platform::toNative(under("link")), error);
    std::filesystem::create_hard_link(platform::toNative(under("t2/a.txt")),
                                      platform::toNative(under("many/again.txt")), error);
    settings.exclusions = {{true, under("skip")}};

    Reference reference;
    reference.excluded = QStringList{under("skip")};
    reference.vanishing = under("goes");
    const Reference::Folder root = reference.walk(scanRoot(), QFileInfo(dir.path()).fileName());
    // "goes" is removed at the moment the walk announces it, before it is
    // listed (with no reader ahead of the walk).
    const ScanRun scan(
        scanRoot(), {},
        [](const QString& path) {
            if (path.endsWith("goes"))
                QDir(path).removeRecursively();
        },
        1);
    QCOMPARE(scan.result.unreadable, QStringList{under("goes")});

    QStringList expected;
    QStringList shown;
    Reference::rows(root, 0, expected);
    shownRows(scan.folderModel, scan.root(), shown);
    QCOMPARE(shown, expected);

    const auto fileList = [](const std::vector<Reference::File>& files) {
        QStringList list;
        for (const Reference::File& file : files)
            list << QStringLiteral("%1 %2").arg(file.path).arg(file.size);
        return list;
    };
    QStringList biggest;
    for (const TFileInfo& file : scan.biggest)
        biggest << QStringLiteral("%1 %2").arg(file.filePath).arg(file.size);
    QCOMPARE(biggest, fileList(reference.largest([](const auto& file) { return file.size > 0; },
                                                 biggestFilesLimit)));
    const std::pair<int, QStringList> kinds[] = {{1, {".mp3"}}, {5, {".pdf", ".txt"}}};
    for (const auto& [category, extensions] : kinds) {
        QStringList kept;
        for (const TMainDataFile& file : scan.dataFiles[category])
            kept << QStringLiteral("%1 %2")
                        .arg(platform::childPath(QDir::toNativeSeparators(file.filePath),
                                                 file.fileName))
                        .arg(file.size);
        QCOMPARE(kept, fileList(reference.largest(
                           [&extensions = extensions](const auto& file) {
                               return extensions.contains("." + QFileInfo(file.path).suffix());
                           },
                           dataFilesLimit)));
    }
}

void TestScanWorker::releasingFreesTheTree()
{
    makeFile(dir.filePath("a/b/c.txt"), 10);
    ScanRun scan(scanRoot());
    const std::weak_ptr<const ScanTree> watched = scan.folderModel.tree();
    std::shared_ptr<const ScanTree> tree = scan.folderModel.tree();
    scan.folderModel.clear();
    scan.result.tree.reset();

    DiskUsageClearRamThread release(nullptr, std::move(tree));
    // Counted on this thread, as the results screen counts them.
    int steps = 0;
    bool finished = false;
    QObject receiver;
    connect(&release, &DiskUsageClearRamThread::updateScanProgress, &receiver, [&] { ++steps; });
    connect(&release, &DiskUsageClearRamThread::processFinish, &receiver, [&] { finished = true; });
    release.start();
    QTRY_VERIFY(finished);
    release.wait();
    QCOMPARE(steps, 1);
    QVERIFY(watched.expired());
    QCOMPARE(scan.folderModel.rowCount(), 0);
}

QTEST_MAIN(TestScanWorker)
// The names found for a query, sorted.
QStringList found(const ScanTree& tree, const SearchQuery& query)
{
    QStringList names;
    for (const ScanTree::Index index : TreeSearch(query).find(tree))
        names << tree.nameText(index);
    names.sort();
    return names;
}

void TestScanWorker::searchFindsByNameAndSize()
{
    makeFile(dir.filePath("Music/Song One.mp3"), 3000);
    makeFile(dir.filePath("Music/song-two.MP3"), 100);
    makeFile(dir.filePath("Music/mp3s.txt"), 1);
    makeFile(dir.filePath("Docs/report 2024.pdf"), 5000);
    makeFile(dir.filePath("Docs/Reports/notes.txt"), 10);
    makeFile(dir.filePath("Skip/report.mp3"), 7);
    settings.exclusions = {{true, under("Skip")}};
    const ScanRun scan(scanRoot());
    const ScanTree& tree = *scan.result.tree;
    using Names = QStringList;

    // Without wildcards a part of the name, letter case aside; excluded folders are not searched.
    QCOMPARE(found(tree, {"REPORT"}), Names({"Reports", "report 2024.pdf"}));
    // With them the whole name.
    QCOMPARE(found(tree, {"*.mp3"}), Names({"Song One.mp3", "song-two.MP3"}));
    QCOMPARE(found(tree, {"song?one*"}), Names({"Song One.mp3"}));
    QCOMPARE(found(tree, {"[mn]*.txt"}), Names({"mp3s.txt", "notes.txt"}));
    QCOMPARE(found(tree, {"*.mp"}), Names());
    QCOMPARE(found(tree, {"[!m]*.txt"}), Names({"notes.txt"}));
    QCOMPARE(found(tree, {"*o*e*"}), Names({"Song One.mp3", "notes.txt"}));
    QCOMPARE(found(tree, {"[a-n]*"}), Names({"Docs", "Music", "mp3s.txt", "notes.txt"}));
    // A regular expression matches anywhere in the name; one that does not compile finds nothing.
    QCOMPARE(found(tree, {"^song.(one|two)", true}), Names({"Song One.mp3", "song-two.MP3"}));
    QCOMPARE(found(tree, {"\\d{4}", true}), Names({"report 2024.pdf"}));
    QVERIFY(!TreeSearch({"(", true}).isValid());
    QCOMPARE(found(tree, {"(", true}), Names());
    // A minimum size, alone or with a name; a folder counts its whole subtree.
    QCOMPARE(found(tree, {"*.mp3", false, 1000}), Names({"Song One.mp3"}));
    QCOMPARE(found(tree, {"", false, 3100}), Names({"Docs", "Music", "report 2024.pdf"}));
    QCOMPARE(found(tree, {"", false, 5011}), Names());
    // Told to stop, it stops.
    const std::atomic<bool> stop{true};
    QVERIFY(TreeSearch({"*"}).find(tree, &stop).empty());
    QCOMPARE(found(tree, {"*"}).size(), 8);
}

#include "tst_scanworker.moc"
