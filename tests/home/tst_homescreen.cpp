#include "IsolatedSettings.h"
#include "NextModal.h"
#include "TestSupport.h"
#include "app/MainWindow.h"
#include "home/AboutDialog.h"
#include "home/ClickableLabel.h"
#include "home/DiskUsageDetailInfoDialog.h"
#include "home/DiskUsageFolderInfoForm.h"
#include "home/DiskUsageForm.h"
#include "home/DiskUsageItemInfoForm.h"
#include "home/DriveInfo.h"
#include "home/RecentFolders.h"
#include "home/UpgradeDialog.h"
#include "home/WebLinks.h"
#include "results/DiskUsageScanInfoForm.h"
#include "results/DiskUsageScanProgressForm.h"
#include "scan/ScanHistory.h"
#include "settings/DiskUsageOptionsForm.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedLayout>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>

#include <functional>

class TestHomeScreen : public QObject {
    Q_OBJECT

public:
    TestHomeScreen();

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void recentRowsShowTheStoredFoldersThatExist();
    void aRecentRowScansAndBackReturnsHome();
    void aRowWhoseFolderWasDeletedLeavesTheList();
    void aSixthFolderIsWrittenButNotReadBack();
    void theFolderPickerAndTheSameFolderInOtherCase();
    void driveCardsShowTheDisks();
    void folderCardsShowTheSpecialFolders();
    void closingDuringAScanStopsItAndCloses();
    void closingDuringAReleaseWaitsForIt();
    void toolbarButtons();
    void leavingUnsavedOptionsAsksToSave();
    void closingWithUnsavedOptionsAsksToSave();
    void aWiderWindowWidensTheMainPane();
    void recentRowsSayWhenEachFolderWasLastScanned();
    void theLastScannedTextIsShortAndFriendly();
    void aFinishedScanIsKeptDatedAndDeletedFromTheOptions();
    void withTheHistoryOffAScanIsDatedButNotKept();

private:
    QString folder(const QString& name);
    static void storeRecent(const QStringList& paths);
    static QStringList storedRecent(int count);
    static QDateTime storedTime(int row);
    static ClickableLabel* recentText(DiskUsageForm& form, int row);
    static QLabel* recentTime(DiskUsageForm& form, int row);
    static DiskUsageScanProgressForm* resultsOf(DiskUsageForm& form);
    static void setTab(DiskUsageForm& form, int index);
    static bool finishScan(DiskUsageForm& form);
    static bool goBack(DiskUsageForm& form);

    IsolatedSettings isolated;
    // What the main window would hold.
    Settings settings = Settings::defaults();
    QTemporaryDir dir;
    OpenedUrls opened;
};

TestHomeScreen::TestHomeScreen()
{
#ifndef Q_OS_WIN
    // The special folders come from the home folder; a small one of our own.
    qputenv("HOME", QDir(dir.path()).filePath("home").toLocal8Bit());
#endif
}

void TestHomeScreen::initTestCase()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    QDesktopServices::setUrlHandler("file", &opened, "open");
    for (const char* name :
         {"home/Documents/notes", "alpha", "beta", "ALPHA", "one", "two", "three", "four", "five"})
        QVERIFY(QDir(dir.path()).mkpath(name));
    QVERIFY(writeSizedFile(dir.filePath("alpha/report.txt"), 4096));
}

void TestHomeScreen::init()
{
    isolated.clear();
    opened.urls.clear();
    // Every scan a test makes to the end is kept, in the isolated data folder.
    QVERIFY(ScanHistory().removeAll());
}

void TestHomeScreen::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler("file");
}

QString TestHomeScreen::folder(const QString& name)
{
    return QDir::toNativeSeparators(dir.filePath(name));
}

void TestHomeScreen::storeRecent(const QStringList& paths)
{
    for (int i = 0; i < paths.size(); ++i)
        SettingsStore::writeString(QStringLiteral("RecentFile%1").arg(i + 1), paths.at(i));
}

QStringList TestHomeScreen::storedRecent(int count)
{
    QStringList paths;
    for (int i = 1; i <= count; ++i)
        paths << SettingsStore::readString(QStringLiteral("RecentFile%1").arg(i)).value_or("-");
    return paths;
}

