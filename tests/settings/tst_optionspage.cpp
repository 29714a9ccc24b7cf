#include "IsolatedSettings.h"
#include "NextModal.h"
#include "TestSupport.h"
#include "results/DiskUsageScanProgressForm.h"
#include "settings/DiskUsageAddFileTypesDialog.h"
#include "settings/DiskUsageEditFileTypesDialog.h"
#include "settings/DiskUsageOptionsForm.h"
#include "settings/Settings.h"
#include "settings/SettingsStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTreeView>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

class TestOptionsPage : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void theEditorsChangeACategory();
    void theEditorIsLenient();
    void anUncheckedCategoryIsSavedAndSkippedByAScan();
    void aSaveThatFailsSaysSoAndStaysUnsaved();
    void tenFoldersAtMostAndNoneTwice();
    void anExcludedFolderIsLeftOutOfAScan();
    void removalsLeaveNothingUnsaved();
    void aCheckBoxToggledByKeyIsAChange();
    void restoreTheDefaults();
    void badStoredValues();
    void theAppearanceIsSavedAndHandedBack();
    void aMissingOrUnknownAppearanceFollowsTheSystem_data();
    void aMissingOrUnknownAppearanceFollowsTheSystem();
    void theScanHistorySettingsAreSavedAndHandedBack();
    void missingOrOutOfRangeHistoryValuesAreTheDefaults_data();
    void missingOrOutOfRangeHistoryValuesAreTheDefaults();
    void deletingSavedScansAsksNamingHowManyAndHowMuch();

private:
    // A page filled from the stored settings, as the home screen makes it;
    // what it saves becomes `current`, as in the main window.
    std::unique_ptr<DiskUsageOptionsForm> page();
    static QTreeWidget* fileTypes(QWidget* form)
    {
        return form->findChild<QTreeWidget*>("treeWidget");
    }
    static QTreeWidget* folders(QWidget* form)
    {
        return form->findChild<QTreeWidget*>("excludeTreeWidget");
    }
    static QPushButton* button(QWidget* form, const char* name)
    {
        return form->findChild<QPushButton*>(name);
    }
    static QStringList texts(const QTreeWidget* tree);
    static void clickCheckBox(QTreeWidget* tree, QTreeWidgetItem* item);
    // Chooses `path` in the next folder picker (Linux only).
    static void pickFolder(const QString& path);
    // The scanned folder's subfolders; with totals, each shown category's total.
    QString scanAndListFolders(const QString& root, QMap<QString, QString>* totals = nullptr);
    void makeFile(const QString& relative, qint64 size);
    QString path(const QString& relative) const
    {
        return QDir::toNativeSeparators(dir.filePath(relative));
    }

    IsolatedSettings isolated;
    QTemporaryDir dir;
    // The settings scans are made with.
    Settings current;
};

#define SKIP_WITHOUT_DRIVABLE_PICKER()                                                             \
    if (QSysInfo::kernelType() == QLatin1String("winnt"))                                          \
    QSKIP("the Windows folder picker is the shell's own window; the picker is driven on Linux")

void TestOptionsPage::initTestCase()
{
    makeFile("tree/song.mp3", 300'000);
    makeFile("tree/notes.txt", 2'000);
    makeFile("tree/cache/big.bin", 1'000'000);
    for (const char* name :
         {"one", "two", "three", "Four", "five", "six", "seven", "eight", "nine", "ten", "eleven"})
        QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("folders/") + name));
}

void TestOptionsPage::init()
{
    isolated.clear();
    current = Settings::defaults();
}

void TestOptionsPage::makeFile(const QString& relative, qint64 size)
{
    QVERIFY(writeSizedFile(dir.filePath(relative), size));
}

std::unique_ptr<DiskUsageOptionsForm> TestOptionsPage::page()
{
    current = Settings::load();
    auto form = std::make_unique<DiskUsageOptionsForm>();
    form->edit(current);
    connect(form.get(), &DiskUsageOptionsForm::saved, this,
            [this](const Settings& saved) { current = saved; });
    form->show();
    return form;
}

QStringList TestOptionsPage::texts(const QTreeWidget* tree)
{
    QStringList result;
    for (int row = 0; row < tree->topLevelItemCount(); ++row)
        result << tree->topLevelItem(row)->text(0);
    return result;
}

