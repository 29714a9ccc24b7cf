#include "IsolatedSettings.h"
#include "TestSupport.h"
#include "results/Columns.h"
#include "results/SearchPanel.h"
#include "scan/DiskUsageWorkerThread.h"
#include "settings/Settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <QtTest>

using namespace SearchColumn;

namespace {

// A finished scan of a folder with the default settings.
struct Scan {
    std::shared_ptr<const ScanTree> tree;
    QStringList categories; // the catalogue's names, by category index
};

Scan scanOf(const QString& folder)
{
    DiskUsageWorkerThread worker(nullptr, ScanRequest::of(folder, Settings::defaults()));
    worker.start();
    worker.wait();
    const ScanResult result = worker.takeResult();
    QStringList names;
    for (const FileTypeCategory& category : result.categories)
        names << category.name;
    return {result.tree, names};
}

template <typename T> T* field(const SearchPanel& panel, const char* name)
{
    return panel.findChild<T*>(QString::fromLatin1(name));
}

// Lets the searches under way end and their rows arrive.
void settle(SearchPanel& panel)
{
    panel.waitForSearches();
    QCoreApplication::processEvents();
}

QStringList column(const SearchPanel& panel, int which)
{
    const QAbstractItemModel* model = panel.resultsView()->model();
    QStringList cells;
    for (int row = 0; row < model->rowCount(); ++row)
        cells << model->index(row, which).data().toString();
    return cells;
}

QStringList sortedNames(const SearchPanel& panel)
{
    QStringList names = column(panel, Name);
    names.sort();
    return names;
}

QString status(const SearchPanel& panel)
{
    return field<QLabel>(panel, "searchStatusLabel")->text();
}

} // namespace

class TestSearchPanel : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void typingFindsByNameWildcardsExpressionAndSize();
    void anInvalidExpressionSaysSoAndShowsNothing();
    void rowsShowNameFolderSizeAndType();
    void sortingBySizeUsesTheNumber();
    void theNewestQueryWins();
    void chosenAndSelectedGiveTheRightNodes();
    void aNewTreeRerunsTheQuery();
    void withoutATree();
    void destroyingThePanelWhileItSearches();

private:
    void makeFile(const QString& relative, qint64 size);
    // A shown panel over a scan of the test's folder, rows of `text` settled.
    std::unique_ptr<SearchPanel> panelFinding(const QString& text);

    IsolatedSettings isolated;
    QTemporaryDir dir;
    Scan scan;
};

void TestSearchPanel::makeFile(const QString& relative, qint64 size)
{
    QVERIFY(writeSizedFile(dir.filePath(relative), size));
}

void TestSearchPanel::initTestCase()
{
    QVERIFY(dir.isValid());
    makeFile("Music/Song One.mp3", 3000);
    makeFile("Music/song-two.MP3", 100);
    makeFile("Docs/report 2024.pdf", 5000);
    makeFile("Docs/Reports/notes.txt", 10);
    makeFile("Docs/data.qxz", 20 * 1024);
    makeFile("sizes/a.bin", 9 * 1024);
    makeFile("sizes/b.bin", 10 * 1024);
    makeFile("sizes/c.bin", 2 * 1024 * 1024);
    makeFile("README", 1);
    scan = scanOf(dir.path());
    QVERIFY(scan.tree);
}

std::unique_ptr<SearchPanel> TestSearchPanel::panelFinding(const QString& text)
{
    auto panel = std::make_unique<SearchPanel>();
    panel->resize(900, 500);
    panel->show();
    panel->setTree(scan.tree, scan.categories);
    field<QLineEdit>(*panel, "searchEdit")->setText(text);
    settle(*panel);
    return panel;
}

void TestSearchPanel::typingFindsByNameWildcardsExpressionAndSize()
{
    const auto panel = panelFinding({});
    QCOMPARE(panel->resultsView()->model()->rowCount(), 0);
    QVERIFY(status(*panel).contains("Type a part of a name"));

    // Typed a key at a time, each key a search of its own.
    QTest::keyClicks(field<QLineEdit>(*panel, "searchEdit"), "REPORT");
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"Reports", "report 2024.pdf"}));
    QCOMPARE(status(*panel), QStringLiteral("2 matches"));

    field<QLineEdit>(*panel, "searchEdit")->setText("*.mp3");
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"Song One.mp3", "song-two.MP3"}));

    field<QLineEdit>(*panel, "searchEdit")->setText("^s.n.[- ]o");
    settle(*panel);
    QCOMPARE(status(*panel), QStringLiteral("No matches"));
    field<QCheckBox>(*panel, "regularExpressionCheckBox")->setChecked(true);
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"Song One.mp3"}));
    QCOMPARE(status(*panel), QStringLiteral("1 match"));

    // A minimum size with a name, then alone: everything at least that big.
    field<QCheckBox>(*panel, "regularExpressionCheckBox")->setChecked(false);
    field<QLineEdit>(*panel, "searchEdit")->setText(".bin");
    field<QComboBox>(*panel, "minimumSizeUnitCombo")->setCurrentIndex(0); // KB
    field<QDoubleSpinBox>(*panel, "minimumSizeSpinBox")->setValue(9.5);
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"b.bin", "c.bin"}));
    field<QComboBox>(*panel, "minimumSizeUnitCombo")->setCurrentIndex(1); // MB
    field<QDoubleSpinBox>(*panel, "minimumSizeSpinBox")->setValue(2);
    field<QLineEdit>(*panel, "searchEdit")->clear();
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"c.bin", "sizes"}));
}

