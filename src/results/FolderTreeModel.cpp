#include "FolderTreeModel.h"

#include "Columns.h"
#include "platform/Shell.h"
#include "scan/DiskUsageGlobal.h"

#include <algorithm>

using namespace FolderColumn;

FolderTreeModel::FolderTreeModel(QObject* parent)
    : QAbstractItemModel(parent)
    , folderIcon(platform::folderIcon())
    , cloudIcon(QStringLiteral(":/resources/images/genericCloudFolder.png"))
{}

FolderTreeModel::~FolderTreeModel() = default;

namespace {

// Past this many, the gone entries of a folder are counted, not named.
constexpr std::size_t goneNamed = 10;

} // namespace

void FolderTreeModel::setTree(std::shared_ptr<const ScanTree> tree, const QString& oneDrivePath)
{
    beginResetModel();
    scan = std::move(tree);
    oneDrive = oneDrivePath;
    if (compared && compared->newerTree() != scan)
        compared.reset();
    forgetRows();
    endResetModel();
}

void FolderTreeModel::setComparison(std::shared_ptr<const ScanComparison> comparison)
{
    beginResetModel();
    compared = comparison && comparison->newerTree() == scan ? std::move(comparison) : nullptr;
    forgetRows();
    endResetModel();
}

void FolderTreeModel::setOrder(Order order)
{
    beginResetModel();
    ordered = order;
    forgetRows();
    endResetModel();
}

// The rows are the same, only in another order: the indexes a view holds on
// to (its selection, its open folders) are moved to the rows' new places.
void FolderTreeModel::setMeasure(ScanTree::Measure measure)
{
    if (measure == measured)
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList held = persistentIndexList();
    measured = measure;
    forgetRows();
    QModelIndexList moved;
    for (const QModelIndex& index : held)
        moved << indexOf(nodeOf(index), index.column());
    changePersistentIndexList(held, moved);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void FolderTreeModel::forgetRows()
{
    rows.clear();
    rowInParent.clear();
}

void FolderTreeModel::clear()
{
    setTree(nullptr);
}

ScanTree::Index FolderTreeModel::nodeOf(const QModelIndex& index)
{
    return index.isValid() ? Index(index.internalId()) : ScanTree::none;
}

const std::vector<ScanTree::Index>& FolderTreeModel::rowsOf(Index folder) const
{
    const auto found = rows.find(folder);
    if (found != rows.end())
        return found->second;
    std::vector<Index> children = scan->shownSubfolders(folder);
    const auto larger = [this](Index a, Index b) {
        return scan->node(a).amount(measured) > scan->node(b).amount(measured);
    };
    if (compared && ordered == Order::ByGrowth) {
        std::stable_sort(children.begin(), children.end(), [&](Index a, Index b) {
            const std::int64_t grownA = compared->changeOf(a).bytes;
            const std::int64_t grownB = compared->changeOf(b).bytes;
            return grownA != grownB ? grownA > grownB : larger(a, b);
        });
    } else {
        std::stable_sort(children.begin(), children.end(), larger);
    }
    for (std::size_t row = 0; row < children.size(); ++row)
        rowInParent[children[row]] = int(row);
    return rows.emplace(folder, std::move(children)).first->second;
}

int FolderTreeModel::rowOf(Index folder) const
{
    if (folder == 0)
        return 0;
    const auto found = rowInParent.find(folder);
    if (found != rowInParent.end())
        return found->second;
    rowsOf(scan->node(folder).parent);
    return rowInParent.at(folder);
}

QModelIndex FolderTreeModel::indexOf(Index folder, int column) const
{
    if (!scan || folder >= scan->size() || !scan->node(folder).isShownFolder())
        return {};
    return createIndex(rowOf(folder), column, quintptr(folder));
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!scan || row < 0 || column < 0 || column >= Count)
        return {};
    if (!parent.isValid())
        return row == 0 ? createIndex(0, column, quintptr(0)) : QModelIndex();
    if (parent.column() != 0)
        return {};
    const std::vector<Index>& children = rowsOf(nodeOf(parent));
    if (std::size_t(row) >= children.size())
        return {};
    return createIndex(row, column, quintptr(children[std::size_t(row)]));
}