void TestOptionsPage::clickCheckBox(QTreeWidget* tree, QTreeWidgetItem* item)
{
    tree->scrollToItem(item);
    QStyleOptionViewItem option;
    option.initFrom(tree);
    option.rect = tree->visualItemRect(item);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    const QRect box =
        tree->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, tree);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, box.center());
}

void TestOptionsPage::pickFolder(const QString& folder)
{
    onNextModal([folder](QWidget* modal) {
        auto* picker = qobject_cast<QFileDialog*>(modal);
        QVERIFY(picker);
        chooseFolder(picker, folder);
    });
}

// Scans a folder through the results screen; the paths of its folder rows.
QString TestOptionsPage::scanAndListFolders(const QString& root, QMap<QString, QString>* totals)
{
    DiskUsageScanProgressForm results;
    QSignalSpy finished(&results, &DiskUsageScanProgressForm::scanFinish);
    results.startScanning(ScanRequest::of(root, current));
    if (!finished.wait(20000))
        return QStringLiteral("(no results)");
    const QAbstractItemModel* model = results.findChild<QTreeView*>("treeView")->model();
    QStringList names;
    const QModelIndex top = model->index(0, 0);
    for (int row = 0; row < model->rowCount(top); ++row)
        names << model->index(row, 0, top).data().toString();
    names.sort();
    const QAbstractItemModel* categories =
        results.findChild<QTreeView*>("dataFilesTreeView")->model();
    for (int row = 0; totals && row < categories->rowCount(); ++row) {
        const QString name = categories->index(row, 0).data().toString();
        if (!name.isEmpty())
            totals->insert(name, categories->index(row, 1).data().toString());
    }
    return names.join(',');
}

void TestOptionsPage::theEditorsChangeACategory()
{
    auto form = page();
    QTreeWidget* tree = fileTypes(form.get());
    QCOMPARE(tree->topLevelItemCount(), 12);
    QVERIFY(!form->hasUnsavedChanges());
    tree->setCurrentItem(tree->topLevelItem(6));
    QCOMPARE(tree->currentItem()->text(0), QStringLiteral("Font Files (.fnt, .fon, .otf, .ttf)"));

    QTest::mouseClick(button(form.get(), "FileTypesEditButton"), Qt::LeftButton);
    QPointer editor = form->findChild<DiskUsageEditFileTypesDialog*>();
    QVERIFY(editor && editor->isVisible() && !editor->isModal());
    auto* extensions = editor->findChild<QTreeWidget*>("treeWidget");
    QCOMPARE(texts(extensions), QStringList({".fnt", ".fon", ".otf", ".ttf"}));

    QTest::mouseClick(button(editor, "AddButton"), Qt::LeftButton);
    QPointer adder = editor->findChild<DiskUsageAddFileTypesDialog*>();
    QVERIFY(adder && adder->isVisible());
    QTest::keyClicks(adder->findChild<QLineEdit*>("FileTypeLineEdit"), "PNG");
    QTest::mouseClick(button(adder, "OKButton"), Qt::LeftButton);
    QTRY_VERIFY(!adder);
    QCOMPARE(texts(extensions).last(), QStringLiteral(".PNG"));

    extensions->setCurrentItem(extensions->topLevelItem(0));
    answerNextMessage(QMessageBox::Yes);
    QTest::mouseClick(button(editor, "DeleteButton"), Qt::LeftButton);
    QCOMPARE(texts(extensions), QStringList({".fon", ".otf", ".ttf", ".PNG"}));

    QTest::mouseClick(button(editor, "SaveButton"), Qt::LeftButton);
    QTRY_VERIFY(!editor);
    QCOMPARE(tree->topLevelItem(6)->text(0), QStringLiteral("Font Files (.fon, .otf, .ttf, .PNG)"));
    QVERIFY(form->hasUnsavedChanges());
    // Nothing is stored and the scan's catalogue is as it was until "Save".
    QCOMPARE(current.catalogue.at(6).extensions.size(), 4);
    QCOMPARE(SettingsStore::readDword("FileTypeDataCount"), std::nullopt);

    QTest::mouseClick(button(form.get(), "saveButton"), Qt::LeftButton);
    QVERIFY(!form->hasUnsavedChanges());
    QCOMPARE(SettingsStore::readDword("FileTypeDataCount"), std::optional<quint32>(12));
    QCOMPARE(SettingsStore::readString("FileTypeData6"),
             std::optional<QString>("1;Font Files (.fon, .otf, .ttf, .PNG)"));
    QCOMPARE(current.catalogue.at(6).extensions, QStringList({".fon", ".otf", ".ttf", ".PNG"}));
}

