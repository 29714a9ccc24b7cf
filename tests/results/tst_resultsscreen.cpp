#include "IsolatedSettings.h"
#include "NextModal.h"
#include "TestSupport.h"
#include "app/Appearance.h"
#include "app/PaletteIcons.h"
#include "platform/NativeText.h"
#include "platform/Shell.h"
#include "platform/Volumes.h"
#include "results/BiggestFilesView.h"
#include "results/Columns.h"
#include "results/DataFilesView.h"
#include "results/DiskUsageScanInfoForm.h"
#include "results/DiskUsageScanProgressForm.h"
#include "results/FolderTreeModel.h"
#include "results/LegendWidget.h"
#include "results/MapLegend.h"
#include "results/ResultChanges.h"
#include "results/ResultDetailsDialog.h"
#include "results/TreemapView.h"
#include "scan/DiskUsageGlobal.h"
#include "settings/SettingsStore.h"

#include <QClipboard>
#include <QComboBox>
#include <QDesktopServices>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRandomGenerator>
#include <QStyleFactory>
#include <QTabWidget>
#include <QToolButton>
#include <QToolTip>
#include <QTreeView>
#include <QtTest>

class TestResultsScreen : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void resultsShowTheScannedTree();
    void theLegendListsTheLargestChildren();
    void theRowsAndTheirSharesFollowTheMeasure();
    void theSwitchMeasuresTheTreeAndTheLegendOnDisk();
    void theMeasureIsRememberedForTheNextResults();
    void theBiggestFilesTab();
    void theDataFilesTabAndItsDetails();
    void theMapFollowsTheTree();
    void theMapShowsEveryFile();
    void buttonsFollowTheSelection();
    void backReleasesAndReturnsHome();
    void backWithEveryRowSelectedAgainAndAgain();
    void cancelDuringAScanReturnsHome();
    void aWholeScanIsOfferedForKeepingOnce();
    void filesDeletedAfterTheScan();
    void aFileNothingOpensSaysSo();
    void unreadableFoldersAreCounted();
    void aVolumeRootIsAddedUp();
    void detailsDialogSorting();
    void namesMadeOfSummaryMarksShowAsTheyAre();
    void deepNamesStayWhole();
    void longPathsReachTheFileManager();
    void textsAndIconsReadInLightAndDarkPalettes_data();
    void textsAndIconsReadInLightAndDarkPalettes();

private:
    void makeFile(const QString& relative, qint64 size);
    static void writeFilled(const QString& path, qint64 size);
    // A form with finished results for the tree.
    // The results of a scan of `folder`, by default the test's tree.
    std::unique_ptr<DiskUsageScanProgressForm> scanned(QString folder = {});
    template <typename T> static T* child(QObject* form, const char* name)
    {
        return form->findChild<T*>(QString::fromLatin1(name));
    }
    static QStringList visibleLegendNames(QObject* form);
    // Each row of the legend shown, top to bottom, as "name = size".
    static QStringList legendRows(QObject* form);

    IsolatedSettings isolated;
    // The scanning panel's counter as the results arrived.
    QString finalCount;
    QStringList firstLines; // the path and count lines as the scan starts
    QTemporaryDir dir;
    // Where size and space on disk disagree: a sparse image takes nothing.
    QTemporaryDir measured;
    OpenedUrls opened;
    FakeOpener opener;
    const QString longName = QString(41, 'L');
};

// On Linux every hand-off goes through the desktop's opener, which the tests
// catch; Windows hands paths to the shell directly, which would open windows.
static bool handOffsAreCaught()
{
    return QSysInfo::kernelType() != QLatin1String("winnt");
}

#define SKIP_UNLESS_HAND_OFFS_ARE_CAUGHT()                                                         \
    if (!handOffsAreCaught())                                                                      \
    QSKIP("on Windows the shell itself would open windows; the hand-offs are checked on Linux")

void TestResultsScreen::initTestCase()
{
    // No session bus: no file manager of the developer's desktop answers.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    QDesktopServices::setUrlHandler("file", &opened, "open");
    makeFile("big.iso", 5'000'000);
    for (int i = 1; i <= 12; ++i)
        makeFile(QString("docs/a%1.txt").arg(i, 2, 10, QChar('0')), i * 1000);
    makeFile(longName + "/inside.bin", 2000);
    makeFile("music/song.mp3", 300'000);
    makeFile("music/odd;na:me.txt", 10);
    QVERIFY(QDir(dir.path()).mkdir("empty"));

    // By size: image, sparse.iso, data, written.bin; on disk: data,
    // written.bin, image, sparse.iso.
    QVERIFY(writeSizedFile(measured.filePath("image/disk.img"), 50'000'000));
    QVERIFY(writeSizedFile(measured.filePath("sparse.iso"), 20'000'000));
    writeFilled(measured.filePath("image/label.txt"), 4096);
    writeFilled(measured.filePath("data/notes.bin"), 256 * 1024);
    writeFilled(measured.filePath("data/inner/part.bin"), 64 * 1024);
    writeFilled(measured.filePath("written.bin"), 128 * 1024);
}

void TestResultsScreen::init()
{
    isolated.clear();
    opened.urls.clear();
    opener.forget();
}

void TestResultsScreen::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler("file");
}

void TestResultsScreen::makeFile(const QString& relative, qint64 size)
{
    QVERIFY(writeSizedFile(dir.filePath(relative), size));
}

// Bytes no file system compresses away, so the file takes its size on disk.
void TestResultsScreen::writeFilled(const QString& path, qint64 size)
{
    QVERIFY(writeSizedFile(path, 0));
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator random(7);
    random.fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), size);
}

std::unique_ptr<DiskUsageScanProgressForm> TestResultsScreen::scanned(QString folder)
{
    if (folder.isEmpty())
        folder = dir.path();
    auto form = std::make_unique<DiskUsageScanProgressForm>();
    form->resize(986, 513);
    form->show();
    QSignalSpy finished(form.get(), &DiskUsageScanProgressForm::scanFinish);
    connect(form.get(), &DiskUsageScanProgressForm::scanFinish, this,
            [this, &form] { finalCount = child<QLabel>(form.get(), "itemScanLabel")->text(); });
    form->startScanning(ScanRequest::of(folder, Settings::defaults()));
    firstLines = {child<QLabel>(form.get(), "pathLabel")->text(),
                  child<QLabel>(form.get(), "itemScanLabel")->text()};
    if (!finished.wait(20000))
        return nullptr;
    // The scanning panel goes on the next pass of the event loop.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return form;
}

