#include "ChangeReference.h"
#include "IsolatedSettings.h"
#include "NextModal.h"
#include "ScanSupport.h"
#include "TestSupport.h"
#include "results/Columns.h"
#include "results/CompareDialog.h"
#include "results/DiskUsageScanProgressForm.h"
#include "results/FolderTreeModel.h"
#include "results/FolderTreeView.h"
#include "results/LegendWidget.h"
#include "results/MapLegend.h"
#include "results/ResultChanges.h"
#include "results/ScanComparer.h"
#include "results/TreemapView.h"
#include "scan/DiskUsageGlobal.h"
#include "scan/ScanFile.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

using Status = ScanComparison::Status;

// The results screen compared with an older scan of its folder, read from a
// file: the Change column of every folder as a difference of the two scans'
// JSON says, the legend, the map's colours, the order by growth, a file of
// another folder refused, a refresh followed, and back to the scan alone.
class TestResultsCompare : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void everyFolderShowsItsChange();
    void theLegendTellsWhatGrewMost();
    void theMapIsColouredByChange();
    void aClickOnTheChangeHeaderPutsWhatGrewMostFirst();
    void aScanOfAnotherFolderOrNoScanIsRefused();
    void theComparisonFollowsARefresh();
    void stoppingGoesBackToTheScanAlone();
    void theDialogListsTheKeptScans();

private:
    [[nodiscard]] QString root() const { return dir.filePath(QStringLiteral("tree")); }
    void makeFile(const QString& relative, qint64 size)
    {
        QVERIFY(writeSizedFile(root() + '/' + relative, size));
    }
    // The older scan kept in a file, then the tree changed and shown.
    void scanChangedTree();
    void compareWith(const QString& file);
    void checkEveryFolder(const QModelIndex& folder, const QString& path,
                          const QMap<QString, ChangeReference::Change>& expected, int* rows);
    [[nodiscard]] QMap<QString, ChangeReference::Change> expectedChanges() const;
    [[nodiscard]] QStringList legendRows() const;
    [[nodiscard]] QColor mapColourOf(const QString& relative, bool frame = false) const;
    [[nodiscard]] QStringList rootRows() const;

    template <typename T> [[nodiscard]] T* child(const char* name) const
    {
        return form->findChild<T*>(QString::fromLatin1(name));
    }
    [[nodiscard]] FolderTreeView* tree() const { return form->findChild<FolderTreeView*>(); }
    [[nodiscard]] FolderTreeModel* model() const
    {
        return qobject_cast<FolderTreeModel*>(tree()->model());
    }
    [[nodiscard]] ScanComparer* comparer() const { return form->findChild<ScanComparer*>(); }
    [[nodiscard]] const ScanResult& shown() const
    {
        return form->findChild<ResultChanges*>()->scan();
    }

    IsolatedSettings isolated;
    QTemporaryDir dir;
    QTemporaryDir data; // XDG_DATA_HOME, where kept scans would be
    QByteArray olderJson;
    QString olderFile;
    std::unique_ptr<DiskUsageScanProgressForm> form;
};

void TestResultsCompare::initTestCase()
{
    QVERIFY(dir.isValid() && data.isValid());
    qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
}

void TestResultsCompare::init()
{
    QDir(root()).removeRecursively();
    olderFile = dir.filePath(QStringLiteral("older.json.gz"));
}

void TestResultsCompare::cleanup()
{
    form.reset();
}