void TestOptionsPage::theEditorIsLenient()
{
    QPointer editor = new DiskUsageEditFileTypesDialog;
    QSignalSpy sent(editor.data(), &DiskUsageEditFileTypesDialog::newValue);
    editor->setValue("Font Files (.fnt,.ttf )");
    auto* extensions = editor->findChild<QTreeWidget*>("treeWidget");
    QCOMPARE(texts(extensions), QStringList({".fnt", ".ttf"}));

    editor->addExtension(QString());
    QVERIFY(!button(editor, "SaveButton")->isEnabled());
    for (const char* typed : {"png", ".png", "a,b(c);d"})
        editor->addExtension(QString::fromLatin1(typed));
    QCOMPARE(texts(extensions), QStringList({".fnt", ".ttf", ".png", ".png", ".a,b(c);d"}));
    QVERIFY(button(editor, "SaveButton")->isEnabled());

    // "No" keeps the row, and still counts as a change.
    auto* other = new DiskUsageEditFileTypesDialog;
    other->setValue("Font Files (.fnt)");
    answerNextMessage(QMessageBox::No);
    QTest::mouseClick(button(other, "DeleteButton"), Qt::LeftButton);
    QCOMPARE(texts(other->findChild<QTreeWidget*>("treeWidget")), QStringList({".fnt"}));
    QVERIFY(button(other, "SaveButton")->isEnabled());
    QSignalSpy otherSent(other, &DiskUsageEditFileTypesDialog::newValue);
    QTest::mouseClick(button(other, "CancelButton"), Qt::LeftButton);
    QCOMPARE(otherSent.size(), 0);

    // All deleted: the text ends in " (".
    while (extensions->topLevelItemCount() > 0) {
        answerNextMessage(QMessageBox::Yes);
        QTest::mouseClick(button(editor, "DeleteButton"), Qt::LeftButton);
    }
    QTest::mouseClick(button(editor, "SaveButton"), Qt::LeftButton);
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.at(0).at(0).toString(), QStringLiteral("Font Files ("));
    QTRY_VERIFY(!editor);
}

void TestOptionsPage::anUncheckedCategoryIsSavedAndSkippedByAScan()
{
    {
        auto form = page();
        QTreeWidget* tree = fileTypes(form.get());
        clickCheckBox(tree, tree->topLevelItem(1));
        QCOMPARE(tree->topLevelItem(1)->checkState(0), Qt::Unchecked);
        QVERIFY(form->hasUnsavedChanges());
        // Until "Save" a scan still sorts audio files.
        QVERIFY(current.catalogue.at(1).checked);
        clickCheckBox(tree, tree->topLevelItem(1));
        clickCheckBox(tree, tree->topLevelItem(1));
        QTest::mouseClick(button(form.get(), "saveButton"), Qt::LeftButton);
    }
    const auto stored = SettingsStore::readString("FileTypeData1");
    QVERIFY(stored && stored->startsWith("0;Audio Files (.aac, .aif, "));

    // As at the next start.
    current = {};
    auto restarted = page();
    QCOMPARE(fileTypes(restarted.get())->topLevelItem(1)->checkState(0), Qt::Unchecked);
    QCOMPARE(fileTypes(restarted.get())->topLevelItem(5)->checkState(0), Qt::Checked);
    QVERIFY(!current.catalogue.at(1).checked);

    QMap<QString, QString> totals;
    scanAndListFolders(path("tree"), &totals);
    QVERIFY(!totals.contains("Audio Files"));
    QCOMPARE(totals.value("Document Files"), QStringLiteral("1.95 KB"));
}

void TestOptionsPage::aSaveThatFailsSaysSoAndStaysUnsaved()
{
    if (QSysInfo::kernelType() == QLatin1String("winnt"))
        QSKIP("the registry takes what it is given; on Linux the settings file is made unwritable");
    auto form = page();
    QTreeWidget* tree = fileTypes(form.get());
    clickCheckBox(tree, tree->topLevelItem(1));
    const QString file = SettingsStore::location();
    QFile::remove(file);
    QVERIFY(QDir().mkpath(file)); // a folder where the file should be: nothing can be written

    QString title;
    QString text;
    answerNextMessage(QMessageBox::Ok, &title, &text);
    QVERIFY(!form->save());
    QCOMPARE(title, QStringLiteral("Settings not saved"));
    QVERIFY(text.contains(file));
    QVERIFY(form->hasUnsavedChanges());
    QVERIFY(current.catalogue.at(1).checked); // scans keep what was saved

    QVERIFY(QDir(file).removeRecursively());
    QVERIFY(form->save());
    QVERIFY(!form->hasUnsavedChanges());
    QVERIFY(!current.catalogue.at(1).checked);
}