QModelIndex FolderTreeModel::parent(const QModelIndex& child) const
{
    const Index node = nodeOf(child);
    if (!scan || node == ScanTree::none || node == 0)
        return {};
    return indexOf(scan->node(node).parent);
}

int FolderTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!scan)
        return 0;
    if (!parent.isValid())
        return 1;
    if (parent.column() != 0 || scan->node(nodeOf(parent)).folders == 0)
        return 0;
    return int(rowsOf(nodeOf(parent)).size());
}

int FolderTreeModel::columnCount(const QModelIndex&) const
{
    return Count;
}

bool FolderTreeModel::hasChildren(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return scan != nullptr;
    return parent.column() == 0 && scan->node(nodeOf(parent)).folders > 0;
}

Qt::ItemFlags FolderTreeModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const
{
    if (!scan || !index.isValid())
        return {};
    const Index node = nodeOf(index);
    if (role == Qt::DecorationRole && index.column() == Name) {
        const bool inOneDrive = !oneDrive.isEmpty() && scan->path(node).startsWith(oneDrive);
        return inOneDrive ? cloudIcon : folderIcon;
    }
    // A deep folder's name may be cut short: the tooltip has its whole path.
    if (role == Qt::ToolTipRole && index.column() == Name)
        return scan->shownPath(node);
    if (index.column() == Change)
        return changeData(node, role);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    return value(node, index.column());
}

QVariant FolderTreeModel::value(Index node, int column) const
{
    const ScanTree::Node& folder = scan->node(node);
    switch (column) {
    case Name:
        return scan->nameText(node);
    case SizeText:
        return DiskUsageGlobal::sizeText(double(folder.size));
    case Files:
        return int(folder.files);
    case Folders:
        return int(folder.folders);
    case Size:
        return QVariant::fromValue<qulonglong>(folder.size);
    case Path:
        return scan->shownPath(node);
    case Percentage:
        return scan->percentage(node, measured);
    case MaxData:
        return scan->childSummary(node, scan->largestChildren(node, ScanTree::summaryLimit));
    case FolderColumn::Index:
        return int(folder.finished);
    case OnDisk:
        return QVariant::fromValue<qulonglong>(folder.onDisk);
    default:
        return {};
    }
}

QVariant FolderTreeModel::changeData(Index node, int role) const
{
    if (!compared)
        return {};
    const ScanComparison::Change change = compared->changeOf(node);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return change.status == ScanComparison::Status::New ? QStringLiteral("new")
                                                            : ScanComparison::changeText(change);
    case Qt::ToolTipRole:
        return ScanComparison::changeText(change) + goneText(node);
    case ChangeBytesRole:
        return QVariant::fromValue<qlonglong>(change.bytes);
    case ChangeFilesRole:
        return QVariant::fromValue<qlonglong>(change.files);
    case ChangeStatusRole:
        return int(change.status);
    default:
        return {};
    }
}

// What went from a folder: the change column counts it, the tooltip names it.
QString FolderTreeModel::goneText(Index folder) const
{
    const std::span<const ScanComparison::Gone> gone = compared->goneFrom(folder);
    if (gone.empty())
        return {};
    QString text = QStringLiteral("\nGone from it:");
    const ScanTree& older = compared->older();
    for (std::size_t shown = 0; shown < gone.size() && shown < goneNamed; ++shown) {
        const Index entry = gone[shown].entry;
        text += QStringLiteral("\n  %1%2  %3")
                    .arg(older.nameText(entry),
                         older.node(entry).isFolder() ? QStringLiteral("/") : QString(),
                         ScanComparison::changeText(compared->goneChangeOf(entry)));
    }
    if (gone.size() > goneNamed)
        text += QStringLiteral("\n  and %1 more").arg(gone.size() - goneNamed);
    return text;
}

QVariant FolderTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const titles[Count] = {"Name",  "Size",    "File Count", "Folder Count",
                                              "Size",  "Path",    "Percentage", "MaxData",
                                              "Index", "On Disk", "Change"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Count)
        return QAbstractItemModel::headerData(section, orientation, role);
    return QString::fromLatin1(titles[section]);
}