QDateTime TestHomeScreen::storedTime(int row)
{
    const auto text = SettingsStore::readString(QStringLiteral("RecentTime%1").arg(row));
    return QDateTime::fromString(text.value_or(QString()), Qt::ISODate);
}

ClickableLabel* TestHomeScreen::recentText(DiskUsageForm& form, int row)
{
    // Both labels of a row carry its name; the icon is the narrow one.
    for (auto* label : form.findChildren<ClickableLabel*>(QStringLiteral("recentLabel%1").arg(row)))
        if (label->maximumWidth() > 20)
            return label;
    return nullptr;
}

QLabel* TestHomeScreen::recentTime(DiskUsageForm& form, int row)
{
    return form.findChild<QLabel*>(QStringLiteral("recentTime%1").arg(row));
}

DiskUsageScanProgressForm* TestHomeScreen::resultsOf(DiskUsageForm& form)
{
    auto* layout = qobject_cast<QStackedLayout*>(form.layout());
    return layout ? qobject_cast<DiskUsageScanProgressForm*>(layout->currentWidget()) : nullptr;
}

void TestHomeScreen::setTab(DiskUsageForm& form, int index)
{
    form.findChild<QTabWidget*>("tabWidget")->setCurrentIndex(index);
}

bool TestHomeScreen::finishScan(DiskUsageForm& form)
{
    return QTest::qWaitFor([&] { return !form.isScanning; }, 20000);
}

bool TestHomeScreen::goBack(DiskUsageForm& form)
{
    DiskUsageScanProgressForm* results = resultsOf(form);
    if (!results)
        return false;
    QTest::mouseClick(results->findChild<QToolButton*>("backButton"), Qt::LeftButton);
    return QTest::qWaitFor([&] { return !resultsOf(form) && !form.isClearingRam; }, 20000);
}

void TestHomeScreen::recentRowsShowTheStoredFoldersThatExist()
{
    const QString gone = folder("gone");
    QVERIFY(QDir().mkpath(gone));
    QVERIFY(QDir(gone).removeRecursively());
    storeRecent({folder("alpha"), gone, folder("alpha/report.txt"), QString(), folder("beta"),
                 folder("one")});

    DiskUsageForm form(settings);
    form.show();
    QCOMPARE(form.recentFolders(),
             QStringList({folder("alpha"), folder("alpha/report.txt"), folder("beta")}));
    for (int row = 1; row <= 3; ++row) {
        QVERIFY(recentText(form, row)->isVisible());
        QCOMPARE(recentText(form, row)->toolTip(), form.recentFolders().at(row - 1));
    }
    QVERIFY(!recentText(form, 4)->isVisible());
    QVERIFY(!recentText(form, 5)->isVisible());

    // A file where a folder should be scans without harm.
    QTest::mouseClick(recentText(form, 2), Qt::LeftButton);
    QVERIFY(finishScan(form));
    QVERIFY(goBack(form));
    QCOMPARE(form.recentFolders().first(), folder("alpha/report.txt"));
}

void TestHomeScreen::aRecentRowScansAndBackReturnsHome()
{
    storeRecent({folder("alpha"), folder("beta")});
    DiskUsageForm form(settings);
    form.show();
    QSignalSpy toolbar(&form, &DiskUsageForm::showToolbarSignal);

    QTest::mouseClick(recentText(form, 2), Qt::LeftButton);
    QVERIFY(form.isScanning);
    QVERIFY(resultsOf(form));
    QCOMPARE(form.recentFolders(), QStringList({folder("beta"), folder("alpha")}));
    QCOMPARE(storedRecent(2), QStringList({folder("beta"), folder("alpha")}));
    QCOMPARE(recentText(form, 1)->toolTip(), folder("beta"));

    QVERIFY(finishScan(form));
    QVERIFY(resultsOf(form));
    QVERIFY(goBack(form));
    QVERIFY(form.findChild<QWidget*>("mainWidget")->isVisible());
    // Hidden for the scan, shown for its results, hidden again by Back, shown at home.
    QCOMPARE(toolbar.size(), 4);
    QVERIFY(toolbar.last().at(0).toBool());
    QTRY_VERIFY(form.findChildren<DiskUsageScanProgressForm*>().isEmpty());

    // The icon of a row scans too.
    auto labels = form.findChildren<ClickableLabel*>("recentLabel2");
    QCOMPARE(labels.size(), 2);
    QTest::mouseClick(labels.at(0) == recentText(form, 2) ? labels.at(1) : labels.at(0),
                      Qt::LeftButton);
    QCOMPARE(form.recentFolders(), QStringList({folder("alpha"), folder("beta")}));
    QVERIFY(finishScan(form));
    QVERIFY(goBack(form));
}