// docs grows, music shrinks, photos is renamed pictures (new), keep stays.
void TestResultsCompare::scanChangedTree()
{
    makeFile("big.iso", 5'000'000);
    for (int i = 1; i <= 5; ++i)
        makeFile(QStringLiteral("docs/a%1.txt").arg(i), i * 1000);
    makeFile("docs/old/x.pdf", 7000);
    makeFile("music/song.mp3", 300'000);
    makeFile("music/other.mp3", 200'000);
    makeFile("photos/p1.jpg", 400'000);
    makeFile("photos/p2.jpg", 500'000);
    makeFile("keep/same.bin", 100'000);
    const ScanResult older = scanOf(root());
    olderJson = jsonOf(root(), older);
    QVERIFY(ScanFile::write(olderFile, older, true));

    makeFile("docs/a1.txt", 91'000);
    makeFile("docs/new.txt", 33'000);
    QVERIFY(QDir(root() + "/docs/old").removeRecursively());
    QVERIFY(QFile::rename(root() + "/big.iso", root() + "/docs/big.iso"));
    QVERIFY(QFile::remove(root() + "/music/other.mp3"));
    QVERIFY(QDir().rename(root() + "/photos", root() + "/pictures"));
    makeFile("small.txt", 10);

    form = std::make_unique<DiskUsageScanProgressForm>();
    form->resize(986, 513);
    form->show();
    QSignalSpy finished(form.get(), &DiskUsageScanProgressForm::scanFinish);
    form->startScanning(ScanRequest::of(root(), Settings::defaults()));
    QVERIFY(finished.wait(20000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Through the button, the dialog and its "Other File..." picker, as a user would.
void TestResultsCompare::compareWith(const QString& file)
{
    onNextModal([file](QWidget* modal) {
        auto* dialog = qobject_cast<CompareDialog*>(modal);
        QVERIFY(dialog);
        onNextModal(
            [file](QWidget* picker) { chooseFolder(qobject_cast<QFileDialog*>(picker), file); });
        dialog->findChild<QPushButton*>(QStringLiteral("otherFileButton"))->click();
    });
    child<QToolButton>("compareButton")->click();
}

QMap<QString, ChangeReference::Change> TestResultsCompare::expectedChanges() const
{
    return ChangeReference::changes(ChangeReference::entriesOf(olderJson),
                                    ChangeReference::entriesOf(jsonOf(root(), shown())));
}

// Every folder row, opened or not, by the names of the rows above it.
void TestResultsCompare::checkEveryFolder(const QModelIndex& folder, const QString& path,
                                          const QMap<QString, ChangeReference::Change>& expected,
                                          int* rows)
{
    ++*rows;
    const QModelIndex change = folder.siblingAtColumn(FolderColumn::Change);
    static const char* const words[] = {"same", "grown", "shrunk", "new"};
    const QString shownChange =
        QStringLiteral("%1: %2 %3 %4")
            .arg(path)
            .arg(change.data(FolderTreeModel::ChangeBytesRole).toLongLong())
            .arg(change.data(FolderTreeModel::ChangeFilesRole).toLongLong())
            .arg(words[change.data(FolderTreeModel::ChangeStatusRole).toInt()]);
    const ChangeReference::Change& wanted = expected[path];
    QCOMPARE(shownChange, QStringLiteral("%1: %2 %3 %4")
                              .arg(path)
                              .arg(wanted.bytes)
                              .arg(wanted.files)
                              .arg(wanted.status));
    const QString text = change.data().toString();
    QCOMPARE(text, wanted.status == "new"
                       ? QStringLiteral("new")
                       : ScanComparison::changeText({wanted.bytes, wanted.files, Status::Same}));
    const QAbstractItemModel* rowsOf = folder.model();
    for (int row = 0; row < rowsOf->rowCount(folder); ++row) {
        const QModelIndex below = rowsOf->index(row, 0, folder);
        checkEveryFolder(below, ChangeReference::joined(path, below.data().toString()), expected,
                         rows);
    }
}

void TestResultsCompare::everyFolderShowsItsChange()
{
    scanChangedTree();
    QVERIFY(tree()->isColumnHidden(FolderColumn::Change));
    QVERIFY(!child<QAction>("stopComparingAction")->isEnabled());
    QSignalSpy compared(comparer(), &ScanComparer::compared);
    compareWith(olderFile);
    QVERIFY(compared.wait(20000));
    QVERIFY(!tree()->isColumnHidden(FolderColumn::Change));
    QVERIFY(child<QAction>("stopComparingAction")->isEnabled());
    QVERIFY(child<QLabel>("compareLabel")->text().startsWith("Since "));

    const QMap<QString, ChangeReference::Change> expected = expectedChanges();
    int rows = 0;
    checkEveryFolder(model()->index(0, 0), QString(), expected, &rows);
    int folders = 0;
    for (const ChangeReference::Entry& entry : ChangeReference::entriesOf(jsonOf(root(), shown())))
        folders += entry.folder ? 1 : 0;
    QCOMPARE(rows, folders);
    QCOMPARE(expected["pictures"].status, QStringLiteral("new"));
    QCOMPARE(expected["music"].status, QStringLiteral("shrunk"));

    // What went is named where it went from.
    const QString rootTip =
        model()->index(0, FolderColumn::Change).data(Qt::ToolTipRole).toString();
    QVERIFY2(rootTip.contains("\n  photos/  \u2212878.91 KB, \u22122 files"), qPrintable(rootTip));
    QVERIFY2(rootTip.contains("\n  big.iso  \u22124.77 MB, \u22121 file"), qPrintable(rootTip));
}

// The legend's rows top to bottom, each as its texts left to right.
QStringList TestResultsCompare::legendRows() const
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QMap<int, QMap<int, QString>> byPlace;
    for (QLabel* label : child<LegendWidget>("maxItemWidget")->findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty())
            byPlace[label->y()][label->x()] = label->text();
    }
    QStringList rows;
    for (const QMap<int, QString>& row : byPlace)
        rows << QStringList(row.values()).join(" | ");
    return rows;
}

void TestResultsCompare::theLegendTellsWhatGrewMost()
{
    scanChangedTree();
    const QStringList sizes = legendRows();
    QSignalSpy compared(comparer(), &ScanComparer::compared);
    compareWith(olderFile);
    QVERIFY(compared.wait(20000));
    tree()->setCurrentIndex(model()->index(0, 0));
    // The root: docs and pictures grew, and a small file came; big.iso went
    // into docs and music shrank: the rest.
    const QMap<QString, ChangeReference::Change> expected = expectedChanges();
    const auto text = [](qint64 bytes, qint64 files) {
        return ScanComparison::changeText({bytes, files, Status::Same});
    };
    const qint64 listed =
        expected["docs"].bytes + expected["pictures"].bytes + expected["small.txt"].bytes;
    QCOMPARE(legendRows(),
             (QStringList{"tree | " + text(expected[""].bytes, expected[""].files),
                          "docs | " + text(expected["docs"].bytes, 0),
                          "pictures (new) | " + text(expected["pictures"].bytes, 0),
                          "small.txt (new) | " + text(expected["small.txt"].bytes, 0),
                          "Other Changes | " + text(expected[""].bytes - listed, 0)}));
    QVERIFY(legendRows() != sizes);

    // A folder where nothing grew says so.
    tree()->setCurrentIndex(model()->indexOf(shown().tree->locate(root() + "/music")));
    QCOMPARE(legendRows(), (QStringList{"music | " + text(-200'000, -1), "Nothing in it grew",
                                        "Other Changes | " + text(-200'000, 0)}));
}

// The colour in the middle of an entry's tile, or with `frame` on the edge of
// a folder's.
QColor TestResultsCompare::mapColourOf(const QString& relative, bool frame) const
{
    auto* map = child<TreemapView>("treemapView");
    const QRectF rect = map->rectOf(shown().tree->locate(root() + '/' + relative));
    if (rect.isEmpty())
        return {};
    const QPointF at = frame ? rect.topLeft() + QPointF(1, rect.height() / 2) : rect.center();
    return map->grab().toImage().pixelColor(at.toPoint());
}

void TestResultsCompare::theMapIsColouredByChange()
{
    scanChangedTree();
    auto* map = child<TreemapView>("treemapView");
    QSignalSpy rendered(map, &TreemapView::rendered);
    child<QTabWidget>("tabWidget")->setCurrentWidget(child<QWidget>("mapTab"));
    QVERIFY(rendered.wait(20000));
    QVERIFY(!map->showsChanges());
    const QColor docsBefore = mapColourOf("docs/a1.txt");
    QVERIFY(docsBefore.isValid());

    QSignalSpy compared(comparer(), &ScanComparer::compared);
    compareWith(olderFile);
    QVERIFY(compared.wait(20000));
    QVERIFY(map->showsChanges());
    // A picture begun before the comparison came may still arrive: waited
    // for is the one in the colours of change.
    // Each file by its own change; a folder's frame by the folder's.
    QTRY_VERIFY_WITH_TIMEOUT(mapColourOf("docs/a1.txt") != docsBefore, 20000);
    const QColor grown = mapColourOf("docs/a1.txt");
    const QColor fresh = mapColourOf("pictures/p2.jpg");
    const QColor shrunk = mapColourOf("music", true);
    const QColor same = mapColourOf("music/song.mp3");
    const auto named = [](const QColor& colour) { return qPrintable(colour.name()); };
    QVERIFY2(grown != docsBefore, named(grown));
    QVERIFY2(grown.red() > grown.green() + 40 && grown.red() > grown.blue() + 40, named(grown));
    QVERIFY2(fresh.red() > fresh.green() + 100, named(fresh));
    QVERIFY2(fresh.hsvSaturation() > grown.hsvSaturation(), named(fresh));
    QVERIFY2(shrunk.green() > shrunk.red() + 40, named(shrunk));
    QVERIFY2(qAbs(same.red() - same.green()) < 10 && qAbs(same.green() - same.blue()) < 10,
             named(same));
    // The legend tells the colours of change, and the types again after.
    const auto legendNames = [this] {
        QStringList names;
        for (const MapLegend::Entry& entry : child<MapLegend>("mapLegend")->entries())
            names << entry.name;
        return names;
    };
    QCOMPARE(legendNames(), (QStringList{"Grown", "Shrunk", "New", "Unchanged"}));
    QCOMPARE(child<MapLegend>("mapLegend")->entries().front().colour,
             TreemapPainter::tintColour(TreemapLayout::Tint::Grown));
    QVERIFY(!child<MapLegend>("mapLegend")->entries().front().share); // no share of the scan

    child<QAction>("stopComparingAction")->trigger();
    QVERIFY(!map->showsChanges());
    QVERIFY(!legendNames().contains("Grown"));
    QTRY_COMPARE_WITH_TIMEOUT(mapColourOf("docs/a1.txt"), docsBefore, 20000);
}

QStringList TestResultsCompare::rootRows() const
{
    QStringList names;
    const QModelIndex top = model()->index(0, 0);
    for (int row = 0; row < model()->rowCount(top); ++row)
        names << model()->index(row, 0, top).data().toString();
    return names;
}

void TestResultsCompare::aClickOnTheChangeHeaderPutsWhatGrewMostFirst()
{
    scanChangedTree();
    const QStringList bySize{"docs", "pictures", "music", "keep"};
    QCOMPARE(rootRows(), bySize);
    emit tree()->header()->sectionClicked(FolderColumn::Change);
    QCOMPARE(rootRows(), bySize);

    QSignalSpy compared(comparer(), &ScanComparer::compared);
    compareWith(olderFile);
    QVERIFY(compared.wait(20000));
    QCOMPARE(rootRows(), bySize);
    const QModelIndex docs = model()->index(0, 0, model()->index(0, 0));
    tree()->setCurrentIndex(docs);
    emit tree()->header()->sectionClicked(FolderColumn::Change);
    QCOMPARE(rootRows(), (QStringList{"docs", "pictures", "keep", "music"}));
    QVERIFY(tree()->header()->isSortIndicatorShown());
    // The user's place stays.
    QCOMPARE(FolderTreeModel::nodeOf(tree()->currentIndex()), FolderTreeModel::nodeOf(docs));
    emit tree()->header()->sectionClicked(FolderColumn::SizeText);
    QCOMPARE(rootRows(), bySize);
    QVERIFY(!tree()->header()->isSortIndicatorShown());
}

void TestResultsCompare::aScanOfAnotherFolderOrNoScanIsRefused()
{
    scanChangedTree();
    const QString other = dir.filePath(QStringLiteral("other"));
    QVERIFY(writeSizedFile(other + "/file", 5));
    const QString otherFile = dir.filePath(QStringLiteral("other.json"));
    QVERIFY(ScanFile::write(otherFile, scanOf(other), false));
    const QString notAScan = dir.filePath(QStringLiteral("notes.json"));
    QFile notes(notAScan);
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("hello\n") > 0);
    notes.close();

    const QStringList files{otherFile, notAScan};
    const QStringList said{
        QStringLiteral("%1 is a scan of %2, not of %3, the folder shown here.")
            .arg(QDir::toNativeSeparators(otherFile), QDir::toNativeSeparators(other),
                 QDir::toNativeSeparators(root())),
        QStringLiteral("%1 is not a Tallyroot scan.").arg(QDir::toNativeSeparators(notAScan))};
    for (qsizetype at = 0; at < files.size(); ++at) {
        compareWith(files[at]);
        QString text;
        answerNextMessage(QMessageBox::Ok, nullptr, &text);
        QTRY_VERIFY_WITH_TIMEOUT(!text.isEmpty(), 20000);
        QCOMPARE(text, said[at]);
        QVERIFY(tree()->isColumnHidden(FolderColumn::Change));
        QVERIFY(!child<QLabel>("compareLabel")->isVisible());
        QVERIFY(!child<QAction>("stopComparingAction")->isEnabled());
        QVERIFY(!comparer()->isComparing());
    }
}

// Read again after the comparison, the folder's new file counts as grown.
void TestResultsCompare::theComparisonFollowsARefresh()
{
    scanChangedTree();
    QSignalSpy compared(comparer(), &ScanComparer::compared);
    compareWith(olderFile);
    QVERIFY(compared.wait(20000));
    makeFile("keep/late.bin", 50'000);
    auto* changes = form->findChild<ResultChanges*>();
    QSignalSpy finished(changes, &ResultChanges::finished);
    changes->refresh({0});
    QVERIFY(finished.wait(20000));
    QVERIFY(compared.size() > 1 || compared.wait(20000));
    const QMap<QString, ChangeReference::Change> expected = expectedChanges();
    QCOMPARE(expected["keep"].bytes, 50'000);
    int rows = 0;
    checkEveryFolder(model()->index(0, 0), QString(), expected, &rows);
    QVERIFY(!tree()->isColumnHidden(FolderColumn::Change));
}

void TestResultsCompare::stoppingGoesBackToTheScanAlone()
{
    scanChangedTree();
    tree()->setCurrentIndex(model()->index(0, 0));
    const QStringList sizes = legendRows();
    QVERIFY(sizes.first().endsWith(DiskUsageGlobal::sizeText(double(shown().tree->node(0).size))));
    QSignalSpy compared(comparer(), &ScanComparer::compared);
    compareWith(olderFile);
    QVERIFY(compared.wait(20000));
    emit tree()->header()->sectionClicked(FolderColumn::Change);
    QVERIFY(legendRows() != sizes);

    child<QAction>("stopComparingAction")->trigger();
    QVERIFY(tree()->isColumnHidden(FolderColumn::Change));
    QVERIFY(!model()->comparison());
    QCOMPARE(rootRows(), (QStringList{"docs", "pictures", "music", "keep"}));
    QCOMPARE(legendRows(), sizes);
    QVERIFY(!child<QLabel>("compareLabel")->isVisible());
    QVERIFY(!child<TreemapView>("treemapView")->showsChanges());
}

void TestResultsCompare::theDialogListsTheKeptScans()
{
    const QDateTime first(QDate(2026, 3, 1), QTime(8, 30), Qt::UTC);
    const QList<ScanHistory::Entry> kept{
        {QStringLiteral("/kept/b.json.gz"), QStringLiteral("/data"), first.addDays(7), 3 << 20},
        {QStringLiteral("/kept/a.json.gz"), QStringLiteral("/data"), first, 1536 << 10}};
    CompareDialog dialog(kept, QStringLiteral("/data"));
    auto* list = dialog.findChild<QTreeWidget*>(QStringLiteral("scanList"));
    QCOMPARE(list->topLevelItemCount(), 2);
    QCOMPARE(list->topLevelItem(1)->text(0),
             QLocale().toString(first.toLocalTime(), QLocale::ShortFormat));
    QCOMPARE(list->topLevelItem(1)->text(1), QStringLiteral("1.50 MB"));
    list->setCurrentItem(list->topLevelItem(1));
    auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    buttons->button(QDialogButtonBox::Ok)->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.chosenFile(), QStringLiteral("/kept/a.json.gz"));

    CompareDialog none({}, QStringLiteral("/data"));
    none.show();
    QVERIFY(none.findChild<QLabel*>(QStringLiteral("noScansLabel"))->isVisible());
    QVERIFY(!none.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))
                 ->button(QDialogButtonBox::Ok)
                 ->isEnabled());
}

QTEST_MAIN(TestResultsCompare)
#include "tst_resultscompare.moc"
