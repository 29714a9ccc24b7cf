// The Linux side of the platform layer: the settings file under bad input, and
// the user folders from the XDG configuration.

#include "DirectoryListing.h"
#include "IsolatedSettings.h"
#include "TestSupport.h"
#include "UserFolders.h"
#include "platform/NativeText.h"
#include "platform/Shell.h"
#include "posix/BlockDevices.h"
#include "posix/MountTable.h"
#include "settings/SettingsStore.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QtTest>

class TestPosixBackend : public QObject {
    Q_OBJECT

private slots:
    void init();
    void damagedLinesReadAsMissingAndSurviveAWrite();
    void garbageBytesGiveDefaultsAndLoseNoValue();
    void numbersOutOfRangeOrStoredAsTextAreMissing();
    void anUnreadableFileGivesDefaultsAndIsNotReplaced();
    void anUnusableConfigFolderGivesDefaults();
    void aWriteLeavesNoTemporaryFileBehind();
    void temporariesOfASaveCutShortAreRemovedWhenLoading();
    void aLinkedFileIsWrittenThroughAndKeepsItsMode();
    void aBatchWritesTheFileOnce();
    void namesThatAreNotUtf8ReachTheDesktopAsTheyAre();
    void userFoldersFollowTheXdgConfiguration();
    void oneDriveComesFromTheEnvironmentOrTheHomeFolder();
    void anotherFileSystemIsNotEntered();
    void localDisksFromTheMountTable();
    void spinningDisksFromSysfs();

private:
    static QString configHome() { return qEnvironmentVariable("XDG_CONFIG_HOME"); }
    static QString settingsPath() { return configHome() + "/Tallyroot/Tallyroot.conf"; }
    static void writeSettingsFile(const QByteArray& content);
    static QByteArray settingsFileContent();

    IsolatedSettings isolated;
};

void TestPosixBackend::init()
{
    QDir(configHome() + "/Tallyroot").removeRecursively();
}

