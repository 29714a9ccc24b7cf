#include "IsolatedSettings.h"
#include "app/MainWindow.h"
#include "platform/ScreenMetrics.h"
#include "results/DiskUsageScanProgressForm.h"
#include "settings/SettingsStore.h"

#include <QStackedLayout>
#include <QtTest>

class TestMainWindow : public QObject {
    Q_OBJECT

private slots:
    void firstStartUsesTheDefaults();
    void closeSavesTheGeometryAndRestartRestoresIt();
    void storedValuesArePulledOnScreen();
    void aWrappedPositionIsLeftToTheWindowSystem();
    void aFolderGivenIsScannedAtOnce();

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

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