void TestHomeScreen::aRowWhoseFolderWasDeletedLeavesTheList()
{
    const QString doomed = folder("doomed");
    QVERIFY(QDir().mkpath(doomed));
    storeRecent({doomed, folder("beta")});
    DiskUsageForm form(settings);
    form.show();
    QCOMPARE(form.recentFolders().size(), 2);

    QVERIFY(QDir(doomed).removeRecursively());
    QString text;
    answerNextMessage(QMessageBox::Ok, nullptr, &text);
    QTest::mouseClick(recentText(form, 1), Qt::LeftButton);
    QCOMPARE(text, QDir::toNativeSeparators(doomed) + QStringLiteral(" does not exist."));
    QVERIFY(!resultsOf(form));
    QVERIFY(!form.isScanning);
    QCOMPARE(form.recentFolders(), QStringList({folder("beta")}));
    QCOMPARE(recentText(form, 1)->toolTip(), folder("beta"));
    QVERIFY(!recentText(form, 2)->isVisible());
}

void TestHomeScreen::aSixthFolderIsWrittenButNotReadBack()
{
    const QStringList five{folder("one"), folder("two"), folder("three"), folder("four"),
                           folder("five")};
    storeRecent(five);
    QString documents;
    {
        DiskUsageForm form(settings);
        form.show();
        QCOMPARE(form.recentFolders(), five);
        setTab(form, 1);
        auto* card = form.findChildren<DiskUsageFolderInfoForm*>().value(0);
        QVERIFY(card);
        QTest::mouseClick(card->findChild<QPushButton*>("startButton"), Qt::LeftButton);
        QCOMPARE(form.recentFolders().size(), 6);
        documents = form.recentFolders().first();
        QVERIFY(!documents.isEmpty());
        QCOMPARE(storedRecent(6), QStringList({documents}) + five);
        QVERIFY(finishScan(form));
        QVERIFY(goBack(form));
    }
    DiskUsageForm restarted(settings);
    QCOMPARE(restarted.recentFolders(), QStringList({documents}) + five.mid(0, 4));
}