void TestOptionsPage::tenFoldersAtMostAndNoneTwice()
{
    SKIP_WITHOUT_DRIVABLE_PICKER();
    const QStringList names{"one", "two", "three", "Four", "five", "six", "seven", "eight", "nine"};
    for (int n = 0; n < names.size(); ++n)
        SettingsStore::writeString(QStringLiteral("ExludeFolder%1").arg(n),
                                   "1;" + path("folders/" + names.at(n)));
    auto form = page();
    QCOMPARE(folders(form.get())->topLevelItemCount(), 9);

    pickFolder(path("folders/ten"));
    QTest::mouseClick(button(form.get(), "excludeAddButton"), Qt::LeftButton);
    QCOMPARE(folders(form.get())->topLevelItemCount(), 10);
    QCOMPARE(folders(form.get())->currentItem()->text(0), path("folders/ten"));
    QCOMPARE(folders(form.get())->currentItem()->checkState(0), Qt::Checked);
    // Unsaved, the tenth is still scanned; saved, it is left out.
    QCOMPARE(scanAndListFolders(path("folders")), QStringLiteral("eleven,ten"));
    QTest::mouseClick(button(form.get(), "saveButton"), Qt::LeftButton);
    QCOMPARE(scanAndListFolders(path("folders")), QStringLiteral("eleven"));

    // The eleventh is dropped without a word, yet "Save" lights up.
    pickFolder(path("folders/eleven"));
    QTest::mouseClick(button(form.get(), "excludeAddButton"), Qt::LeftButton);
    QCOMPARE(folders(form.get())->topLevelItemCount(), 10);
    QVERIFY(form->hasUnsavedChanges());

    // The same folder in other letters: Linux calls FOUR another folder, but
    // the list compares as Windows does.
    QTest::mouseClick(button(form.get(), "excludeRemoveButton"), Qt::LeftButton);
    QCOMPARE(folders(form.get())->topLevelItemCount(), 9);
    QVERIFY(QDir(dir.path()).mkpath("folders/FOUR"));
    pickFolder(path("folders/FOUR"));
    QTest::mouseClick(button(form.get(), "excludeAddButton"), Qt::LeftButton);
    QCOMPARE(folders(form.get())->topLevelItemCount(), 9);
    QVERIFY(!texts(folders(form.get())).contains(path("folders/FOUR")));
}

void TestOptionsPage::anExcludedFolderIsLeftOutOfAScan()
{
    QCOMPARE(scanAndListFolders(path("tree")), QStringLiteral("cache"));
    SettingsStore::writeString("ExludeFolder0", "1;" + path("tree/cache"));
    SettingsStore::writeString("ExludeFolder1", "0;" + path("tree"));
    SettingsStore::writeString("ExludeFolder2", "1;" + path("gone"));
    auto form = page();
    QCOMPARE(texts(folders(form.get())),
             QStringList({path("tree/cache"), path("tree"), path("gone")}));
    QCOMPARE(scanAndListFolders(path("tree")), QString());

    // Unchecked and saved: the folder is back in the next scan.
    clickCheckBox(folders(form.get()), folders(form.get())->topLevelItem(0));
    QVERIFY(form->hasUnsavedChanges());
    form->save();
    QCOMPARE(SettingsStore::readString("ExludeFolder0"),
             std::optional<QString>("0;" + path("tree/cache")));
    QCOMPARE(SettingsStore::readString("ExludeFolder2"),
             std::optional<QString>("1;" + path("gone")));
    QCOMPARE(scanAndListFolders(path("tree")), QStringLiteral("cache"));
}

