#include "BiggestFilesModel.h"

#include "platform/Shell.h"

#include <QDir>
#include <QFileInfo>

using namespace BiggestFileColumn;

BiggestFilesModel::BiggestFilesModel(QObject* parent)
    : QAbstractTableModel(parent)
{}

BiggestFilesModel::~BiggestFilesModel() = default;

void BiggestFilesModel::setFiles(QList<DiskUsageGlobal::TFileInfo> newFiles)
{
    beginResetModel();
    files = std::move(newFiles);
    icons.clear();
    // Asked once: the desktop's answer takes a file system look-up.
    for (const DiskUsageGlobal::TFileInfo& file : std::as_const(files))
        icons << platform::smallFileIcon(file.filePath);
    endResetModel();
}

int BiggestFilesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(files.size());
}

int BiggestFilesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count;
}

QVariant BiggestFilesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= files.size())
        return {};
    if (role == Qt::DecorationRole && index.column() == FileName)
        return icons.value(index.row());
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    return value(index.row(), index.column());
}

QVariant BiggestFilesModel::value(int row, int column) const
{
    const DiskUsageGlobal::TFileInfo& file = files.at(row);
    switch (column) {
    case FileName:
        return QFileInfo(file.filePath).fileName();
    case FileSize:
        return DiskUsageGlobal::sizeText(double(file.size));
    case LastAccess:
        return DiskUsageGlobal::lastAccessText(file.lastAccessTime);
    case Folder:
        return QDir::toNativeSeparators(QFileInfo(file.filePath).path());
    case RawSize:
        return double(file.size) / 1048576.0;
    case FileOnDisk:
        return DiskUsageGlobal::sizeText(double(file.onDisk));
    default:
        return {};
    }
}

QVariant BiggestFilesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const titles[Count] = {"Name", "Size",     "Last Access Time",
                                              "Path", "Raw Size", "On Disk"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Count)
        return QAbstractTableModel::headerData(section, orientation, role);
    return QString::fromLatin1(titles[section]);
}
