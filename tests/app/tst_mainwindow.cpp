#include "IsolatedSettings.h"
#include "NextModal.h"
#include "ScanSupport.h"
#include "TestSupport.h"
#include "app/MainWindow.h"
#include "home/DiskUsageForm.h"
#include "platform/ScreenMetrics.h"
#include "results/DiskUsageScanProgressForm.h"
#include "results/FolderTreeModel.h"
#include "results/FolderTreeView.h"
#include "scan/ScanFile.h"
#include "settings/SettingsStore.h"

#include <QLabel>
#include <QMimeData>
#include <QStackedLayout>
#include <QtTest>

namespace {

// The results screen once what it shows has arrived; null when none came.
DiskUsageScanProgressForm* finishedResults(MainWindow& window)
{
    auto* results = window.findChild<DiskUsageScanProgressForm*>();
    if (!results)
        return nullptr;
    QSignalSpy finished(results, &DiskUsageScanProgressForm::scanFinish);
    return finished.wait(20000) ? results : nullptr;
}

bool goBack(MainWindow& window)
{
    auto* results = window.findChild<DiskUsageScanProgressForm*>();
    if (!results)
        return false;
    QMetaObject::invokeMethod(results->findChild<QAbstractButton*>("backButton"), "click");
    return QTest::qWaitFor([&] { return !window.findChild<DiskUsageScanProgressForm*>(); }, 20000);
}

// What the folder tree's menu offers for its first row below the scanned folder.
QStringList offeredForTheFirstRow(DiskUsageScanProgressForm& results)
{
    auto* view = results.findChild<FolderTreeView*>("treeView");
    view->setCurrentIndex(view->model()->index(0, 0, view->model()->index(0, 0)));
    return menuOffers(view);
}

void drop(MainWindow& window, const QString& path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &enter);
    QDropEvent dropped(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &dropped);
}

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT

private slots:
    void firstStartUsesTheDefaults();
    void closeSavesTheGeometryAndRestartRestoresIt();
    void storedValuesArePulledOnScreen();
    void aWrappedPositionIsLeftToTheWindowSystem();
    void aFolderGivenIsScannedAtOnce();
    void aSavedScanOpensGivenDroppedOrChosen();
    void aFileThatIsNotAScanSaysSoAndNothingChanges();

private:
    IsolatedSettings isolated;
};

void TestMainWindow::firstStartUsesTheDefaults()
{
    MainWindow window;
    QCOMPARE(window.geometry(), QRect(100, 100, 986, 513));
    QCOMPARE(window.windowTitle(), QStringLiteral("Tallyroot"));
    QVERIFY(!window.windowIcon().isNull());
    auto* layout = qobject_cast<QStackedLayout*>(window.centralWidget()->layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 1);
}

void TestMainWindow::closeSavesTheGeometryAndRestartRestoresIt()
{
    const QRect chosen(130, 40, 1000, 520);
    {
        MainWindow window;
        window.show();
        window.setGeometry(chosen);
        QVERIFY(window.close());
    }
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(130));
    QCOMPARE(SettingsStore::readDword("posY"), std::optional<quint32>(40));
    QCOMPARE(SettingsStore::readDword("width"), std::optional<quint32>(1000));
    QCOMPARE(SettingsStore::readDword("height"), std::optional<quint32>(520));

    const auto screen = platform::fullScreenClientSize();
    if (screen.width < 1130 || screen.height < 560)
        QSKIP(qPrintable(QStringLiteral("the full-screen area %1x%2 cannot hold %3x%4 at (%5, %6)")
                             .arg(screen.width)
                             .arg(screen.height)
                             .arg(chosen.width())
                             .arg(chosen.height())
                             .arg(chosen.x())
                             .arg(chosen.y())));
    MainWindow restarted;
    QCOMPARE(restarted.geometry(), chosen);
}

void TestMainWindow::storedValuesArePulledOnScreen()
{
    const auto screen = platform::fullScreenClientSize();
    QVERIFY(screen.width > 0 && screen.height > 0);
    SettingsStore::writeDword("posX", screen.width + 50);
    SettingsStore::writeDword("posY", 20);
    SettingsStore::writeDword("width", 400);
    SettingsStore::writeDword("height", 200);

    MainWindow window;
    QCOMPARE(window.geometry(), QRect(100, 20, 986, 513));
}

void TestMainWindow::aWrappedPositionIsLeftToTheWindowSystem()
{
    const auto screen = platform::fullScreenClientSize();
    // A height above cy but not above cx wraps y below zero.
    if (screen.width <= screen.height + 20)
        QSKIP("needs a screen wider than it is tall");
    SettingsStore::writeDword("posX", 0);
    SettingsStore::writeDword("posY", 10);
    SettingsStore::writeDword("width", 986);
    SettingsStore::writeDword("height", screen.height + 10);

    MainWindow window;
    const int width = static_cast<int>(qMin(986u, screen.width));
    QCOMPARE(window.size(), QSize(width, static_cast<int>(screen.height + 10)));
    QVERIFY(window.y() >= 0);
}