void TestHomeScreen::theFolderPickerAndTheSameFolderInOtherCase()
{
    if (QSysInfo::kernelType() == QLatin1String("winnt"))
        QSKIP("the Windows folder picker is the shell's own window; the picker is driven on Linux");
    storeRecent({folder("beta"), folder("alpha")});
    DiskUsageForm form(settings);
    form.show();

    // Cancelled: nothing starts.
    QString title;
    QString start;
    onNextModal([&](QWidget* modal) {
        auto* picker = qobject_cast<QFileDialog*>(modal);
        QVERIFY(picker);
        title = picker->windowTitle();
        start = picker->directory().absolutePath();
        picker->reject();
    });
    QTest::mouseClick(form.findChild<QPushButton*>("selectFolderButton"), Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Select folder to scan..."));
    QCOMPARE(start, QDir(dir.path()).filePath("home/Documents"));
    QVERIFY(!resultsOf(form));

    // ALPHA is another folder on Linux, but a recent entry matches without
    // regard to case, as the same folder would on Windows.
    onNextModal([&](QWidget* modal) {
        auto* picker = qobject_cast<QFileDialog*>(modal);
        QVERIFY(picker);
        chooseFolder(picker, QDir(dir.path()).filePath("ALPHA"));
    });
    QTest::mouseClick(form.findChild<QPushButton*>("selectFolderButton"), Qt::LeftButton);
    QVERIFY(resultsOf(form));
    QCOMPARE(form.recentFolders(), QStringList({folder("ALPHA"), folder("beta")}));
    QCOMPARE(storedRecent(2), QStringList({folder("ALPHA"), folder("beta")}));
    QVERIFY(finishScan(form));
    QVERIFY(goBack(form));
}

namespace {

// A card's icon is there and, at any display scaling, whole inside its label.
bool iconFits(const QLabel* label)
{
    const QPixmap icon = label->pixmap();
    const QSizeF size = icon.deviceIndependentSize();
    return !icon.isNull() && size.width() <= label->width() && size.height() <= label->height();
}

} // namespace

void TestHomeScreen::driveCardsShowTheDisks()
{
    const QList<DriveInfo> drives = DriveInfo::readDrives();
    DiskUsageForm form(settings);
    form.show();
    const auto cards = form.findChildren<DiskUsageItemInfoForm*>();
    QCOMPARE(cards.size(), drives.size());
    if (drives.isEmpty())
        QSKIP("this machine has no local disk to show");

    DiskUsageItemInfoForm* card = cards.first();
    QCOMPARE(card->findChild<QLabel*>("volumeLabel")->text(), drives.first().name);
    QCOMPARE(card->findChild<QLabel*>("fsLabel")->text(), drives.first().fileSystem);
    QCOMPARE(card->findChild<QLabel*>("sizeLabel")->text(), drives.first().sizeText());
    QCOMPARE(card->findChild<QProgressBar*>("progressBar")->value(), drives.first().usedPercent());
    QVERIFY(iconFits(card->findChild<QLabel*>("icon")));

    QString shownSerial;
    onNextModal([&](QWidget* modal) {
        auto* details = qobject_cast<DiskUsageDetailInfoDialog*>(modal);
        QVERIFY(details);
        auto* tree = details->findChild<QTreeView*>("treeView");
        const QModelIndex general = tree->model()->index(0, 0);
        for (int row = 0; row < tree->model()->rowCount(general); ++row)
            if (tree->model()->index(row, 0, general).data().toString() == "Serial Number")
                shownSerial = tree->model()->index(row, 1, general).data().toString();
    });
    QTest::mouseClick(card->findChild<QToolButton*>("infoButton"), Qt::LeftButton);
    QCOMPARE(shownSerial, drives.first().serialNumber);

    // Start scans the drive whole, wherever the program's current folder is
    // (on Windows, where "C:" alone is that folder; a whole Linux disk is too
    // much for a test).
    if (QSysInfo::kernelType() != QLatin1String("winnt"))
        return;
    QTemporaryDir elsewhere;
    QVERIFY(QFile(elsewhere.filePath("only-here")).open(QIODevice::WriteOnly));
    const QString before = QDir::currentPath();
    QDir::setCurrent(elsewhere.path());
    QTest::mouseClick(card->findChild<QPushButton*>("startButton"), Qt::LeftButton);
    const bool finished = finishScan(form);
    QDir::setCurrent(before);
    QVERIFY(finished);
    const QAbstractItemModel* rows = resultsOf(form)->findChild<QTreeView*>("treeView")->model();
    QStringList names;
    for (int row = 0; row < rows->rowCount(rows->index(0, 0)); ++row)
        names << rows->index(row, 0, rows->index(0, 0)).data().toString().toLower();
    QVERIFY2(names.contains("windows"), qPrintable(names.join(", ")));
    QVERIFY(goBack(form));
}

void TestHomeScreen::folderCardsShowTheSpecialFolders()
{
    const bool windows = QSysInfo::kernelType() == QLatin1String("winnt");
    // On Linux only the folders that exist: here Documents and the home folder.
    QVERIFY(QDir().mkpath(QDir(dir.path()).filePath("home/Music")));
    DiskUsageForm form(settings);
    const auto cards = form.findChildren<DiskUsageFolderInfoForm*>();
    QCOMPARE(cards.size(), windows ? 6 : 3);
    const QString documents = cards.first()->findChild<QLabel*>("folderPathLabel")->text();
    QVERIFY(!documents.isEmpty());
    QCOMPARE(cards.first()->findChild<QLabel*>("folderNameLabel")->text(),
             QFileInfo(documents).fileName());
#ifndef Q_OS_WIN
    QCOMPARE(documents, QDir(dir.path()).filePath("home/Documents"));
    QCOMPARE(cards.last()->findChild<QLabel*>("folderPathLabel")->text(),
             QDir(dir.path()).filePath("home"));
#endif
    for (const auto* card : cards)
        QVERIFY(iconFits(card->findChild<QLabel*>("icon")));

    if (windows)
        return; // the Windows special folders are the system's, not the test's
    // Gone since the card was made: said so, not scanned, not remembered.
    form.show();
    setTab(form, 1);
    QVERIFY(QDir(QDir(dir.path()).filePath("home/Music")).removeRecursively());
    const QStringList recent = form.recentFolders();
    QString title;
    QString text;
    answerNextMessage(QMessageBox::Ok, &title, &text);
    QTest::mouseClick(cards.at(1)->findChild<QPushButton*>("startButton"), Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Folder not found"));
    QVERIFY(text.endsWith(QStringLiteral(" does not exist.")));
    QVERIFY(!form.isScanning);
    QCOMPARE(form.recentFolders(), recent);
    QVERIFY(QDir().mkpath(QDir(dir.path()).filePath("home/Music")));
}

void TestHomeScreen::closingDuringAScanStopsItAndCloses()
{
    const QList<DriveInfo> drives = DriveInfo::readDrives();
    if (drives.isEmpty())
        QSKIP("this machine has no local disk to scan");
    MainWindow window;
    window.show();
    auto* home = window.findChild<DiskUsageForm*>();
    QVERIFY(home);
    QSignalSpy closeApp(home, &DiskUsageForm::closeApp);

    auto* card = home->findChildren<DiskUsageItemInfoForm*>().first();
    QTest::mouseClick(card->findChild<QPushButton*>("startButton"), Qt::LeftButton);
    QVERIFY(home->isScanning);
    QCOMPARE(home->recentFolders().first(), drives.first().scanPath());

    window.setGeometry(120, 110, 990, 520);
    QVERIFY(window.close());
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(120));
    QVERIFY(closeApp.wait(20000));
    QVERIFY(!home->isScanning);
    QVERIFY(!home->isVisible());
}

void TestHomeScreen::closingDuringAReleaseWaitsForIt()
{
    storeRecent({folder("one")});
    MainWindow window;
    window.show();
    auto* home = window.findChild<DiskUsageForm*>();
    QSignalSpy closeApp(home, &DiskUsageForm::closeApp);
    QTest::mouseClick(recentText(*home, 1), Qt::LeftButton);
    QVERIFY(finishScan(*home));
    // The results fit the window's smallest size.
    QCOMPARE(window.size(), QSize(986, 513));
    QVERIFY(window.close()); // no release yet: nothing holds the window
    QCOMPARE(closeApp.size(), 0);

    window.show();
    QTest::mouseClick(resultsOf(*home)->findChild<QToolButton*>("backButton"), Qt::LeftButton);
    QVERIFY(home->isClearingRam);
    window.setGeometry(140, 130, 1000, 530);
    QVERIFY(!window.close());
    QVERIFY(window.isVisible());
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(140));

    // The user was asked about unsaved options when the close was asked for
    // (here there were none); the close that follows the release asks nothing.
    window.findChild<QCheckBox*>("excludeOneDrivecheckBox")->click();
    bool asked = false;
    QTimer answerer;
    connect(&answerer, &QTimer::timeout, this, [&asked] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            asked = true;
            box->button(QMessageBox::No)->click();
        }
    });
    answerer.start(10);
    QVERIFY(closeApp.wait(20000));
    QVERIFY(!home->isClearingRam);
    QVERIFY(!window.isVisible()); // the window closes itself, not only its content
    QVERIFY(!asked);
}

