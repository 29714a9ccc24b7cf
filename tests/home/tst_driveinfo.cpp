#include "home/DiskUsageDetailInfoDialog.h"
#include "home/DriveInfo.h"

#include <QTreeView>

#include <QtTest>

using namespace platform::VolumeFlag;

class TestDriveInfo : public QObject {
    Q_OBJECT

private slots:
    void serialText_data();
    void serialText();
    void figuresAndTexts();
    void namesAndFeatures();
    void thisMachinesDisks();
    void theDetailsDialog();
};

void TestDriveInfo::serialText_data()
{
    QTest::addColumn<quint32>("serial");
    QTest::addColumn<QString>("text");
    QTest::newRow("eight digits") << 0x1A2B3C4Du << "1A2B-3C4D";
    QTest::newRow("not zero-padded") << 0x00AB12CDu << "AB12-CD";
    QTest::newRow("four digits") << 0x0000BEEFu << "BEEF-";
    QTest::newRow("blank-padded") << 0xBEu << "  BE-";
    QTest::newRow("none") << 0u << "   0-";
}

void TestDriveInfo::serialText()
{
    QFETCH(quint32, serial);
    QFETCH(QString, text);
    QCOMPARE(DriveInfo::serialText(serial), text);
}

void TestDriveInfo::figuresAndTexts()
{
    platform::VolumeRecord volume;
    volume.drive = L"C:";
    volume.rootPath = L"C:\\";
    volume.totalBytes = 100ull << 30;
    volume.freeToCaller = 25ull << 30;
    volume.totalClusters = 26214400;
    volume.sectorsPerCluster = 8;
    volume.bytesPerSector = 512;
    DriveInfo drive = DriveInfo::fromVolume(volume);
    QCOMPARE(drive.sizeText(), QStringLiteral("25.00 GB free of 100.00 GB (25.00%)"));
    QCOMPARE(drive.usedPercent(), 75);
    QCOMPARE(drive.totalClusters, QStringLiteral("26214400"));
    QCOMPARE(drive.bytesPerSector, QStringLiteral("512"));

    volume.freeToCaller = (125ull << 30) / 10; // 12.5 GB
    drive = DriveInfo::fromVolume(volume);
    QCOMPARE(drive.freePercentText, QStringLiteral("12.50%"));
    QCOMPARE(drive.usedPercent(), 87); // truncated, not rounded
}

void TestDriveInfo::namesAndFeatures()
{
    platform::VolumeRecord volume;
    volume.drive = L"C:";
    volume.label = L"System";
    volume.flags = CasePreservedNames | UnicodeOnDisk | VolumeQuotas;
    DriveInfo drive = DriveInfo::fromVolume(volume);
    QCOMPARE(drive.name, QStringLiteral("System (C:)"));
    QCOMPARE(drive.letter, 'C');
    QVERIFY(drive.features[0]);  // Case is Preserved
    QVERIFY(!drive.features[1]); // Case Sensitive
    QVERIFY(drive.features[16]); // Unicode in File Names Support
    QVERIFY(drive.features[18]); // Disk Quotas Support
    QCOMPARE(std::count(drive.features.begin(), drive.features.end(), true), 3);

    volume.drive = L"/home";
    volume.label.clear();
    drive = DriveInfo::fromVolume(volume);
    QCOMPARE(drive.name, QStringLiteral(" (/home)"));
    QCOMPARE(drive.letter, 0);
}

void TestDriveInfo::thisMachinesDisks()
{
    const QList<DriveInfo> drives = DriveInfo::readDrives();
    if (drives.isEmpty())
        QSKIP("this machine has no local block-device file system (an overlay root?)");
    for (const DriveInfo& drive : drives) {
        QVERIFY(QFileInfo(drive.rootPath).isDir());
        QVERIFY(drive.usedPercent() >= 0 && drive.usedPercent() <= 100);
        QVERIFY(drive.totalSpace.endsWith(" GB"));
    }
}

void TestDriveInfo::theDetailsDialog()
{
    platform::VolumeRecord volume;
    volume.drive = L"C:";
    volume.rootPath = L"C:\\";
    volume.label = L"System";
    volume.serialNumber = 0x1A2B3C4D;
    volume.fileSystem = L"NTFS";
    volume.totalBytes = 100ull << 30;
    volume.freeToCaller = 25ull << 30;
    volume.flags = CaseSensitiveSearch | VolumeQuotas;
    DiskUsageDetailInfoDialog dialog;
    dialog.fill(DriveInfo::fromVolume(volume));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("System (C:)"));

    const auto* view = dialog.findChild<QTreeView*>("treeView");
    const QAbstractItemModel* model = view->model();
    QCOMPARE(model->rowCount(), 2);
    const QModelIndex general = model->index(0, 0);
    const QModelIndex features = model->index(1, 0);
    QCOMPARE(general.data().toString(), QStringLiteral("General"));
    QVERIFY(!general.data(Qt::DecorationRole).value<QIcon>().isNull());
    QCOMPARE(model->rowCount(general), 10);
    QCOMPARE(model->index(1, 1, general).data().toString(), QStringLiteral("1A2B-3C4D"));
    QCOMPARE(model->index(4, 0, general).data().toString(), QStringLiteral("Total Space"));
    QCOMPARE(model->index(4, 1, general).data().toString(), QStringLiteral("100.00 GB"));
    QCOMPARE(features.data().toString(), QStringLiteral("File System Features"));
    QCOMPARE(model->rowCount(features), 19);
    QCOMPARE(model->index(1, 0, features).data().toString(), QStringLiteral("Case Sensitive"));
    QCOMPARE(model->index(1, 1, features).data().toString(), QStringLiteral("Yes"));
    QCOMPARE(model->index(0, 1, features).data().toString(), QStringLiteral("No"));
    QCOMPARE(model->index(18, 1, features).data().toString(), QStringLiteral("Yes"));
    QVERIFY(view->isExpanded(general) && view->isExpanded(features));
    QCOMPARE(view->columnWidth(0), 340);
}

QTEST_MAIN(TestDriveInfo)
#include "tst_driveinfo.moc"