void TestMainWindow::aFolderGivenIsScannedAtOnce()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("given.bin"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(4096));
    file.close();
    MainWindow window;
    window.show();
    window.scanFolder(QDir::toNativeSeparators(folder.path()));
    auto* results = window.findChild<DiskUsageScanProgressForm*>();
    QVERIFY(results);
    QSignalSpy finished(results, &DiskUsageScanProgressForm::scanFinish);
    QVERIFY(finished.wait(20000));
    QVERIFY(results->isVisible());
}

// A scan kept in a file shows as it was made, says whose it is, and offers
// nothing that would act on the disk on its word.
void TestMainWindow::aSavedScanOpensGivenDroppedOrChosen()
{
    QTemporaryDir folder;
    QVERIFY(writeSizedFile(folder.filePath("tree/music/song.mp3"), 5000));
    QVERIFY(writeSizedFile(folder.filePath("tree/big.iso"), 70000));
    const QString tree = QDir::toNativeSeparators(folder.filePath("tree"));
    const ScanResult scan = scanOf(tree);
    const QString file = folder.filePath("kept.json.gz");
    QVERIFY(ScanFile::write(file, scan, true));

    MainWindow window;
    window.show();
    const QStringList recent = window.findChild<DiskUsageForm*>()->recentFolders();
    const auto check = [&](const char* how) {
        DiskUsageScanProgressForm* results = finishedResults(window);
        QVERIFY2(results, how);
        auto* origin = results->findChild<QLabel*>("originLabel");
        QVERIFY2(origin->isVisible(), how);
        QVERIFY2(origin->text().startsWith("Saved scan of " + tree + " on " + scan.host),
                 qPrintable(origin->text()));
        QVERIFY(origin->text().contains("Not live"));
        QVERIFY(origin->toolTip().contains(QDir::toNativeSeparators(file)));
        auto* model = qobject_cast<FolderTreeModel*>(
            results->findChild<FolderTreeView*>("treeView")->model());
        QCOMPARE(model->tree()->node(0).size, scan.totalSize);
        const QStringList offered = offeredForTheFirstRow(*results);
        QVERIFY2(offered.contains("Delete Permanently (off)") && offered.contains("Refresh (off)"),
                 qPrintable(offered.join(", ")));
        QVERIFY(offered.contains("Copy Path"));
        QVERIFY(goBack(window));
    };
    window.openPath(file);
    check("given");
    drop(window, file);
    check("dropped");
#ifndef Q_OS_WIN
    onNextModal([&](QWidget* modal) {
        auto* picker = qobject_cast<QFileDialog*>(modal);
        QVERIFY(picker);
        chooseFolder(picker, file);
    });
    QMetaObject::invokeMethod(window.findChild<QAbstractButton*>("openScanButton"), "click",
                              Qt::QueuedConnection);
    QVERIFY(QTest::qWaitFor([&] { return window.findChild<DiskUsageScanProgressForm*>(); }));
    check("chosen");
#endif
    // A saved scan is not a folder scanned here.
    QCOMPARE(window.findChild<DiskUsageForm*>()->recentFolders(), recent);
    // A folder dropped is scanned.
    drop(window, tree);
    DiskUsageScanProgressForm* results = finishedResults(window);
    QVERIFY(results);
    QVERIFY(!results->findChild<QLabel*>("originLabel")->isVisible());
}

void TestMainWindow::aFileThatIsNotAScanSaysSoAndNothingChanges()
{
    QTemporaryDir folder;
    const QString file = folder.filePath("notes.json");
    QFile notes(file);
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("{\"todo\":[]}") > 0);
    notes.close();
    MainWindow window;
    window.show();
    const QStringList recent = window.findChild<DiskUsageForm*>()->recentFolders();
    QString title;
    QString text;
    answerNextMessage(QMessageBox::Ok, &title, &text);
    window.openPath(file);
    QVERIFY(QTest::qWaitFor([&] { return !text.isEmpty(); }, 20000));
    QCOMPARE(title, QStringLiteral("Cannot open the scan"));
    QCOMPARE(text, QDir::toNativeSeparators(file) + " is not a Tallyroot scan.");
    QVERIFY(QTest::qWaitFor([&] { return !window.findChild<DiskUsageScanProgressForm*>(); }));
    QCOMPARE(window.findChild<DiskUsageForm*>()->recentFolders(), recent);
    QVERIFY(!window.findChild<DiskUsageForm*>()->showsResults());
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