void TestPosixBackend::writeSettingsFile(const QByteArray& content)
{
    QDir().mkpath(configHome() + "/Tallyroot");
    QFile file(settingsPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray TestPosixBackend::settingsFileContent()
{
    QFile file(settingsPath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestPosixBackend::damagedLinesReadAsMissingAndSurviveAWrite()
{
    writeSettingsFile("posX=dword:40\n"
                      "posY=dword:\n"
                      "width=dword:12a\n"
                      "RecentFile1=sz:bad escape \\q\n"
                      "no equals sign here\n"
                      "=dword:5\n"
                      "# a comment\n"
                      "height=dword:700\r\n");
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(40));
    QCOMPARE(SettingsStore::readDword("posY"), std::nullopt);
    QCOMPARE(SettingsStore::readDword("width"), std::nullopt);
    QCOMPARE(SettingsStore::readString("RecentFile1"), std::nullopt);
    QCOMPARE(SettingsStore::readDword("height"), std::optional<quint32>(700));

    QVERIFY(SettingsStore::writeString("RecentFile2", "/home/user/Music"));
    const QByteArray after = settingsFileContent();
    QVERIFY(after.contains("no equals sign here\n"));
    QVERIFY(after.contains("RecentFile1=sz:bad escape \\q\n"));
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(40));
    QCOMPARE(SettingsStore::readString("RecentFile2"), std::optional<QString>("/home/user/Music"));

    // Writing a damaged value replaces it.
    QVERIFY(SettingsStore::writeDword("width", 1200));
    QCOMPARE(SettingsStore::readDword("width"), std::optional<quint32>(1200));
}

void TestPosixBackend::garbageBytesGiveDefaultsAndLoseNoValue()
{
    QByteArray garbage;
    for (int i = 0; i < 4096; ++i)
        garbage.append(static_cast<char>((i * 7919) % 256));
    writeSettingsFile(garbage + "\nposY=dword:77\n" + garbage);
    QCOMPARE(SettingsStore::readDword("posX"), std::nullopt);
    QCOMPARE(SettingsStore::readDword("posY"), std::optional<quint32>(77));

    QVERIFY(SettingsStore::writeDword("posX", 5));
    QCOMPARE(SettingsStore::readDword("posY"), std::optional<quint32>(77));
    QVERIFY(settingsFileContent().contains(garbage));
}

void TestPosixBackend::numbersOutOfRangeOrStoredAsTextAreMissing()
{
    writeSettingsFile("posX=dword:4294967295\n"
                      "posY=dword:4294967296\n"
                      "width=dword:99999999999999999999999\n"
                      "height=sz:600\n"
                      "RecentFile1=dword:3\n");
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(4294967295u));
    QCOMPARE(SettingsStore::readDword("posY"), std::nullopt);
    QCOMPARE(SettingsStore::readDword("width"), std::nullopt);
    QCOMPARE(SettingsStore::readDword("height"), std::nullopt);
    QCOMPARE(SettingsStore::readString("RecentFile1"), std::nullopt);
}

void TestPosixBackend::anUnreadableFileGivesDefaultsAndIsNotReplaced()
{
    // A directory where the file should be cannot be read, even by root.
    QVERIFY(QDir().mkpath(settingsPath()));
    QCOMPARE(SettingsStore::readDword("posX"), std::nullopt);
    QVERIFY(!SettingsStore::writeDword("posX", 1));
    QVERIFY(QFileInfo(settingsPath()).isDir());

    // So can a file far larger than any settings this program writes.
    QVERIFY(QDir(settingsPath()).removeRecursively());
    writeSettingsFile("posX=dword:9\n" + QByteArray(17 * 1024 * 1024, '#'));
    QCOMPARE(SettingsStore::readDword("posX"), std::nullopt);
    QVERIFY(!SettingsStore::writeDword("posX", 1));
    QCOMPARE(QFileInfo(settingsPath()).size(), 13 + 17 * 1024 * 1024);
}

void TestPosixBackend::anUnusableConfigFolderGivesDefaults()
{
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    const QString blocker = configHome() + "/not-a-folder";
    QFile file(blocker);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    qputenv("XDG_CONFIG_HOME", blocker.toUtf8());
    QCOMPARE(SettingsStore::readDword("posX"), std::nullopt);
    QCOMPARE(SettingsStore::readString("RecentFile1"), std::nullopt);
    QVERIFY(!SettingsStore::writeDword("posX", 1));
    qputenv("XDG_CONFIG_HOME", saved);
}

void TestPosixBackend::aWriteLeavesNoTemporaryFileBehind()
{
    for (quint32 i = 0; i < 20; ++i)
        QVERIFY(SettingsStore::writeDword(QStringLiteral("FileTypeData%1").arg(i), i));
    const QStringList entries =
        QDir(configHome() + "/Tallyroot").entryList(QDir::Files | QDir::Hidden);
    QCOMPARE(entries, QStringList{"Tallyroot.conf"});
    QCOMPARE(SettingsStore::readDword("FileTypeData19"), std::optional<quint32>(19));
}

void TestPosixBackend::temporariesOfASaveCutShortAreRemovedWhenLoading()
{
    writeSettingsFile("posX=dword:40\n");
    const QString folder = configHome() + "/Tallyroot/";
    const auto leave = [&folder](const QString& name, qint64 secondsAgo) {
        QFile file(folder + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("# Tallyroot settings: one value a line, name=dword:number or name=sz:text\n");
        QVERIFY(file.flush());
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo),
                                 QFileDevice::FileModificationTime));
    };
    leave(".Tallyroot.conf.tmp-aB3dE9", 3600); // a killed save's
    leave("Tallyroot.conf.x7Kq2p", 3600);      // one of an earlier version's
    leave(".Tallyroot.conf.tmp-Zq81xP", 0);    // a save going on now
    leave("Tallyroot.conf.backup", 3600);      // the user's copy
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(40));
    const QStringList left = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    QCOMPARE(
        QSet<QString>(left.begin(), left.end()),
        (QSet<QString>{"Tallyroot.conf", ".Tallyroot.conf.tmp-Zq81xP", "Tallyroot.conf.backup"}));
}

void TestPosixBackend::aLinkedFileIsWrittenThroughAndKeepsItsMode()
{
    // Settings kept elsewhere (a dotfiles folder) and linked into place.
    const QString target = configHome() + "/elsewhere.conf";
    QFile::remove(target);
    QDir().mkpath(configHome() + "/Tallyroot");
    {
        QFile file(target);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("posX=dword:1\n");
    }
    QVERIFY(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                              QFile::ReadOther));
    QVERIFY(QFile::link(target, settingsPath()));

    QVERIFY(SettingsStore::writeDword("posY", 2));
    QVERIFY(QFileInfo(settingsPath()).isSymLink());
    QCOMPARE(SettingsStore::readDword("posX"), std::optional<quint32>(1));
    QCOMPARE(SettingsStore::readDword("posY"), std::optional<quint32>(2));
    QVERIFY(settingsFileContent().contains("posY=dword:2"));
    QCOMPARE(QFileInfo(target).permissions() & 0x0777, QFile::Permissions(0x0644));
    QFile::remove(target);
}