void TestHomeScreen::toolbarButtons()
{
    DiskUsageForm form(settings);
    form.show();
    QTest::mouseClick(form.findChild<QPushButton*>("websiteButton"), Qt::LeftButton);
    QCOMPARE(opened.urls, QList<QUrl>({WebLinks::website()}));
    if (WebLinks::webAddress().isEmpty())
        QCOMPARE(WebLinks::website().fileName(), QStringLiteral("user-guide.html"));

    QStringList dialogs;
    const auto note = [&dialogs](QWidget* modal) { dialogs << modal->metaObject()->className(); };
    onNextModal(note);
    QTest::mouseClick(form.findChild<QPushButton*>("aboutButton"), Qt::LeftButton);
    onNextModal(note);
    QTest::mouseClick(form.findChild<QPushButton*>("upgradeButton"), Qt::LeftButton);
    QCOMPARE(dialogs, QStringList({"AboutDialog", "UpgradeDialog"}));
}

void TestHomeScreen::leavingUnsavedOptionsAsksToSave()
{
    DiskUsageForm form(settings);
    form.show();
    auto* tabs = form.findChild<QTabWidget*>("tabWidget");
    QCOMPARE(tabs->currentIndex(), 0);
    tabs->setCurrentIndex(2);
    auto* options = form.findChild<DiskUsageOptionsForm*>();
    QVERIFY(options && options->isVisible());
    options->findChild<QCheckBox*>("excludeOneDrivecheckBox")->click();

    // "No" keeps the changes unsaved, so the next change of tab asks again,
    // also between the other two tabs.
    QString title;
    QString question;
    answerNextMessage(QMessageBox::No, &title, &question);
    tabs->setCurrentIndex(0);
    QCOMPARE(title, QStringLiteral("Confirm to save changes"));
    QCOMPARE(question, QStringLiteral("There are unsaved changes in the Options page. Do you "
                                      "want to save the changes now?"));
    QVERIFY(options->hasUnsavedChanges());
    QCOMPARE(SettingsStore::readDword("ExcludeOneDriveFolder"), std::nullopt);

    title.clear();
    answerNextMessage(QMessageBox::Yes, &title);
    tabs->setCurrentIndex(1);
    QCOMPARE(title, QStringLiteral("Confirm to save changes"));
    QVERIFY(!options->hasUnsavedChanges());
    QCOMPARE(SettingsStore::readDword("ExcludeOneDriveFolder"), std::optional<quint32>(1));

    // Saved: no question. (One would be closed at once, and noticed.)
    bool asked = false;
    QTimer::singleShot(0, this, [&asked] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            asked = true;
            modal->close();
        }
    });
    tabs->setCurrentIndex(0);
    QTest::qWait(20);
    QVERIFY(!asked);
}