void TestOptionsPage::removalsLeaveNothingUnsaved()
{
    for (int n = 0; n < 3; ++n)
        SettingsStore::writeString(QStringLiteral("ExludeFolder%1").arg(n),
                                   "1;" + path(QStringLiteral("folders/f%1").arg(n)));
    auto form = page();
    QCOMPARE(folders(form.get())->currentItem()->text(0), path("folders/f2"));
    QTest::mouseClick(button(form.get(), "excludeRemoveButton"), Qt::LeftButton);
    QCOMPARE(texts(folders(form.get())), QStringList({path("folders/f0"), path("folders/f1")}));
    QCOMPARE(current.exclusions.size(), 3); // scans still leave out all three
    QVERIFY(!form->hasUnsavedChanges());

    // Saved afterwards, the stored third value stays and comes back.
    auto* oneDrive = form->findChild<QCheckBox*>("excludeOneDrivecheckBox");
    oneDrive->click();
    QVERIFY(form->hasUnsavedChanges());
    form->save();
    QCOMPARE(SettingsStore::readDword("ExcludeOneDriveFolder"), std::optional<quint32>(1));
    QVERIFY(current.excludeOneDrive);
    QCOMPARE(current.exclusions.size(), 3);
    QCOMPARE(folders(form.get())->topLevelItemCount(), 2);
}

void TestOptionsPage::aCheckBoxToggledByKeyIsAChange()
{
    SettingsStore::writeString(QStringLiteral("ExludeFolder0"), "1;" + path("folders/f0"));
    for (const char* name : {"treeWidget", "excludeTreeWidget"}) {
        auto form = page();
        auto* tree = form->findChild<QTreeWidget*>(name);
        tree->setFocus();
        tree->setCurrentItem(tree->topLevelItem(0));
        QTest::keyClick(tree, Qt::Key_Space);
        QCOMPARE(tree->topLevelItem(0)->checkState(0), Qt::Unchecked);
        QVERIFY2(form->hasUnsavedChanges(), name);
    }
}

void TestOptionsPage::restoreTheDefaults()
{
    SettingsStore::writeDword("FileTypeDataCount", 2);
    SettingsStore::writeString("FileTypeData0", "0;Audio Files (.mp3)");
    SettingsStore::writeString("FileTypeData1", "1;Mine (.abc)");
    auto form = page();
    QTreeWidget* tree = fileTypes(form.get());
    QCOMPARE(texts(tree), QStringList({"Audio Files (.mp3)", "Mine (.abc)"}));
    QVERIFY(!tree->topLevelItem(0)->icon(0).isNull());
    QVERIFY(tree->topLevelItem(1)->icon(0).isNull());
    tree->setCurrentItem(tree->topLevelItem(1));

    answerNextMessage(QMessageBox::No);
    QTest::mouseClick(button(form.get(), "FileTypesRestoreButton"), Qt::LeftButton);
    QCOMPARE(tree->topLevelItemCount(), 2);
    QCOMPARE(tree->currentIndex().row(), 1);
    QVERIFY(!form->hasUnsavedChanges());

    answerNextMessage(QMessageBox::Yes);
    QTest::mouseClick(button(form.get(), "FileTypesRestoreButton"), Qt::LeftButton);
    QCOMPARE(tree->topLevelItemCount(), 12);
    QCOMPARE(tree->currentIndex().row(), 1);
    QCOMPARE(tree->topLevelItem(1)->checkState(0), Qt::Checked);
    QVERIFY(form->hasUnsavedChanges());
    // Until "Save", scans keep sorting by the saved two.
    QCOMPARE(current.catalogue.size(), 2);
    QCOMPARE(SettingsStore::readDword("FileTypeDataCount"), std::optional<quint32>(2));
    form->save();
    QCOMPARE(current.catalogue.size(), 12);
    QCOMPARE(SettingsStore::readDword("FileTypeDataCount"), std::optional<quint32>(12));
}