QStringList TestResultsScreen::visibleLegendNames(QObject* form)
{
    // The legend's labels, top to bottom: the summary row, then the rows shown.
    QList<QLabel*> labels;
    for (QLabel* label : child<QWidget>(form, "maxItemWidget")->findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty() && !label->text().endsWith(" KB") &&
            !label->text().endsWith(" MB") && !label->text().endsWith(" GB"))
            labels << label;
    }
    std::sort(labels.begin(), labels.end(), [](QLabel* a, QLabel* b) { return a->y() < b->y(); });
    QStringList names;
    for (QLabel* label : labels)
        names << label->text();
    return names;
}

QStringList TestResultsScreen::legendRows(QObject* form)
{
    QMap<int, QMap<int, QString>> textsByLine;
    for (QLabel* label : child<QWidget>(form, "maxItemWidget")->findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty())
            textsByLine[label->y()][label->x()] = label->text();
    }
    QStringList rows;
    for (const QMap<int, QString>& line : textsByLine)
        rows << QStringList(line.values()).join(QStringLiteral(" = "));
    return rows;
}

void TestResultsScreen::resultsShowTheScannedTree()
{
    auto form = scanned();
    QVERIFY(form);
    auto* tabs = child<QTabWidget>(form.get(), "tabWidget");
    QVERIFY(tabs->isVisible());
    QVERIFY(child<QWidget>(form.get(), "toolBar")->isVisible());
    QCOMPARE(tabs->currentIndex(), 0);
    // The counter, read from the scan on a timer, ends at every entry of the tree.
    int entries = 0;
    for (QDirIterator it(dir.path(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                         QDirIterator::Subdirectories);
         it.hasNext(); it.next())
        ++entries;
    QCOMPARE(finalCount, QString::number(entries) + QStringLiteral(" items scanned"));
    QCOMPARE(firstLines, QStringList({QDir::toNativeSeparators(dir.path()),
                                      QStringLiteral("0 items scanned")}));
    QVERIFY(!form->findChild<DiskUsageScanInfoForm*>() ||
            !form->findChild<DiskUsageScanInfoForm*>()->isVisible());

    auto* tree = child<QTreeView>(form.get(), "treeView");
    const QModelIndex root = tree->model()->index(0, 0);
    QCOMPARE(root.data().toString(), QFileInfo(dir.path()).fileName());
    QVERIFY(tree->isExpanded(root));
    QCOMPARE(tree->currentIndex(), root);
    for (int column = 4; column <= 8; ++column)
        QVERIFY(tree->isColumnHidden(column));

    // Largest first on every level, and a header click does not re-sort.
    QStringList order;
    for (int row = 0; row < tree->model()->rowCount(root); ++row)
        order << tree->model()->index(row, 0, root).data().toString();
    QCOMPARE(order, (QStringList{"music", "docs", longName, "empty"}));
    emit tree->header()->sectionClicked(0);
    emit tree->header()->sectionClicked(1);
    QCOMPARE(tree->model()->index(0, 0, root).data().toString(), QStringLiteral("music"));
}

void TestResultsScreen::theLegendListsTheLargestChildren()
{
    auto form = scanned();
    QVERIFY(form);
    // The root: one file and four folders, which add up to the whole.
    QCOMPARE(visibleLegendNames(form.get()),
             (QStringList{QFileInfo(dir.path()).fileName(), "big.iso", "music", "docs",
                          QString(18, 'L') + "..." + QString(18, 'L'), "empty"}));

    // docs: twelve files, the ten largest listed and the rest summed up.
    auto* tree = child<QTreeView>(form.get(), "treeView");
    const QModelIndex docs = tree->model()->index(1, 0, tree->model()->index(0, 0));
    tree->setCurrentIndex(docs);
    const QStringList names = visibleLegendNames(form.get());
    QCOMPARE(names.size(), 12);
    QCOMPARE(names.at(1), QStringLiteral("a12.txt"));
    QCOMPARE(names.last(), QStringLiteral("Other Smaller Items"));
    bool remainderShown = false;
    for (QLabel* label : child<QWidget>(form.get(), "maxItemWidget")->findChildren<QLabel*>())
        remainderShown |= label->isVisible() && label->text() == QStringLiteral("2.93 KB");
    QVERIFY(remainderShown);

    // Names are not escaped in the summary, yet ";" and ":" in one are read right.
    const QModelIndex music = tree->model()->index(0, 0, tree->model()->index(0, 0));
    tree->setCurrentIndex(music);
    QCOMPARE(visibleLegendNames(form.get()), (QStringList{"music", "song.mp3", "odd;na:me.txt"}));

    // An empty folder: nothing listed, no remainder.
    tree->setCurrentIndex(tree->model()->index(3, 0, tree->model()->index(0, 0)));
    QCOMPARE(visibleLegendNames(form.get()), QStringList{"empty"});
}

namespace {

using Measure = ScanTree::Measure;

// Folders below `folder`, each of a size and a space on disk, in listing order.
ScanTree::Index addFolders(ScanTree& tree, ScanTree::Index folder,
                           const QList<std::tuple<QString, quint64, quint64>>& children)
{
    const ScanTree::Index first = tree.addChildren(folder, ScanTree::Index(children.size()));
    for (int child = 0; child < children.size(); ++child) {
        const auto& [name, size, onDisk] = children[child];
        ScanTree::Node& node = tree.node(first + ScanTree::Index(child));
        tree.setName(first + ScanTree::Index(child), platform::toNative(name));
        node.flags = ScanTree::Folder;
        node.size = size;
        node.onDisk = onDisk;
        tree.node(folder).size += size;
        tree.node(folder).onDisk += onDisk;
        tree.node(folder).folders += 1;
    }
    return first;
}

// Listed a, b, c, d: by size a, then c and d (a tie), then b; on disk b, c, d,
// a. Each grew by 100 bytes since `grown` less. Only a holds a folder.
std::shared_ptr<ScanTree> measuredTree(quint64 grown = 0)
{
    auto tree =
        std::make_shared<ScanTree>(QStringLiteral("/m"), platform::toNative(QStringLiteral("m")));
    const ScanTree::Index first = addFolders(*tree, 0,
                                             {{"a", 1000 - grown, 100},
                                              {"b", 300 - grown, 600},
                                              {"c", 350 - grown, 200},
                                              {"d", 350 - grown, 200}});
    addFolders(*tree, first, {{"a1", 0, 0}});
    return tree;
}

QStringList rowNames(const QAbstractItemModel& model, const QModelIndex& folder)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(folder); ++row)
        names << model.index(row, 0, folder).data().toString();
    return names;
}