void TestHomeScreen::closingWithUnsavedOptionsAsksToSave()
{
    MainWindow window;
    window.show();
    window.findChild<QTabWidget*>("tabWidget")->setCurrentIndex(2);
    window.findChild<QCheckBox*>("excludeOneDrivecheckBox")->click();
    // Cancel calls the close off and keeps the changes unsaved.
    answerNextMessage(QMessageBox::Cancel);
    QVERIFY(!window.close());
    QVERIFY(window.isVisible());
    QVERIFY(window.findChild<DiskUsageOptionsForm*>()->hasUnsavedChanges());
    answerNextMessage(QMessageBox::Yes);
    QVERIFY(window.close());
    QCOMPARE(SettingsStore::readDword("ExcludeOneDriveFolder"), std::optional<quint32>(1));
}

void TestHomeScreen::aWiderWindowWidensTheMainPane()
{
    const QString longName = QString(120, 'w');
    QVERIFY(QDir(dir.path()).mkpath(longName));
    storeRecent({folder(longName)});
    MainWindow window;
    window.resize(986, 513);
    window.show();
    auto* tabs = window.findChild<QTabWidget*>("tabWidget");
    auto* recent = window.findChild<QWidget*>("recentGroupBox");
    const int tabsBefore = tabs->width();
    // A path too long for its row is shortened to fit; the tooltip has it all.
    ClickableLabel* row = recentText(*window.findChild<DiskUsageForm*>(), 1);
    QVERIFY(row->text() == RecentFolders::shortenedPath(folder(longName)) ||
            row->text().contains(QChar(0x2026)));
    QVERIFY(row->fontMetrics().horizontalAdvance(row->text()) <= row->contentsRect().width());
    QCOMPARE(row->toolTip(), folder(longName));
    window.resize(1600, 513);
    QTRY_VERIFY(tabs->width() > tabsBefore + 300);
    QVERIFY(recent->width() <= 360);
}