void TestPosixBackend::aBatchWritesTheFileOnce()
{
    SettingsStore::writeDword("posX", 1);
    const QDateTime before = QFileInfo(settingsPath()).lastModified();
    {
        SettingsStore::Batch batch;
        for (int n = 0; n < 1000; ++n)
            QVERIFY(SettingsStore::writeString(QStringLiteral("Value%1").arg(n), "x"));
        // Nothing reaches the file before the batch ends, but reads see it all.
        QCOMPARE(SettingsStore::readString("Value999"), std::optional<QString>("x"));
        QCOMPARE(QFileInfo(settingsPath()).lastModified(), before);
        QVERIFY(!settingsFileContent().contains("Value0="));
        QVERIFY(batch.finish());
    }
    QVERIFY(settingsFileContent().contains("Value999=sz:x"));
    QVERIFY(SettingsStore::storedValueCount() >= 1001);

    // A batch that cannot be written says so, and keeps nothing as written.
    QVERIFY(QFile::remove(settingsPath()));
    QVERIFY(QDir().mkpath(settingsPath())); // a folder where the file should be
    SettingsStore::Batch failing;
    SettingsStore::writeDword("posX", 9);
    QVERIFY(!failing.finish());
    QCOMPARE(SettingsStore::readDword("posX"), std::nullopt);
    QVERIFY(QDir(settingsPath()).removeRecursively());
}

void TestPosixBackend::namesThatAreNotUtf8ReachTheDesktopAsTheyAre()
{
    // Bytes that are not UTF-8, and UTF-8 that is cut short, among valid text.
    for (const std::string& name :
         {std::string("plain.txt"), std::string("bad\xff.txt"), std::string("\xc3\x9c ok \xe6\x97"),
          std::string("\xed\xa0\x80")}) {
        const QString shown = platform::toQString(name);
        QCOMPARE(platform::toNative(shown), name);
    }
    QCOMPARE(platform::toQString("\xc3\x9c"), QString::fromUtf8("\xc3\x9c"));

    FakeOpener opener;
    QObject context;
    bool failed = false;
    platform::openFile(platform::toQString("/tmp/bad\xff name.txt"), &context,
                       [&failed](const QString&) { failed = true; });
    QTRY_COMPARE(opener.given(), QStringList{"file:///tmp/bad%FF%20name.txt"});
    QTest::qWait(50);
    QVERIFY(!failed);
}

void TestPosixBackend::userFoldersFollowTheXdgConfiguration()
{
    const QString home = QDir::homePath();
    QFile dirs(configHome() + "/user-dirs.dirs");
    QVERIFY(dirs.open(QIODevice::WriteOnly));
    dirs.write("XDG_DOWNLOAD_DIR=\"$HOME/Fetched\"\nXDG_MUSIC_DIR=\"$HOME/Klänge\"\n");
    dirs.close();

    QCOMPARE(QString::fromStdWString(platform::downloadsFolderPath()), home + "/Fetched");
    QCOMPARE(QString::fromStdWString(platform::specialFolderPath(platform::SpecialFolder::Music)),
             home + QString::fromUtf8("/Klänge"));
    QCOMPARE(QString::fromStdWString(platform::specialFolderPath(platform::SpecialFolder::Profile)),
             home);
    QVERIFY(!platform::windowsFolderPath().empty());
    dirs.remove();
}

void TestPosixBackend::oneDriveComesFromTheEnvironmentOrTheHomeFolder()
{
    QTemporaryDir home;
    const QByteArray savedHome = qgetenv("HOME");
    qputenv("HOME", home.path().toUtf8());
    qputenv("OneDrive", "/mnt/cloud/OneDrive");
    QCOMPARE(SettingsStore::oneDrivePath(), QStringLiteral("/mnt/cloud/OneDrive"));

    qunsetenv("OneDrive");
    QCOMPARE(SettingsStore::oneDrivePath(), QString());
    QVERIFY(QDir(home.path()).mkdir("OneDrive"));
    QCOMPARE(SettingsStore::oneDrivePath(), home.path() + "/OneDrive");
    qputenv("HOME", savedHome);
}

void TestPosixBackend::anotherFileSystemIsNotEntered()
{
    // /proc is a file system of its own below /; /etc is not.
    const auto root = platform::DirectoryListing::open("/");
    QVERIFY(root.isOpen());
    QVERIFY(!root.openChild("proc").isOpen());
    QVERIFY(root.openChild("etc").isOpen());
    // Nor is a link to a folder ever entered.
    QTemporaryDir scratch;
    QVERIFY(QFile::link(scratch.path(), scratch.filePath("self")));
    QVERIFY(
        !platform::DirectoryListing::open(scratch.path().toStdString()).openChild("self").isOpen());
}