// Whether the file system left a file made by writeSizedFile() without blocks.
bool isSparse(const ScanTree& scan, const QString& path)
{
    const ScanTree::Node& file = scan.node(scan.locate(path));
    return file.onDisk < file.size;
}

QList<double> shares(const QAbstractItemModel& model, const QModelIndex& folder)
{
    QList<double> percentages;
    for (int row = 0; row < model.rowCount(folder); ++row)
        percentages << model.index(row, FolderColumn::Percentage, folder).data().toDouble();
    return percentages;
}

} // namespace

// The order, the shares behind the bars and growth's ties all go by the
// measure; the rows move in place, so the view keeps what was chosen and open.
void TestResultsScreen::theRowsAndTheirSharesFollowTheMeasure()
{
    const std::shared_ptr<ScanTree> tree = measuredTree();
    FolderTreeModel model;
    model.setTree(tree);
    QTreeView view;
    view.setModel(&model);
    const QModelIndex root = model.index(0, 0);
    view.expand(root);
    view.expand(model.index(0, 0, root)); // a, with a1 in it
    view.setCurrentIndex(model.index(3, 0, root));
    QCOMPARE(rowNames(model, root), (QStringList{"a", "c", "d", "b"}));
    QCOMPARE(shares(model, root), (QList<double>{50.0, 17.5, 17.5, 15.0}));

    model.setMeasure(Measure::OnDisk);
    QCOMPARE(model.measure(), Measure::OnDisk);
    QCOMPARE(rowNames(model, root), (QStringList{"b", "c", "d", "a"}));
    QCOMPARE(shares(model, root), (QList<double>{54.54, 18.18, 18.18, 9.09}));
    QCOMPARE(view.currentIndex().data().toString(), QStringLiteral("b"));
    QCOMPARE(view.currentIndex().row(), 0);
    QCOMPARE(view.selectionModel()->selectedRows(), QModelIndexList{model.index(0, 0, root)});
    QVERIFY(view.isExpanded(model.index(3, 0, root)));
    QVERIFY(!view.isExpanded(model.index(0, 0, root)));
    QCOMPARE(rowNames(model, model.index(3, 0, root)), QStringList{"a1"});

    // A new tree keeps the measure.
    model.setTree(measuredTree());
    QCOMPARE(rowNames(model, model.index(0, 0)), (QStringList{"b", "c", "d", "a"}));

    // Every folder grew alike: the measure decides.
    auto comparison = std::make_shared<ScanComparison>(measuredTree(100), model.tree());
    model.setComparison(comparison);
    model.setOrder(FolderTreeModel::Order::ByGrowth);
    QCOMPARE(rowNames(model, model.index(0, 0)), (QStringList{"b", "c", "d", "a"}));
    model.setMeasure(Measure::Size);
    QCOMPARE(rowNames(model, model.index(0, 0)), (QStringList{"a", "c", "d", "b"}));
}

void TestResultsScreen::theSwitchMeasuresTheTreeAndTheLegendOnDisk()
{
    auto form = scanned(measured.path());
    QVERIFY(form);
    const auto* model =
        qobject_cast<FolderTreeModel*>(child<QTreeView>(form.get(), "treeView")->model());
    const ScanTree& scan = *model->tree();
    if (!isSparse(scan, measured.filePath("sparse.iso")))
        QSKIP("this file system keeps no sparse files");
    auto* tree = child<QTreeView>(form.get(), "treeView");
    auto* bySize = child<QToolButton>(form.get(), "sizeMeasureButton");
    auto* onDisk = child<QToolButton>(form.get(), "onDiskMeasureButton");
    QVERIFY(bySize->isVisible() && bySize->isChecked() && !onDisk->isChecked());
    const QModelIndex root = model->index(0, 0);
    const QString rootName = QFileInfo(measured.path()).fileName();
    QCOMPARE(rowNames(*model, root), (QStringList{"image", "data"}));
    QCOMPARE(visibleLegendNames(form.get()),
             (QStringList{rootName, "image", "sparse.iso", "data", "written.bin"}));
    const auto sizeOf = [&](const QString& relative, Measure measure) {
        const ScanTree::Index node =
            relative.isEmpty() ? 0 : scan.locate(measured.filePath(relative));
        return DiskUsageGlobal::sizeText(double(scan.node(node).amount(measure)));
    };
    QCOMPARE(legendRows(form.get()).at(1), "image = " + sizeOf("image", Measure::Size));

    // The bar of the image fills its cell by size, and next to nothing on disk.
    const auto barOf = [&](const QString& name) {
        const QModelIndex row = model->index(rowNames(*model, root).indexOf(name), 0, root);
        const QRect cell = tree->visualRect(row.siblingAtColumn(FolderColumn::SizeText));
        const QImage image = tree->viewport()->grab(cell).toImage();
        // Along the top, where no text stands.
        int yellow = 0;
        for (int x = 0; x < image.width(); ++x)
            yellow += image.pixelColor(x, 1) == QColor(Qt::yellow) ? 1 : 0;
        return yellow * 100 / image.width();
    };
    QVERIFY(barOf("image") > 60);

    // Switched with data/inner chosen and data open: both stay so.
    const QModelIndex data = model->index(1, 0, root);
    tree->expand(data);
    tree->setCurrentIndex(model->index(0, 0, data));
    onDisk->click();
    QVERIFY(onDisk->isChecked() && !bySize->isChecked());
    QCOMPARE(rowNames(*model, root), (QStringList{"data", "image"}));
    QVERIFY(tree->isExpanded(model->index(0, 0, root)));
    QCOMPARE(tree->currentIndex(), model->index(0, 0, model->index(0, 0, root)));
    QCOMPARE(tree->selectionModel()->selectedRows(), QModelIndexList{tree->currentIndex()});
    QCOMPARE(legendRows(form.get()).first(), "inner = " + sizeOf("data/inner", Measure::OnDisk));
    QVERIFY(barOf("image") < 10);
    QVERIFY(barOf("data") > 60);

    // The legend of the scanned folder: largest on disk first, sizes on disk.
    tree->setCurrentIndex(root);
    QCOMPARE(visibleLegendNames(form.get()).mid(0, 5),
             (QStringList{rootName, "data", "written.bin", "image", "sparse.iso"}));
    const QStringList rows = legendRows(form.get());
    QCOMPARE(rows.at(0), rootName + " = " + sizeOf({}, Measure::OnDisk));
    QCOMPARE(rows.at(1), "data = " + sizeOf("data", Measure::OnDisk));
    QCOMPARE(rows.at(3), "image = " + sizeOf("image", Measure::OnDisk));
    QCOMPARE(SettingsStore::readDword(QStringLiteral("SizeMeasure")).value_or(9), 1u);

    // The map: the sparse image takes next to nothing on disk, so a small
    // tile or none; by size, over a quarter of the map.
    auto* map = child<TreemapView>(form.get(), "treemapView");
    QSignalSpy rendered(map, &TreemapView::rendered);
    child<QTabWidget>(form.get(), "tabWidget")->setCurrentIndex(3);
    QVERIFY(rendered.wait());
    QCOMPARE(map->measure(), Measure::OnDisk);
    const ScanTree::Index sparse = scan.locate(measured.filePath("sparse.iso"));
    const auto tileArea = [&] {
        const QRectF tile = map->rectOf(sparse);
        const bool own = tile != map->rectOf(scan.node(sparse).parent);
        return own ? tile.width() * tile.height() : 0.0;
    };
    QTRY_VERIFY(!map->rectOf(sparse).isEmpty());
    const double onDiskArea = tileArea();
    auto* legend = child<MapLegend>(form.get(), "mapLegend");
    QTRY_COMPARE(legend->title(), QStringLiteral("File types on disk"));
    bySize->click();
    QVERIFY(rendered.wait());
    QVERIFY(tileArea() > map->width() * map->height() / 4);
    QVERIFY(onDiskArea < tileArea() / 10);
    QTRY_COMPARE(legend->title(), QStringLiteral("File types by size"));
}