void TestHomeScreen::recentRowsSayWhenEachFolderWasLastScanned()
{
    storeRecent({folder("alpha"), folder("beta"), folder("one"), folder("two")});
    const QDateTime scanned(QDate(2020, 3, 5), QTime(10, 0), QTimeZone::utc());
    SettingsStore::writeString("RecentTime1", scanned.toString(Qt::ISODate));
    SettingsStore::writeString("RecentTime3", "not a time");
    SettingsStore::writeString("RecentTime4", QString());
    DiskUsageForm form(settings);
    form.show();
    QLabel* first = recentTime(form, 1);
    QVERIFY(first && first->isVisible());
    QCOMPARE(first->text(), RecentFolders::whenText(scanned, QDateTime::currentDateTimeUtc()));
    QCOMPARE(first->text(), QLocale().toString(scanned.toLocalTime().date(), "d MMM yyyy"));
    QVERIFY(first->toolTip().startsWith("Last scanned "));
    const QString dated = first->text();
    // Never scanned to the end, or a time that is not one: nothing said.
    for (int row = 2; row <= 4; ++row) {
        QVERIFY(recentTime(form, row));
        QVERIFY2(!recentTime(form, row)->isVisible(), qPrintable(QString::number(row)));
    }
    QVERIFY(!recentTime(form, 5)->isVisible());

    // A cancelled scan leaves the time of the last whole one.
    QTest::mouseClick(recentText(form, 1), Qt::LeftButton);
    auto* panel = resultsOf(form)->findChild<DiskUsageScanInfoForm*>();
    panel->findChild<QPushButton*>("pushButton")->click();
    QVERIFY(QTest::qWaitFor(
        [&] { return !resultsOf(form) && !form.isScanning && !form.isClearingRam; }, 20000));
    QCOMPARE(storedTime(1), scanned);
    QCOMPARE(recentTime(form, 1)->text(), dated);

    // Moved down by another folder, it keeps its time; the other gets one as
    // its scan ends.
    QTest::mouseClick(recentText(form, 2), Qt::LeftButton);
    QCOMPARE(form.recentFolders().first(), folder("beta"));
    QCOMPARE(storedTime(2), scanned);
    QVERIFY(finishScan(form));
    QVERIFY(storedTime(1) > scanned);
    QVERIFY(goBack(form));
    QCOMPARE(recentTime(form, 1)->text(), QStringLiteral("just now"));
    QCOMPARE(recentTime(form, 2)->text(), dated);
}

void TestHomeScreen::theLastScannedTextIsShortAndFriendly()
{
    // Local times, as the user reads them.
    const QDateTime now(QDate(2026, 11, 24), QTime(15, 0, 30));
    const auto when = [&now](const QDateTime& local) {
        return RecentFolders::whenText(local.toUTC(), now.toUTC());
    };
    QCOMPARE(when(now), QStringLiteral("just now"));
    QCOMPARE(when(now.addSecs(-59)), QStringLiteral("just now"));
    QCOMPARE(when(now.addSecs(-60)), QStringLiteral("1 min ago"));
    QCOMPARE(when(now.addSecs(-59 * 60)), QStringLiteral("59 min ago"));
    QCOMPARE(when(QDateTime(now.date(), QTime(9, 5))), QStringLiteral("today 09:05"));
    QCOMPARE(when(QDateTime(now.date(), QTime(0, 0))), QStringLiteral("today 00:00"));
    QCOMPARE(when(QDateTime(QDate(2026, 11, 23), QTime(23, 59))),
             QStringLiteral("yesterday 23:59"));
    QCOMPARE(when(QDateTime(QDate(2026, 11, 21), QTime(8, 0))), QStringLiteral("3 days ago"));
    QCOMPARE(when(QDateTime(QDate(2026, 11, 18), QTime(8, 0))), QStringLiteral("6 days ago"));
    QCOMPARE(when(QDateTime(QDate(2026, 11, 17), QTime(8, 0))),
             QLocale().toString(QDate(2026, 11, 17), "d MMM"));
    QCOMPARE(when(QDateTime(QDate(2025, 12, 31), QTime(8, 0))),
             QLocale().toString(QDate(2025, 12, 31), "d MMM yyyy"));
    // A clock set back: the date, not a time to come.
    QCOMPARE(when(now.addDays(2)), QLocale().toString(QDate(2026, 11, 26), "d MMM yyyy"));
    QCOMPARE(RecentFolders::whenText({}, now), QString());
}