void TestSearchPanel::anInvalidExpressionSaysSoAndShowsNothing()
{
    const auto panel = panelFinding("one");
    field<QCheckBox>(*panel, "regularExpressionCheckBox")->setChecked(true);
    settle(*panel);
    QCOMPARE(panel->resultsView()->model()->rowCount(), 1);
    field<QLineEdit>(*panel, "searchEdit")->setText("one)");
    settle(*panel);
    QCOMPARE(panel->resultsView()->model()->rowCount(), 0);
    const QString error = QRegularExpression("one)").errorString();
    QVERIFY(!error.isEmpty());
    QVERIFY2(status(*panel).contains(error), qPrintable(status(*panel)));
    QVERIFY(status(*panel).contains("regular expression"));
}

void TestSearchPanel::rowsShowNameFolderSizeAndType()
{
    const auto panel = panelFinding("*");
    const QStringList names = column(*panel, Name);
    const auto cells = [&](const QString& name) {
        const int row = int(names.indexOf(name));
        QStringList values;
        for (int which = Name; which < Count; ++which)
            values << column(*panel, which).value(row);
        return values;
    };
    const QString docs = QDir::toNativeSeparators(dir.filePath("Docs"));
    QCOMPARE(cells("data.qxz"), QStringList({"data.qxz", docs, "20.00 KB", "QXZ file"}));
    QCOMPARE(cells("report 2024.pdf"),
             QStringList({"report 2024.pdf", docs, "4.88 KB", "Document Files"}));
    QCOMPARE(cells("c.bin").value(Type), QStringLiteral("BIN file"));
    QCOMPARE(cells("README"),
             QStringList({"README", QDir::toNativeSeparators(dir.path()), "0.00 KB", "File"}));
    QCOMPARE(cells("Reports").value(Type), QStringLiteral("Folder"));
    QCOMPARE(cells("Reports").value(Size), QStringLiteral("0.01 KB"));
    // Largest first until a header is clicked; a folder counts what it holds.
    QCOMPARE(names.mid(0, 2), QStringList({"sizes", "c.bin"}));
    const QAbstractItemModel* model = panel->resultsView()->model();
    QVERIFY(!qvariant_cast<QIcon>(model->index(0, Name).data(Qt::DecorationRole)).isNull());
}

void TestSearchPanel::sortingBySizeUsesTheNumber()
{
    const auto panel = panelFinding("*.bin");
    QTreeView* view = panel->resultsView();
    // As text "10.00 KB" < "2.00 MB" < "9.00 KB".
    view->sortByColumn(Size, Qt::AscendingOrder);
    settle(*panel);
    QCOMPARE(column(*panel, Name), QStringList({"a.bin", "b.bin", "c.bin"}));
    view->sortByColumn(Size, Qt::DescendingOrder);
    settle(*panel);
    QCOMPARE(column(*panel, Name), QStringList({"c.bin", "b.bin", "a.bin"}));
    view->sortByColumn(Name, Qt::AscendingOrder);
    settle(*panel);
    QCOMPARE(column(*panel, Name), QStringList({"a.bin", "b.bin", "c.bin"}));
    // A new query keeps the order the user chose.
    field<QLineEdit>(*panel, "searchEdit")->setText("o");
    settle(*panel);
    QCOMPARE(column(*panel, Name), QStringList({"Docs", "notes.txt", "report 2024.pdf", "Reports",
                                                "Song One.mp3", "song-two.MP3"}));
}

void TestSearchPanel::theNewestQueryWins()
{
    const auto panel = panelFinding({});
    QList<int> shown;
    const QAbstractItemModel* model = panel->resultsView()->model();
    connect(model, &QAbstractItemModel::modelReset, this, [&] { shown << model->rowCount(); });
    field<QLineEdit>(*panel, "searchEdit")->setText("*.mp3");
    // Its rows are on their way, not shown yet, when the user types on.
    panel->waitForSearches();
    field<QLineEdit>(*panel, "searchEdit")->setText("*.bin");
    settle(*panel);
    QCOMPARE(shown, QList<int>{3});
    QCOMPARE(sortedNames(*panel), QStringList({"a.bin", "b.bin", "c.bin"}));
}