// The next results open as the last were left; a value that names no
// measure is size.
void TestResultsScreen::theMeasureIsRememberedForTheNextResults()
{
    QVERIFY(!SettingsStore::readDword(QStringLiteral("SizeMeasure")));
    {
        DiskUsageScanProgressForm first;
        QVERIFY(child<QToolButton>(&first, "sizeMeasureButton")->isChecked());
        child<QToolButton>(&first, "onDiskMeasureButton")->click();
    }
    auto form = scanned(measured.path());
    QVERIFY(form);
    QVERIFY(child<QToolButton>(form.get(), "onDiskMeasureButton")->isChecked());
    const auto* model =
        qobject_cast<FolderTreeModel*>(child<QTreeView>(form.get(), "treeView")->model());
    QCOMPARE(model->measure(), Measure::OnDisk);
    if (isSparse(*model->tree(), measured.filePath("sparse.iso")))
        QCOMPARE(rowNames(*model, model->index(0, 0)), (QStringList{"data", "image"}));

    child<QToolButton>(form.get(), "sizeMeasureButton")->click();
    QCOMPARE(SettingsStore::readDword(QStringLiteral("SizeMeasure")).value_or(9), 0u);
    QCOMPARE(rowNames(*model, model->index(0, 0)), (QStringList{"image", "data"}));

    QVERIFY(SettingsStore::writeDword(QStringLiteral("SizeMeasure"), 7));
    DiskUsageScanProgressForm unknown;
    QVERIFY(child<QToolButton>(&unknown, "sizeMeasureButton")->isChecked());
    QVERIFY(!child<QToolButton>(&unknown, "onDiskMeasureButton")->isChecked());
}

void TestResultsScreen::theBiggestFilesTab()
{
    auto form = scanned();
    QVERIFY(form);
    auto* view = child<QTreeView>(form.get(), "biggestFileTreeView");
    const QAbstractItemModel* model = view->model();
    QCOMPARE(model->rowCount(), 16);
    QCOMPARE(model->index(0, 0).data().toString(), QStringLiteral("big.iso"));
    QCOMPARE(model->index(0, 3).data().toString(), QDir::toNativeSeparators(dir.path()));
    QCOMPARE(model->index(1, 0).data().toString(), QStringLiteral("song.mp3"));

    SKIP_UNLESS_HAND_OFFS_ARE_CAUGHT();
    view->setCurrentIndex(model->index(1, 0));
    child<QToolButton>(form.get(), "openFileBiggestButton")->click();
    QTRY_COMPARE(opener.given(),
                 QStringList{QUrl::fromLocalFile(dir.filePath("music/song.mp3")).toEncoded()});
}

void TestResultsScreen::theDataFilesTabAndItsDetails()
{
    auto form = scanned();
    QVERIFY(form);
    auto* view = child<QTreeView>(form.get(), "dataFilesTreeView");
    const QAbstractItemModel* model = view->model();
    QCOMPARE(model->rowCount(), 12);
    // Largest total first: the disk image, the audio file, then the documents.
    QCOMPARE(model->index(0, 0).data().toString(), QStringLiteral("Disk Image Files"));
    QCOMPARE(model->index(1, 0).data().toString(), QStringLiteral("Audio Files"));
    QCOMPARE(model->index(2, 0).data().toString(), QStringLiteral("Document Files"));

    view->setCurrentIndex(model->index(2, 0));
    int rows = -1;
    QString title;
    QTimer::singleShot(0, this, [&] {
        auto* dialog = qobject_cast<ResultDetailsDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        title = dialog->windowTitle();
        rows = child<QTreeView>(dialog, "dataFilesTreeView")->model()->rowCount();
        dialog->close();
    });
    child<QToolButton>(form.get(), "dataFilesViewButton")->click();
    QCOMPARE(title, QStringLiteral("Document Files (20 Biggest Files)"));
    QCOMPARE(rows, 13);
}