void TestOptionsPage::badStoredValues()
{
    SettingsStore::writeDword("FileTypeDataCount", 4);
    SettingsStore::writeString("FileTypeData0", "1;No Parenthesis");
    SettingsStore::writeString("FileTypeData1", "no semicolon (.x)");
    SettingsStore::writeString("FileTypeData2", "0;Font Files (");
    SettingsStore::writeString("FileTypeData3", "1;Odd ( .a , ,.b)");
    SettingsStore::writeString("ExludeFolder0", "nonsense");
    SettingsStore::writeString("ExludeFolder1", "x;" + path("nowhere"));
    auto form = page();
    QTreeWidget* tree = fileTypes(form.get());
    const QStringList shown = texts(tree);
    QCOMPARE(shown.size(), 3);
    QCOMPARE(shown.at(1), QStringLiteral("Font Files ()"));
    QCOMPARE(texts(folders(form.get())), QStringList({path("nowhere")}));
    QCOMPARE(folders(form.get())->topLevelItem(0)->checkState(0), Qt::Unchecked);

    // The editor shows what it can of each.
    for (int row = 0; row < tree->topLevelItemCount(); ++row) {
        tree->setCurrentItem(tree->topLevelItem(row));
        QTest::mouseClick(button(form.get(), "FileTypesEditButton"), Qt::LeftButton);
        auto* editor = form->findChild<DiskUsageEditFileTypesDialog*>();
        QVERIFY(editor);
        QTest::mouseClick(button(editor, "CancelButton"), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QCOMPARE(texts(tree), shown);

    // What is shown is what is saved.
    form->save();
    const QStringList now = texts(tree);
    QCOMPARE(SettingsStore::readDword("FileTypeDataCount"), std::optional<quint32>(3));
    for (int row = 0; row < now.size(); ++row)
        QVERIFY(SettingsStore::readString(QStringLiteral("FileTypeData%1").arg(row))
                    ->endsWith(now.at(row)));
    QCOMPARE(SettingsStore::readString("ExludeFolder0"),
             std::optional<QString>("0;" + path("nowhere")));
}

void TestOptionsPage::theAppearanceIsSavedAndHandedBack()
{
    {
        auto form = page();
        auto* appearance = form->findChild<QComboBox*>("appearanceComboBox");
        QVERIFY(appearance);
        QCOMPARE(appearance->currentText(), QStringLiteral("Follow the system"));
        QVERIFY(!form->hasUnsavedChanges());
        appearance->setCurrentIndex(appearance->findText(QStringLiteral("Dark")));
        QVERIFY(form->hasUnsavedChanges());
        // Not stored before "Save".
        QCOMPARE(Settings::load().appearance, AppearanceChoice::FollowSystem);
        QTest::mouseClick(button(form.get(), "saveButton"), Qt::LeftButton);
        QVERIFY(!form->hasUnsavedChanges());
        QCOMPARE(current.appearance, AppearanceChoice::Dark);
        QCOMPARE(SettingsStore::readDword("Appearance"), std::optional<quint32>(2));
    }
    auto form = page();
    auto* appearance = form->findChild<QComboBox*>("appearanceComboBox");
    QCOMPARE(appearance->currentText(), QStringLiteral("Dark"));
    QVERIFY(!form->hasUnsavedChanges());
    appearance->setCurrentIndex(appearance->findText(QStringLiteral("Light")));
    QVERIFY(form->save());
    QCOMPARE(current.appearance, AppearanceChoice::Light);
    QCOMPARE(Settings::load().appearance, AppearanceChoice::Light);
}

void TestOptionsPage::aMissingOrUnknownAppearanceFollowsTheSystem_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("expected");
    QTest::newRow("missing") << QString() << int(AppearanceChoice::FollowSystem);
    QTest::newRow("0") << "0" << int(AppearanceChoice::FollowSystem);
    QTest::newRow("1") << "1" << int(AppearanceChoice::Light);
    QTest::newRow("2") << "2" << int(AppearanceChoice::Dark);
    QTest::newRow("3") << "3" << int(AppearanceChoice::FollowSystem);
    QTest::newRow("huge") << "4294967295" << int(AppearanceChoice::FollowSystem);
    QTest::newRow("text, not a number") << "text:2" << int(AppearanceChoice::FollowSystem);
}

// A number is stored as one; "text:" stores the rest as a string instead.
void TestOptionsPage::aMissingOrUnknownAppearanceFollowsTheSystem()
{
    QFETCH(QString, stored);
    QFETCH(int, expected);
    if (stored.startsWith(QLatin1String("text:")))
        SettingsStore::writeString("Appearance", stored.mid(5));
    else if (!stored.isEmpty())
        SettingsStore::writeDword("Appearance", stored.toUInt());
    QCOMPARE(int(Settings::load().appearance), expected);
    auto form = page();
    QCOMPARE(form->findChild<QComboBox*>("appearanceComboBox")->currentIndex(), expected);
    QVERIFY(!form->hasUnsavedChanges());
}

void TestOptionsPage::theScanHistorySettingsAreSavedAndHandedBack()
{
    QCOMPARE(Settings::defaults().history.enabled, true);
    QCOMPARE(Settings::defaults().history.perFolder, 5);
    QCOMPARE(Settings::defaults().history.megabytes, 512);
    {
        auto form = page();
        auto* keep = form->findChild<QCheckBox*>("keepHistoryCheckBox");
        auto* perFolder = form->findChild<QSpinBox*>("historyPerFolderSpinBox");
        auto* megabytes = form->findChild<QSpinBox*>("historySizeSpinBox");
        QVERIFY(keep && perFolder && megabytes);
        QVERIFY(keep->isChecked());
        QCOMPARE(perFolder->value(), 5);
        QCOMPARE(megabytes->value(), 512);
        QVERIFY(perFolder->isEnabled() && megabytes->isEnabled());

        perFolder->setValue(3);
        QVERIFY(form->hasUnsavedChanges());
        megabytes->setValue(2048);
        QCOMPARE(Settings::load().history.perFolder, 5);
        QTest::mouseClick(button(form.get(), "saveButton"), Qt::LeftButton);
        QVERIFY(!form->hasUnsavedChanges());
        QCOMPARE(current.history.perFolder, 3);
        QCOMPARE(current.history.totalBytes(), 2048LL << 20);
        QCOMPARE(SettingsStore::readDword("ScanHistoryPerFolder"), std::optional<quint32>(3));
        QCOMPARE(SettingsStore::readDword("ScanHistoryMegabytes"), std::optional<quint32>(2048));
        QCOMPARE(SettingsStore::readDword("KeepScanHistory"), std::optional<quint32>(1));

        // Off: the limits wait, as they were, for it to be on again.
        QTest::mouseClick(keep, Qt::LeftButton);
        QVERIFY(!keep->isChecked());
        QVERIFY(form->hasUnsavedChanges());
        QVERIFY(!perFolder->isEnabled() && !megabytes->isEnabled());
        QVERIFY(form->save());
        QCOMPARE(current.history.enabled, false);
        QCOMPARE(SettingsStore::readDword("KeepScanHistory"), std::optional<quint32>(0));
    }
    auto form = page();
    QVERIFY(!form->findChild<QCheckBox*>("keepHistoryCheckBox")->isChecked());
    QCOMPARE(form->findChild<QSpinBox*>("historyPerFolderSpinBox")->value(), 3);
    QCOMPARE(form->findChild<QSpinBox*>("historySizeSpinBox")->value(), 2048);
    QVERIFY(!form->findChild<QSpinBox*>("historySizeSpinBox")->isEnabled());
    QVERIFY(!form->hasUnsavedChanges());
}

void TestOptionsPage::missingOrOutOfRangeHistoryValuesAreTheDefaults_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("expected");
    QTest::newRow("on, missing") << "KeepScanHistory" << QString() << 1;
    QTest::newRow("on, 0") << "KeepScanHistory"
                           << "0" << 0;
    QTest::newRow("on, 2") << "KeepScanHistory"
                           << "2" << 1;
    QTest::newRow("on, text") << "KeepScanHistory"
                              << "text:0" << 1;
    QTest::newRow("count, missing") << "ScanHistoryPerFolder" << QString() << 5;
    QTest::newRow("count, 1") << "ScanHistoryPerFolder"
                              << "1" << 1;
    QTest::newRow("count, 0") << "ScanHistoryPerFolder"
                              << "0" << 5;
    QTest::newRow("count, 100") << "ScanHistoryPerFolder"
                                << "100" << 100;
    QTest::newRow("count, 101") << "ScanHistoryPerFolder"
                                << "101" << 5;
    QTest::newRow("count, huge") << "ScanHistoryPerFolder"
                                 << "4294967295" << 5;
    QTest::newRow("MB, missing") << "ScanHistoryMegabytes" << QString() << 512;
    QTest::newRow("MB, 0") << "ScanHistoryMegabytes"
                           << "0" << 512;
    QTest::newRow("MB, 1000000") << "ScanHistoryMegabytes"
                                 << "1000000" << 1000000;
    QTest::newRow("MB, 1000001") << "ScanHistoryMegabytes"
                                 << "1000001" << 512;
    QTest::newRow("MB, text") << "ScanHistoryMegabytes"
                              << "text:64" << 512;
}

