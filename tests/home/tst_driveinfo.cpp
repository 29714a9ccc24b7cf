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
    void aLinuxVolume();
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

namespace {

// The rows of one group of the details dialog, as "Field=Value".
QStringList rowsOf(const QAbstractItemModel* model, const QModelIndex& group)
{
    QStringList rows;
    for (int row = 0; row < model->rowCount(group); ++row)
        rows << model->index(row, 0, group).data().toString() + "=" +
                    model->index(row, 1, group).data().toString();
    return rows;
}

} // namespace

void TestDriveInfo::theDetailsDialog()
{
    platform::VolumeRecord volume;
    volume.drive = L"C:";
    volume.rootPath = L"C:\\";
    volume.label = L"System";
    volume.serialNumber = 0x1A2B3C4D;
    volume.totalBytes = 100ull << 30;
    volume.freeToCaller = 25ull << 30;
    volume.flags = CaseSensitiveSearch | VolumeQuotas;
    DiskUsageDetailInfoDialog dialog;
    dialog.fill(DriveInfo::fromVolume(volume));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("System (C:)"));
    const QAbstractItemModel* model = dialog.findChild<QTreeView*>("treeView")->model();
    QCOMPARE(model->rowCount(), 2);
    const QStringList general = rowsOf(model, model->index(0, 0));
    const QStringList features = rowsOf(model, model->index(1, 0));
    QCOMPARE(general.size(), 10);
    QVERIFY(general.contains("Serial Number=1A2B-3C4D"));
    QCOMPARE(features.size(), 19);
    QCOMPARE(features.filter("=Yes"),
             QStringList({"Case Sensitive=Yes", "Disk Quotas Support=Yes"}));
}

// A Linux mount without label or serial number names itself by mount point
// and device; its reserved blocks count neither as used nor as free, as df
// counts them; Windows-only features are left out of the details.
void TestDriveInfo::aLinuxVolume()
{
    platform::VolumeRecord volume;
    volume.drive = L"/";
    volume.rootPath = L"/";
    volume.device = L"/dev/vda";
    volume.hasSerialNumber = false;
    volume.totalBytes = 100ull << 30;
    volume.reservedBytes = 20ull << 30;
    volume.freeToCaller = 20ull << 30;
    volume.flags = CaseSensitiveSearch | HardLinks;
    volume.knownFlags = CaseSensitiveSearch | HardLinks | SparseFiles;
    const DriveInfo drive = DriveInfo::fromVolume(volume);
    QCOMPARE(drive.name, QStringLiteral("/ (/dev/vda)"));
    QCOMPARE(drive.serialNumber, QStringLiteral("n/a"));
    QCOMPARE(drive.sizeText(), QStringLiteral("20.00 GB free of 80.00 GB (25.00%)"));
    QCOMPARE(drive.usedPercent(), 75);
    QVERIFY(drive.sizeDetails().contains("20.00 GB is reserved"));

    DiskUsageDetailInfoDialog dialog;
    dialog.fill(drive);
    const QAbstractItemModel* model = dialog.findChild<QTreeView*>("treeView")->model();
    QVERIFY(rowsOf(model, model->index(0, 0)).contains("Reserved for the System=20.00 GB"));
    QCOMPARE(
        rowsOf(model, model->index(1, 0)),
        QStringList({"Case Sensitive=Yes", "Hard Links Support=Yes", "Sparse Files Support=No"}));
}

QTEST_MAIN(TestDriveInfo)
#include "tst_driveinfo.moc"