void TestResultsScreen::theMapFollowsTheTree()
{
    auto form = scanned();
    QVERIFY(form);
    auto* map = child<TreemapView>(form.get(), "treemapView");
    QVERIFY(!map->isRendered()); // nothing is laid out before the tab is shown
    QSignalSpy rendered(map, &TreemapView::rendered);
    child<QTabWidget>(form.get(), "tabWidget")->setCurrentIndex(3);
    QVERIFY(rendered.wait());
    auto* tree = child<QTreeView>(form.get(), "treeView");
    const QAbstractItemModel* model = tree->model();
    const QModelIndex root = model->index(0, 0);
    const QModelIndex musicRow = model->index(0, 0, root);
    const ScanTree::Index music = FolderTreeModel::nodeOf(musicRow);
    const ScanTree::Index docs = FolderTreeModel::nodeOf(model->index(1, 0, root));
    QCOMPARE(musicRow.data().toString(), QStringLiteral("music"));
    // A picture of another size stretches until the one for this size is ready.
    QTRY_VERIFY(!map->rectOf(music).isEmpty());

    // Hovering tells what a block is; a click chooses its folder in the tree.
    const QPoint onMusic = map->rectOf(music).center().toPoint();
    QHelpEvent hover(QEvent::ToolTip, onMusic, map->mapToGlobal(onMusic));
    QApplication::sendEvent(map, &hover);
    QVERIFY(QToolTip::text().contains(QDir::toNativeSeparators(dir.filePath("music"))));
    QVERIFY(QToolTip::text().contains("of the scanned folder"));
    QTest::mouseClick(map, Qt::LeftButton, {}, onMusic);
    QCOMPARE(tree->currentIndex(), musicRow);

    // A double-click shows only that folder; Backspace goes back up.
    auto* up = child<QToolButton>(form.get(), "mapUpButton");
    QVERIFY(!up->isEnabled());
    const QPoint onDocs = map->rectOf(docs).center().toPoint();
    QTest::mouseDClick(map, Qt::LeftButton, {}, onDocs);
    QVERIFY(rendered.wait());
    QCOMPARE(child<QLabel>(form.get(), "mapPathLabel")->text(),
             QDir::toNativeSeparators(dir.filePath("docs")));
    QVERIFY(up->isEnabled());
    QVERIFY(map->rectOf(music).isEmpty());
    QTest::keyClick(map, Qt::Key_Backspace);
    QVERIFY(rendered.wait());
    QVERIFY(!up->isEnabled());
    QVERIFY(!map->rectOf(music).isEmpty());

    // Back lets go of the map with the rest.
    QSignalSpy home(form.get(), &DiskUsageScanProgressForm::backToMain);
    child<QToolButton>(form.get(), "backButton")->click();
    QVERIFY(!map->isRendered());
    QVERIFY(home.wait());
}

void TestResultsScreen::buttonsFollowTheSelection()
{
    auto form = scanned();
    QVERIFY(form);
    auto* explore = child<QToolButton>(form.get(), "explorerGeneralButton");
    QVERIFY(explore->isEnabled());
    SKIP_UNLESS_HAND_OFFS_ARE_CAUGHT();
    explore->click();
    QCOMPARE(opened.urls, QList<QUrl>{QUrl::fromLocalFile(dir.path())});

    auto* tree = child<QTreeView>(form.get(), "treeView");
    tree->selectionModel()->clearSelection();
    QVERIFY(!explore->isEnabled());
    opened.urls.clear();
    explore->click();
    QVERIFY(opened.urls.isEmpty());

    // With nothing selected the other buttons do nothing.
    child<QTreeView>(form.get(), "biggestFileTreeView")->selectionModel()->clearSelection();
    child<QToolButton>(form.get(), "openFileBiggestButton")->click();
    child<QToolButton>(form.get(), "explorerBiggestButton")->click();
    QTest::qWait(100);
    QVERIFY(opened.urls.isEmpty());
    QVERIFY(opener.given().isEmpty());
}

void TestResultsScreen::backReleasesAndReturnsHome()
{
    auto form = scanned();
    QVERIFY(form);
    QSignalSpy start(form.get(), &DiskUsageScanProgressForm::clearRAMStart);
    QSignalSpy finish(form.get(), &DiskUsageScanProgressForm::clearRAMFinish);
    QSignalSpy home(form.get(), &DiskUsageScanProgressForm::backToMain);
    int maximum = 0;
    connect(form.get(), &DiskUsageScanProgressForm::clearRAMStart, this, [&] {
        auto* panel = form->findChild<DiskUsageScanInfoForm*>();
        maximum = child<QProgressBar>(panel, "progressBar")->maximum();
        QVERIFY(!child<QPushButton>(panel, "pushButton")->isEnabled());
    });
    auto* back = child<QToolButton>(form.get(), "backButton");
    back->click();
    back->click(); // a second press starts nothing more
    QVERIFY(home.wait());
    QCOMPARE(maximum, 1);
    QCOMPARE(start.count(), 1);
    QCOMPARE(finish.count(), 1);
    QTest::qWait(50);
    QCOMPARE(home.count(), 1);
    QVERIFY(!child<QWidget>(form.get(), "tabWidget")->isVisible());
}

namespace {

void selectEveryRow(QItemSelectionModel* selection, const QModelIndex& parent = {})
{
    const QAbstractItemModel* model = selection->model();
    for (int row = 0; row < model->rowCount(parent); ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        selection->select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        selectEveryRow(selection, index);
    }
}

} // namespace

// Back with everything selected, again and again: the views let go of the
// models before the tree is freed on a thread of its own.
void TestResultsScreen::backWithEveryRowSelectedAgainAndAgain()
{
    for (int round = 0; round < 30; ++round) {
        auto form = scanned();
        QVERIFY(form);
        for (QTreeView* view : form->findChildren<QTreeView*>())
            selectEveryRow(view->selectionModel());
        QSignalSpy home(form.get(), &DiskUsageScanProgressForm::backToMain);
        child<QToolButton>(form.get(), "backButton")->click();
        for (QTreeView* view : form->findChildren<QTreeView*>())
            QVERIFY(!view->model());
        QVERIFY(home.wait());
    }
}

void TestResultsScreen::cancelDuringAScanReturnsHome()
{
    DiskUsageScanProgressForm form;
    form.show();
    QSignalSpy finished(&form, &DiskUsageScanProgressForm::scanFinish);
    QSignalSpy released(&form, &DiskUsageScanProgressForm::clearRAMStart);
    QSignalSpy home(&form, &DiskUsageScanProgressForm::backToMain);
    int completed = 0;
    connect(&form, &DiskUsageScanProgressForm::scanCompleted, this, [&] { ++completed; });
    form.startScanning(ScanRequest::of(dir.path(), Settings::defaults()));
    auto* cancel = child<QPushButton>(form.findChild<DiskUsageScanInfoForm*>(), "pushButton");
    cancel->click();
    cancel->click();
    QVERIFY(home.wait());
    QCOMPARE(finished.count(), 1);
    QCOMPARE(completed, 0); // a cancelled scan is not one to keep
    QCOMPARE(released.count(), 1);
    QVERIFY(!child<QWidget>(&form, "tabWidget")->isVisible());
    QVERIFY(!child<QTreeView>(&form, "treeView")->model());
}