// A number is stored as one; "text:" stores the rest as a string instead.
void TestOptionsPage::missingOrOutOfRangeHistoryValuesAreTheDefaults()
{
    QFETCH(QString, name);
    QFETCH(QString, stored);
    QFETCH(int, expected);
    if (stored.startsWith(QLatin1String("text:")))
        SettingsStore::writeString(name, stored.mid(5));
    else if (!stored.isEmpty())
        SettingsStore::writeDword(name, stored.toUInt());
    const HistoryChoice history = Settings::load().history;
    auto form = page();
    auto* keep = form->findChild<QCheckBox*>("keepHistoryCheckBox");
    auto* perFolder = form->findChild<QSpinBox*>("historyPerFolderSpinBox");
    auto* megabytes = form->findChild<QSpinBox*>("historySizeSpinBox");
    if (name == "KeepScanHistory") {
        QCOMPARE(int(history.enabled), expected);
        QCOMPARE(int(keep->isChecked()), expected);
    } else if (name == "ScanHistoryPerFolder") {
        QCOMPARE(history.perFolder, expected);
        QCOMPARE(perFolder->value(), expected);
    } else {
        QCOMPARE(history.megabytes, expected);
        QCOMPARE(megabytes->value(), expected);
    }
    QVERIFY(!form->hasUnsavedChanges());
}