void TestHomeScreen::aFinishedScanIsKeptDatedAndDeletedFromTheOptions()
{
#ifndef Q_OS_WIN
    // Not the user's own data folder.
    QVERIFY(ScanHistory::defaultLocation().startsWith(QDir::tempPath()));
#endif
    storeRecent({folder("alpha")});
    DiskUsageForm form(settings);
    form.show();
    QVERIFY(!recentTime(form, 1)->isVisible());
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    QTest::mouseClick(recentText(form, 1), Qt::LeftButton);
    QVERIFY(finishScan(form));

    // Dated at once, kept behind the results.
    const QDateTime scanned = storedTime(1);
    QVERIFY(scanned.isValid());
    QVERIFY(scanned >= before && scanned <= QDateTime::currentDateTimeUtc());
    ScanHistory history;
    QTRY_COMPARE_WITH_TIMEOUT(history.scansOf(folder("alpha")).size(), 1, 20000);
    QCOMPARE(history.lastScanned(folder("alpha")), std::optional(scanned));
    QVERIFY(goBack(form));
    QVERIFY(recentTime(form, 1)->isVisible());
    QCOMPARE(recentTime(form, 1)->text(), QStringLiteral("just now"));

    // The options count it, and delete it when asked.
    auto* options = form.findChild<DiskUsageOptionsForm*>();
    auto* count = options->findChild<QLabel*>("savedScansLabel");
    QTRY_VERIFY(count->text().startsWith("1 saved scan, "));
    setTab(form, 2);
    options->findChild<QTabWidget*>("tabWidget")
        ->setCurrentWidget(options->findChild<QWidget*>("historyTab"));
    QStringList told;
    QTimer answerer;
    connect(&answerer, &QTimer::timeout, this, [&told] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        told << box->text();
        box->button(box->button(QMessageBox::Yes) ? QMessageBox::Yes : QMessageBox::Ok)->click();
    });
    answerer.start(10);
    QTest::mouseClick(options->findChild<QPushButton*>("deleteSavedScansButton"), Qt::LeftButton);
    QTRY_COMPARE(told.size(), 2);
    answerer.stop();
    QVERIFY2(told.at(0).startsWith("Delete the saved scan? It takes "), qPrintable(told.at(0)));
    QVERIFY2(told.at(1).startsWith("The saved scans were deleted: "), qPrintable(told.at(1)));
    QVERIFY(history.all().isEmpty());
    QCOMPARE(count->text(), QStringLiteral("No saved scans"));
    // The time of the last scan is the recent folder's, not the history's.
    QVERIFY(recentTime(form, 1)->isVisible());
}

void TestHomeScreen::withTheHistoryOffAScanIsDatedButNotKept()
{
    settings.history.enabled = false;
    storeRecent({folder("alpha")});
    {
        DiskUsageForm form(settings);
        form.show();
        QTest::mouseClick(recentText(form, 1), Qt::LeftButton);
        QVERIFY(finishScan(form));
        QVERIFY(goBack(form));
        QCOMPARE(recentTime(form, 1)->text(), QStringLiteral("just now"));
    }
    settings.history.enabled = true;
    QVERIFY(storedTime(1).isValid());
    // The form waited for any write as it went: there was none.
    QVERIFY(ScanHistory().all().isEmpty());
}

QTEST_MAIN(TestHomeScreen)
#include "tst_homescreen.moc"