// Once, as the scan ends: the results changed by a refresh are not a new scan.
void TestResultsScreen::aWholeScanIsOfferedForKeepingOnce()
{
    DiskUsageScanProgressForm form;
    form.resize(986, 513);
    form.show();
    QList<ScanResult> offered;
    connect(&form, &DiskUsageScanProgressForm::scanCompleted, this,
            [&](const ScanResult& scan) { offered << scan; });
    QSignalSpy finished(&form, &DiskUsageScanProgressForm::scanFinish);
    form.startScanning(ScanRequest::of(dir.path(), Settings::defaults()));
    QVERIFY(finished.wait(20000));
    QCOMPARE(offered.size(), 1);
    const ScanResult& scan = offered.first();
    QVERIFY(scan.isLive() && scan.scannedAt.isValid() && scan.tree);
    QCOMPARE(scan.tree->rootPath(), QDir::toNativeSeparators(dir.path()));
    QVERIFY(scan.totalFiles >= 16);
    auto* changes = form.findChild<ResultChanges*>();
    QCOMPARE(changes->scan().tree, scan.tree);

    makeFile("late.bin", 4242);
    // Triggered, not pressed: a key's modifier would outlast the test.
    QAction* refreshAll = nullptr;
    for (QAction* action : child<QTreeView>(&form, "treeView")->actions())
        if (action->text() == QStringLiteral("Refresh All"))
            refreshAll = action;
    QVERIFY(refreshAll && refreshAll->isEnabled());
    QSignalSpy changed(changes, &ResultChanges::finished);
    refreshAll->trigger();
    QVERIFY(changed.wait(20000));
    QVERIFY(changes->scan().tree->locate(dir.filePath("late.bin")) != ScanTree::none);
    QCOMPARE(offered.size(), 1);
    QVERIFY(QFile::remove(dir.filePath("late.bin")));
}

void TestResultsScreen::filesDeletedAfterTheScan()
{
    SKIP_UNLESS_HAND_OFFS_ARE_CAUGHT();
    auto form = scanned();
    QVERIFY(form);
    QVERIFY(QFile::rename(dir.filePath("big.iso"), dir.filePath("moved.iso")));
    auto* view = child<QTreeView>(form.get(), "biggestFileTreeView");
    view->setCurrentIndex(view->model()->index(0, 0));
    child<QToolButton>(form.get(), "explorerBiggestButton")->click();
    // Handed over all the same; the opener's "not there" is said.
    QString text;
    answerNextMessage(QMessageBox::Ok, nullptr, &text);
    opener.setStatus(2);
    child<QToolButton>(form.get(), "openFileBiggestButton")->click();
    QTRY_VERIFY(text.endsWith(QStringLiteral("The file is not there any more.")));
    opener.setStatus(0);
    QCOMPARE(opener.given().size(), 1);
    QCOMPARE(opened.urls.size(), 1);
    QVERIFY(QFile::rename(dir.filePath("moved.iso"), dir.filePath("big.iso")));
}

void TestResultsScreen::aFileNothingOpensSaysSo()
{
    SKIP_UNLESS_HAND_OFFS_ARE_CAUGHT();
    auto form = scanned();
    QVERIFY(form);
    auto* view = child<QTreeView>(form.get(), "biggestFileTreeView");
    view->setCurrentIndex(view->model()->index(0, 0));
    // No handler of our own, and no opener the desktop could start.
    QDesktopServices::unsetUrlHandler("file");
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    QString title;
    QString text;
    answerNextMessage(QMessageBox::Ok, &title, &text);
    child<QToolButton>(form.get(), "openFileBiggestButton")->click();
    qputenv("PATH", path);
    QDesktopServices::setUrlHandler("file", &opened, "open");
    QCOMPARE(title, QStringLiteral("Could not open"));
    const QString shown = QDir::toNativeSeparators(dir.filePath("big.iso"));
    QVERIFY(text.startsWith(shown));

    // An opener that finds no program for the file ("no method available").
    title.clear();
    answerNextMessage(QMessageBox::Ok, &title, &text);
    opener.setStatus(3);
    child<QToolButton>(form.get(), "openFileBiggestButton")->click();
    QTRY_COMPARE(title, QStringLiteral("Could not open"));
    opener.setStatus(0);
    QCOMPARE(text, shown + QStringLiteral("\n\ncould not be opened. No program on this system "
                                          "opens files of this type."));
    QCOMPARE(opener.given().size(), 1);
}

void TestResultsScreen::unreadableFoldersAreCounted()
{
    QVERIFY(!child<QLabel>(scanned().get(), "unreadableLabel")->isVisible());
    const QString locked = dir.filePath("locked");
    QVERIFY(QDir().mkpath(locked + "/inside"));
    QFile::setPermissions(locked, {});
    const bool readable = QDir(locked).exists("inside");
    auto form = readable ? nullptr : scanned();
    QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QVERIFY(QDir(locked).removeRecursively());
    if (readable)
        QSKIP("this user reads every folder (root); tests/scan/parity.sh counts one as nobody");
    auto* label = child<QLabel>(form.get(), "unreadableLabel");
    QVERIFY(label->isVisible());
    QCOMPARE(label->text(), QStringLiteral("1 folder could not be read"));
    QCOMPARE(label->toolTip(), QDir::toNativeSeparators(locked));
}

void TestResultsScreen::aVolumeRootIsAddedUp()
{
    QVERIFY(!child<QLabel>(scanned().get(), "volumeSummaryLabel")->isVisible());
    // A small file system of its own on Linux; on Windows every root is a drive.
    const QString root = QSysInfo::kernelType() == QLatin1String("winnt") ? QString() : "/dev";
    if (root.isEmpty() || !platform::volumeRootedAt(root.toStdWString()))
        QSKIP("no small volume root to scan here");
    DiskUsageScanProgressForm form;
    form.show();
    QSignalSpy finished(&form, &DiskUsageScanProgressForm::scanFinish);
    form.startScanning(ScanRequest::of(root, Settings::defaults()));
    QVERIFY(finished.wait(20000));
    auto* line = child<QLabel>(&form, "volumeSummaryLabel");
    QVERIFY(line->isVisible());
    QVERIFY(line->text().startsWith("Volume: "));
}