void TestOptionsPage::deletingSavedScansAsksNamingHowManyAndHowMuch()
{
    auto form = page();
    auto* label = form->findChild<QLabel*>("savedScansLabel");
    QPushButton* remove = button(form.get(), "deleteSavedScansButton");
    QVERIFY(label && remove);
    // Until the screen that keeps them tells, there are none.
    QCOMPARE(label->text(), QStringLiteral("No saved scans"));
    QVERIFY(!remove->isEnabled());

    const qint64 bytes = 3LL << 20;
    const QString size = QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
    form->showSavedScans(7, bytes);
    QCOMPARE(label->text(), QStringLiteral("7 saved scans, %1").arg(size));
    QVERIFY(remove->isEnabled());
    form->findChild<QTabWidget*>("tabWidget")
        ->setCurrentWidget(form->findChild<QWidget*>("historyTab"));
    QVERIFY(remove->isVisible());

    QSignalSpy asked(form.get(), &DiskUsageOptionsForm::deleteSavedScans);
    QString title;
    QString text;
    answerNextMessage(QMessageBox::No, &title, &text);
    QTest::mouseClick(remove, Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Delete saved scans"));
    QVERIFY2(text.startsWith(QStringLiteral("Delete the 7 saved scans? They take %1.").arg(size)),
             qPrintable(text));
    QCOMPARE(asked.size(), 0);
    QVERIFY(!form->hasUnsavedChanges());

    // Yes: the keeper deletes them and answers; the page says it is done.
    QString told;
    connect(form.get(), &DiskUsageOptionsForm::deleteSavedScans, this, [&] {
        answerNextMessage(QMessageBox::Ok, nullptr, &told);
        form->savedScansDeleted(0, 0);
    });
    answerNextMessage(QMessageBox::Yes);
    QTest::mouseClick(remove, Qt::LeftButton);
    QCOMPARE(asked.size(), 1);
    QCOMPARE(told, QStringLiteral("The saved scans were deleted: %1 freed.").arg(size));
    QCOMPARE(label->text(), QStringLiteral("No saved scans"));
    QVERIFY(!remove->isEnabled());
    QVERIFY(!form->hasUnsavedChanges());
    disconnect(form.get(), &DiskUsageOptionsForm::deleteSavedScans, this, nullptr);

    // One that stayed is said.
    form->showSavedScans(1, 1000);
    answerNextMessage(QMessageBox::Yes, nullptr, &text);
    connect(form.get(), &DiskUsageOptionsForm::deleteSavedScans, this, [&] {
        answerNextMessage(QMessageBox::Ok, &title, &told);
        form->savedScansDeleted(1, 1000);
    });
    QTest::ignoreMessage(QtWarningMsg, "saved scans left: 1 deleted: 0");
    QTest::mouseClick(remove, Qt::LeftButton);
    QVERIFY2(text.startsWith(QStringLiteral("Delete the saved scan? It takes ")), qPrintable(text));
    QCOMPARE(title, QStringLiteral("Saved scans not deleted"));
    QCOMPARE(told, QStringLiteral("1 saved scan could not be deleted."));
    QCOMPARE(label->text(),
             QStringLiteral("1 saved scan, %1")
                 .arg(QLocale().formattedDataSize(1000, 1, QLocale::DataSizeTraditionalFormat)));
}

QTEST_MAIN(TestOptionsPage)
#include "tst_optionspage.moc"
