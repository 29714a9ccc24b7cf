#include "BlockDevices.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace posix {

namespace {

QString firstLine(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromLatin1(file.readLine()).trimmed();
}

// Paravirtual disks by their driver, emulated ones by the vendor or model the
// hypervisor gives them.
bool isVirtualDisk(const QString& disk)
{
    static const QStringList drivers{"virtio_blk", "vbd", "xen_vbd", "hv_storvsc"};
    static const QStringList makers{"QEMU", "VBOX", "VMware", "Msft", "Virtual"};
    const QString driver =
        QFileInfo(QFileInfo(disk + "/device/driver").canonicalFilePath()).fileName();
    if (drivers.contains(driver))
        return true;
    const QString maker =
        firstLine(disk + "/device/vendor") + ' ' + firstLine(disk + "/device/model");
    return std::any_of(makers.begin(), makers.end(),
                       [&maker](const QString& name) { return maker.contains(name); });
}

// A device made of others (LVM, an encrypted volume) is virtual when all of
// its parts are.
bool isVirtual(const QString& disk, int depth = 0)
{
    const QStringList parts = QDir(disk + "/slaves").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (parts.isEmpty() || depth > 8)
        return isVirtualDisk(disk);
    return std::all_of(parts.begin(), parts.end(), [&](const QString& part) {
        const QString node = QFileInfo(disk + "/slaves/" + part).canonicalFilePath();
        return isVirtual(QFile::exists(node + "/partition") ? QFileInfo(node).path() : node,
                         depth + 1);
    });
}

} // namespace

std::optional<bool> seeksAreSlow(const QString& sysBlock, unsigned major, unsigned minor)
{
    const QString node = QFileInfo(QStringLiteral("%1/%2:%3").arg(sysBlock).arg(major).arg(minor))
                             .canonicalFilePath();
    if (node.isEmpty())
        return std::nullopt;
    // A partition's queue is its disk's.
    const QString disk = QFile::exists(node + "/partition") ? QFileInfo(node).path() : node;
    const QString rotational = firstLine(disk + "/queue/rotational");
    if (rotational != "0" && rotational != "1")
        return std::nullopt;
    if (rotational == "0")
        return false;
    if (isVirtual(disk))
        return std::nullopt;
    return true;
}

} // namespace posix