void TestResultsScreen::detailsDialogSorting()
{
    QList<DiskUsageGlobal::TMainDataFile> files{{"b.txt", "2.00 KB", "", "/x", 2048, 101},
                                                {"a.txt", "1.00 KB", "", "/", 1024, 100},
                                                {"c.txt", "3.00 KB", "", "/x/y", 3072, 102}};
    ResultDetailsDialog dialog(files, nullptr);
    auto* view = child<QTreeView>(&dialog, "dataFilesTreeView");
    const auto names = [view] {
        QStringList list;
        for (int row = 0; row < view->model()->rowCount(); ++row)
            list << view->model()->index(row, 0).data().toString();
        return list;
    };
    QCOMPARE(names(), (QStringList{"c.txt", "b.txt", "a.txt"}));
    const auto clickHeader = [view](int section) { emit view->header()->sectionClicked(section); };
    clickHeader(1);
    const QStringList first = names();
    clickHeader(1);
    QCOMPARE(names(), QStringList(first.rbegin(), first.rend()));
    clickHeader(0);
    QVERIFY(names() == (QStringList{"a.txt", "b.txt", "c.txt"}) ||
            names() == (QStringList{"c.txt", "b.txt", "a.txt"}));

    ResultDetailsDialog empty({}, nullptr);
    QVERIFY(!child<QToolButton>(&empty, "explorerButton")->isEnabled());
    QVERIFY(!child<QToolButton>(&empty, "openFileButton")->isEnabled());

    // The root folder takes no second separator; other folders get one.
    SKIP_UNLESS_HAND_OFFS_ARE_CAUGHT();
    view->setCurrentIndex(view->model()->index(names().indexOf("a.txt"), 0));
    opened.urls.clear();
    child<QToolButton>(&dialog, "explorerButton")->click();
    QCOMPARE(opened.urls, QList<QUrl>{QUrl::fromLocalFile("/")});
}

// Names are data, never text read back: the longest name a file system
// allows, made of what a child summary is made of, shows at once and whole,
// and a file is never taken for a folder of another size.
void TestResultsScreen::namesMadeOfSummaryMarksShowAsTheyAre()
{
    if (QSysInfo::kernelType() == QLatin1String("winnt"))
        QSKIP("Windows names cannot hold ':'");
    const QString trap = "a" + QString(":0:0;a").repeated(42); // 253 bytes
    const QString liar = QStringLiteral("x:999999999999:1;y");
    makeFile("marks/" + trap, 9'000'000);
    makeFile("marks/" + liar, 5'000'000);
    auto form = scanned();
    QDir(dir.filePath("marks")).removeRecursively();
    QVERIFY(form);
    auto* tree = child<QTreeView>(form.get(), "treeView");
    const QModelIndex marks = tree->model()->index(0, 0, tree->model()->index(0, 0));
    QCOMPARE(marks.data().toString(), QStringLiteral("marks"));
    tree->setCurrentIndex(marks);
    QCOMPARE(visibleLegendNames(form.get()),
             (QStringList{"marks", LegendWidget::shortenedName(trap), liar}));
    bool liarsSizeShown = false;
    for (QLabel* label : child<QWidget>(form.get(), "maxItemWidget")->findChildren<QLabel*>())
        liarsSizeShown |= label->isVisible() && label->text() == QStringLiteral("4.77 MB");
    QVERIFY(liarsSizeShown);

    auto* map = child<TreemapView>(form.get(), "treemapView");
    QSignalSpy rendered(map, &TreemapView::rendered);
    child<QTabWidget>(form.get(), "tabWidget")->setCurrentIndex(3);
    QVERIFY(rendered.wait());
    const ScanTree& scan = *qobject_cast<const FolderTreeModel*>(tree->model())->tree();
    for (const QString& name : {trap, liar}) {
        const ScanTree::Index file = scan.locate(dir.filePath("marks/" + name));
        QTRY_VERIFY(!map->rectOf(file).isEmpty());
        const QPoint onFile = map->rectOf(file).center().toPoint();
        QHelpEvent hover(QEvent::ToolTip, onFile, map->mapToGlobal(onFile));
        QApplication::sendEvent(map, &hover);
        QVERIFY(QToolTip::text().startsWith(
            QDir::toNativeSeparators(dir.filePath("marks/" + name)) + "\nSize: "));
    }
}

// A click on a file's tile chooses its folder in the tree and the file where
// it is listed; a file chosen in the list is outlined. The legend tells what
// the colours mean, by type or by folder, and the choice is kept.
void TestResultsScreen::theMapShowsEveryFile()
{
    auto form = scanned();
    QVERIFY(form);
    auto* map = child<TreemapView>(form.get(), "treemapView");
    QSignalSpy rendered(map, &TreemapView::rendered);
    child<QTabWidget>(form.get(), "tabWidget")->setCurrentIndex(3);
    QVERIFY(rendered.wait());
    auto* tree = child<QTreeView>(form.get(), "treeView");
    const ScanTree& scan = *qobject_cast<const FolderTreeModel*>(tree->model())->tree();
    const ScanTree::Index song = scan.locate(dir.filePath("music/song.mp3"));
    QTRY_VERIFY(!map->rectOf(song).isEmpty());
    QVERIFY(map->rectOf(song) != map->rectOf(scan.node(song).parent));

    const QPoint onSong = map->rectOf(song).center().toPoint();
    QHelpEvent hover(QEvent::ToolTip, onSong, map->mapToGlobal(onSong));
    QApplication::sendEvent(map, &hover);
    QVERIFY(QToolTip::text().contains("\nType: Audio Files\nLast access: "));
    QTest::mouseClick(map, Qt::LeftButton, {}, onSong);
    QCOMPARE(FolderTreeModel::nodeOf(tree->currentIndex()), scan.node(song).parent);
    auto* biggest = child<BiggestFilesView>(form.get(), "biggestFileTreeView");
    QCOMPARE(QDir::fromNativeSeparators(biggest->selectedFilePath()),
             dir.filePath("music/song.mp3"));
    QCOMPARE(child<DataFilesView>(form.get(), "dataFilesTreeView")->selectedName(),
             QStringLiteral("Audio Files"));
    QCOMPARE(map->highlightedNode(), song);
    // The map's actions are for the file clicked, not its folder.
    form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(form.get()));
    map->setFocus();
    QTest::keySequence(map, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QDir::toNativeSeparators(dir.filePath("music/song.mp3")));
    // A click on a folder chooses it again, though the tree had it chosen.
    const QPoint onFolder = map->rectOf(scan.node(song).parent).topLeft().toPoint() + QPoint(1, 1);
    QTest::mouseClick(map, Qt::RightButton, {}, onFolder);
    QCOMPARE(map->highlightedNode(), scan.node(song).parent);
    QTest::mouseClick(map, Qt::LeftButton, {}, onSong);

    biggest->selectPath(QDir::toNativeSeparators(dir.filePath("docs/a12.txt")));
    QCOMPARE(map->highlightedNode(), scan.locate(dir.filePath("docs/a12.txt")));
    // Outlined from the list, not clicked: the map's actions act on nothing.
    QCOMPARE(map->chosenNode(), ScanTree::none);

    auto* legend = child<MapLegend>(form.get(), "mapLegend");
    QTRY_VERIFY(!legend->entries().empty());
    const auto named = [legend](const QString& name) {
        for (const MapLegend::Entry& entry : legend->entries()) {
            if (entry.name == name)
                return entry;
        }
        return MapLegend::Entry{};
    };
    // big.iso is most of the scan's bytes, song.mp3 a twentieth.
    QCOMPARE(legend->entries().front().name, QStringLiteral("Disk Image Files"));
    QCOMPARE(legend->entries().front().colour, TreemapPainter::categoryColour(4));
    QVERIFY(legend->entries().front().share.value_or(0) > 90);
    QCOMPARE(named("Audio Files").colour, TreemapPainter::categoryColour(1));
    QVERIFY(named("Audio Files").share.value_or(0) > 5 && named("Audio Files").share < 6);
    QCOMPARE(legend->entries().back().name, QStringLiteral("Other files"));

    auto* colouring = child<QComboBox>(form.get(), "mapColourBox");
    colouring->setCurrentIndex(1);
    QVERIFY(rendered.wait());
    QCOMPARE(map->colouring(), TreemapPainter::Colouring::ByFolder);
    QCOMPARE(legend->entries().front().name, QStringLiteral("music"));
    auto again = scanned();
    QVERIFY(again);
    QCOMPARE(child<QComboBox>(again.get(), "mapColourBox")->currentIndex(), 1);
    QCOMPARE(child<TreemapView>(again.get(), "treemapView")->colouring(),
             TreemapPainter::Colouring::ByFolder);
    colouring->setCurrentIndex(0);
}