void TestSearchPanel::chosenAndSelectedGiveTheRightNodes()
{
    const auto panel = panelFinding("*.bin");
    QTreeView* view = panel->resultsView();
    QSignalSpy chosen(panel.get(), &SearchPanel::chosen);
    const auto nameOf = [&](const QVariant& node) {
        return scan.tree->nameText(node.value<ScanTree::Index>());
    };

    const QModelIndex second = view->model()->index(1, Folder);
    // A double-click comes after a press of its own, as from a real mouse.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(second).center());
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(second).center());
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(nameOf(chosen.at(0).at(0)), QStringLiteral("b.bin"));

    view->setCurrentIndex(view->model()->index(2, Name));
    QTest::keyClick(view, Qt::Key_Return);
    QCOMPARE(chosen.size(), 2);
    QCOMPARE(nameOf(chosen.at(1).at(0)), QStringLiteral("a.bin"));

    view->selectionModel()->select(view->model()->index(0, Name),
                                   QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QStringList selected;
    for (ScanTree::Index node : panel->selectedNodes())
        selected << scan.tree->nameText(node);
    QCOMPARE(selected, QStringList({"c.bin", "a.bin"}));
    // A sort keeps them selected.
    view->sortByColumn(Name, Qt::AscendingOrder);
    settle(*panel);
    selected.clear();
    for (ScanTree::Index node : panel->selectedNodes())
        selected << scan.tree->nameText(node);
    QCOMPARE(selected, QStringList({"a.bin", "c.bin"}));
}

void TestSearchPanel::aNewTreeRerunsTheQuery()
{
    const auto panel = panelFinding("*.bin");
    QCOMPARE(panel->resultsView()->model()->rowCount(), 3);
    QTemporaryDir other;
    QVERIFY(writeSizedFile(other.filePath("d.bin"), 1));
    QVERIFY(writeSizedFile(other.filePath("e.txt"), 1));
    const Scan rescan = scanOf(other.path());
    panel->setTree(rescan.tree, rescan.categories);
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"d.bin"}));
    QCOMPARE(field<QLineEdit>(*panel, "searchEdit")->text(), QStringLiteral("*.bin"));

    // Cleared, it holds the tree no longer and shows nothing; given a tree
    // again, it searches it for what the user typed.
    std::shared_ptr<const ScanTree> last = scanOf(other.path()).tree;
    const std::weak_ptr<const ScanTree> held = last;
    panel->setTree(std::move(last), {});
    panel->clear();
    QVERIFY(held.expired());
    QCOMPARE(panel->resultsView()->model()->rowCount(), 0);
    QVERIFY(!field<QLineEdit>(*panel, "searchEdit")->isEnabled());
    panel->setTree(rescan.tree, rescan.categories);
    settle(*panel);
    QCOMPARE(sortedNames(*panel), QStringList({"d.bin"}));
}

void TestSearchPanel::withoutATree()
{
    SearchPanel panel;
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    QLineEdit* edit = field<QLineEdit>(panel, "searchEdit");
    QVERIFY(!edit->isEnabled());
    QCOMPARE(panel.resultsView()->model()->rowCount(), 0);
    QVERIFY(panel.selectedNodes().empty());
    QVERIFY(!status(panel).isEmpty());

    panel.setTree(scan.tree, scan.categories);
    QVERIFY(edit->isEnabled());
    edit->setText("song");
    settle(panel);
    QCOMPARE(panel.resultsView()->model()->rowCount(), 2);
    panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    panel.focusSearch();
    QVERIFY(edit->hasFocus());
    QCOMPARE(edit->selectedText(), QStringLiteral("song"));
    // Down goes on to the rows, the first one current.
    QTest::keyClick(edit, Qt::Key_Down);
    QVERIFY(panel.resultsView()->hasFocus());
    QCOMPARE(panel.resultsView()->currentIndex().row(), 0);
}

void TestSearchPanel::destroyingThePanelWhileItSearches()
{
    for (int round = 0; round < 20; ++round) {
        auto panel = std::make_unique<SearchPanel>();
        panel->setTree(scan.tree, scan.categories);
        field<QLineEdit>(*panel, "searchEdit")->setText(round % 2 ? "*" : "o");
        // Every other round its rows are already on their way to it.
        if (round % 2)
            panel->waitForSearches();
        panel.reset();
    }
    QCoreApplication::processEvents();
    QVERIFY(scan.tree.use_count() == 1);
}

QTEST_MAIN(TestSearchPanel)
#include "tst_searchpanel.moc"