void TestPosixBackend::localDisksFromTheMountTable()
{
    const std::string mountInfo =
        "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
        "27 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
        "28 27 8:3 / /home rw,relatime shared:2 master:1 - xfs /dev/sda3 rw\n"
        "29 27 8:3 /shared /srv/shared rw - xfs /dev/sda3 rw\n"
        "30 27 7:0 / /snap/core/1 ro,nodev - squashfs /dev/loop0 ro\n"
        "31 27 0:40 / /mnt/nfs rw - nfs4 server:/export rw\n"
        "32 27 8:17 / /media/USB\\040Stick rw - vfat /dev/sdb1 rw\n"
        "33 27 8:18 / /mnt/old ro - ext4 /dev/sdb2 rw\n"
        "34 27 0:25 / /tmp rw - tmpfs tmpfs rw\n"
        "garbage line\n";
    const auto disks = posix::MountTable::localDisks(mountInfo);
    QStringList points;
    for (const auto& disk : disks)
        points << QString::fromStdString(disk.mountPoint);
    // Each device once, its whole file system rather than a bind mount of a part.
    QCOMPARE(points, (QStringList{"/", "/home", "/media/USB Stick", "/mnt/old"}));
    QCOMPARE(disks[1].fileSystem, std::string("xfs"));
    QVERIFY(!disks[0].readOnly);
    QVERIFY(disks[3].readOnly);
}

// A sysfs of our own: devices under devices/, linked from dev/block by number.
void TestPosixBackend::spinningDisksFromSysfs()
{
    QTemporaryDir sys;
    const auto write = [&sys](const QString& path, const QByteArray& content) {
        QVERIFY(QDir().mkpath(QFileInfo(sys.filePath(path)).path()));
        QFile file(sys.filePath(path));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    const auto link = [&sys](const QString& target, const QString& path) {
        QVERIFY(QDir().mkpath(QFileInfo(sys.filePath(path)).path()));
        QVERIFY(QFile::link(sys.filePath(target), sys.filePath(path)));
    };
    const auto disk = [&](const QString& name, const QByteArray& rotational,
                          const QByteArray& vendor) {
        write("devices/" + name + "/queue/rotational", rotational + "\n");
        write("devices/" + name + "/device/vendor", vendor + "\n");
    };
    disk("sda", "1", "ATA     ");
    write("devices/sda/sda1/partition", "1\n");
    disk("sdb", "0", "ATA");
    disk("sdc", "1", "QEMU    ");
    disk("vda", "1", "0x1af4");
    write("drivers/virtio_blk/bind", "");
    link("drivers/virtio_blk", "devices/vda/device/driver");
    disk("dm-0", "1", "");
    link("devices/sda/sda1", "devices/dm-0/slaves/sda1");
    disk("dm-1", "1", "");
    link("devices/vda", "devices/dm-1/slaves/vda");
    write("devices/odd/queue/rotational", "yes\n");
    const QStringList numbers{"8:1", "8:0", "8:16", "8:32", "253:0", "254:0", "254:1", "9:9"};
    const QStringList nodes{"sda/sda1", "sda", "sdb", "sdc", "vda", "dm-0", "dm-1", "odd"};
    for (qsizetype i = 0; i < numbers.size(); ++i)
        link("devices/" + nodes[i], "dev/block/" + numbers[i]);

    const QString block = sys.filePath("dev/block");
    // A partition is its disk's; a spinning disk spins, a solid one does not.
    QCOMPARE(posix::seeksAreSlow(block, 8, 1), std::optional(true));
    QCOMPARE(posix::seeksAreSlow(block, 8, 0), std::optional(true));
    QCOMPARE(posix::seeksAreSlow(block, 8, 16), std::optional(false));
    // A virtual disk, by its maker or its driver, tells nothing.
    QCOMPARE(posix::seeksAreSlow(block, 8, 32), std::nullopt);
    QCOMPARE(posix::seeksAreSlow(block, 253, 0), std::nullopt);
    // A device made of others is what they are.
    QCOMPARE(posix::seeksAreSlow(block, 254, 0), std::optional(true));
    QCOMPARE(posix::seeksAreSlow(block, 254, 1), std::nullopt);
    // What cannot be read, or is not there, tells nothing either.
    QCOMPARE(posix::seeksAreSlow(block, 9, 9), std::nullopt);
    QCOMPARE(posix::seeksAreSlow(block, 1, 1), std::nullopt);
}

QTEST_GUILESS_MAIN(TestPosixBackend)
#include "tst_posixbackend.moc"