void TestResultsScreen::deepNamesStayWhole()
{
    QTemporaryDir deep;
    QString path = deep.path();
    for (int level = 1; level <= 9; ++level)
        path += QStringLiteral("/level %1 of the folders").arg(level);
    QVERIFY(writeSizedFile(path + "/file", 10));
    auto form = scanned(deep.path());
    QVERIFY(form);
    auto* tree = child<QTreeView>(form.get(), "treeView");
    QModelIndex folder = tree->model()->index(0, 0);
    while (tree->model()->rowCount(folder) > 0) {
        folder = tree->model()->index(0, 0, folder);
        tree->expand(folder.parent());
    }
    // The deepest name fits its cell beside the icon, and the tooltip holds
    // the whole path.
    const QString name = folder.data().toString();
    QCOMPARE(name, QStringLiteral("level 9 of the folders"));
    const int needed = tree->fontMetrics().horizontalAdvance(name) + 16;
    QVERIFY2(tree->visualRect(folder).width() >= needed,
             qPrintable(QString::number(tree->visualRect(folder).width())));
    QCOMPARE(folder.data(Qt::ToolTipRole).toString(), QDir::toNativeSeparators(path));
}

void TestResultsScreen::longPathsReachTheFileManager()
{
    QTemporaryDir deep;
    QString path = deep.path();
    for (int level = 1; path.size() < 320; ++level)
        path += QStringLiteral("/a folder far below the others %1").arg(level);
    QVERIFY(QDir().mkpath(path));
    const QString native = QDir::toNativeSeparators(path);
    const QString given = platform::fileManagerPath(native);
    if (QSysInfo::kernelType() != QLatin1String("winnt")) {
        QCOMPARE(given, native);
        return;
    }
    // Explorer takes it: shorter than MAX_PATH, and a folder there.
    QVERIFY2(given.size() < 260, qPrintable(given));
    QVERIFY(QFileInfo(given).isDir());
}

namespace {

// Opaque pixels that stand out from the colour behind them: the ink of a text
// or an icon, as its mean lightness.
int inkLightness(const QImage& image, const QColor& behind, int* count)
{
    qint64 sum = 0;
    *count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const int distance = std::abs(pixel.red() - behind.red()) +
                                 std::abs(pixel.green() - behind.green()) +
                                 std::abs(pixel.blue() - behind.blue());
            if (pixel.alpha() > 128 && distance > 150) {
                sum += pixel.lightness();
                ++*count;
            }
        }
    }
    return *count > 0 ? int(sum / *count) : -1;
}

} // namespace

void TestResultsScreen::textsAndIconsReadInLightAndDarkPalettes_data()
{
    QTest::addColumn<QPalette>("palette");
    const std::unique_ptr<QStyle> fusion(QStyleFactory::create("Fusion"));
    QTest::newRow("light") << fusion->standardPalette();
    QTest::newRow("dark") << Appearance::darkPalette();
}

void TestResultsScreen::textsAndIconsReadInLightAndDarkPalettes()
{
    QFETCH(QPalette, palette);
    const QPalette before = QApplication::palette();
    QApplication::setPalette(palette);
    PaletteIcons icons;
    qApp->installEventFilter(&icons);
    auto form = scanned();
    qApp->removeEventFilter(&icons);
    QApplication::setPalette(before);
    QVERIFY(form);
    const bool dark = PaletteIcons::isDark(palette);

    // The size text on the root's full bar is dark in both (unselected: a
    // selected row shows the palette's own highlight instead).
    auto* tree = child<QTreeView>(form.get(), "treeView");
    tree->selectionModel()->clear();
    const QModelIndex size = tree->model()->index(0, 0).siblingAtColumn(FolderColumn::SizeText);
    const QImage cell = tree->viewport()->grab(tree->visualRect(size)).toImage();
    int inked = 0;
    QVERIFY(inkLightness(cell, Qt::yellow, &inked) < 100);
    QVERIFY(inked > 10);

    // The Back arrow's ink stands out from the window behind it.
    auto* back = child<QToolButton>(form.get(), "backButton");
    const QImage arrow = back->icon().pixmap(back->iconSize()).toImage();
    const int arrowInk = inkLightness(arrow, palette.color(QPalette::Window), &inked);
    QVERIFY(inked > 10);
    QVERIFY(dark ? arrowInk > 160 : arrowInk < 100);
}

QTEST_MAIN(TestResultsScreen)
#include "tst_resultsscreen.moc"
