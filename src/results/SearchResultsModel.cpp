#include "SearchResultsModel.h"

#include "platform/Shell.h"
#include "scan/DiskUsageGlobal.h"

#include <QApplication>
#include <QStyle>

#include <algorithm>
#include <unordered_map>

using namespace SearchColumn;
using Index = ScanTree::Index;

namespace {

bool stopped(const std::atomic<bool>* stop)
{
    return stop && stop->load(std::memory_order_relaxed);
}

// Each row beside its key, made once, so that a sort of a million rows does
// not make a million texts at each comparison, and the keys are read in
// order. The rows as they were once `stop` is set.
template <typename Key, typename Make>
std::vector<Index> sortedBy(std::vector<Index> rows, Qt::SortOrder order,
                            const std::atomic<bool>* stop, Make&& make)
{
    std::vector<std::pair<Key, Index>> keyed;
    keyed.reserve(rows.size());
    for (Index node : rows) {
        if ((keyed.size() & 0xfff) == 0 && stopped(stop))
            return rows;
        keyed.emplace_back(make(node), node);
    }
    if (order == Qt::AscendingOrder)
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
    else
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const auto& a, const auto& b) { return b.first < a.first; });
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = keyed[row].second;
    return rows;
}

} // namespace

SearchResultsModel::SearchResultsModel(QObject* parent)
    : QAbstractTableModel(parent)
    , folderIcon(platform::folderIcon())
    , fileIcon(QApplication::style()->standardIcon(QStyle::SP_FileIcon))
{}

SearchResultsModel::~SearchResultsModel() = default;

void SearchResultsModel::setResults(std::shared_ptr<const ScanTree> tree, QStringList categoryNames,
                                    std::vector<Index> newRows)
{
    beginResetModel();
    scan = std::move(tree);
    categories = std::move(categoryNames);
    rows = scan ? std::move(newRows) : std::vector<Index>();
    endResetModel();
}

void SearchResultsModel::clear()
{
    setResults(nullptr, {}, {});
}

Index SearchResultsModel::nodeAt(int row) const
{
    return row >= 0 && std::size_t(row) < rows.size() ? rows[std::size_t(row)] : ScanTree::none;
}

std::vector<Index> SearchResultsModel::sorted(const ScanTree& tree,
                                              const QStringList& categoryNames,
                                              std::vector<Index> rows, int column,
                                              Qt::SortOrder order, const std::atomic<bool>* stop)
{
    switch (column) {
    case Name:
        return sortedBy<QString>(std::move(rows), order, stop,
                                 [&](Index node) { return tree.nameText(node).toCaseFolded(); });
    case Folder: {
        // Many rows share a folder: each folder's path is made once.
        std::unordered_map<Index, QString> paths;
        return sortedBy<QString>(std::move(rows), order, stop, [&](Index node) {
            const Index folder = tree.node(node).parent;
            auto found = paths.find(folder);
            if (found == paths.end())
                found = paths.emplace(folder, tree.shownPath(folder).toCaseFolded()).first;
            return found->second;
        });
    }
    case Size:
        return sortedBy<std::uint64_t>(std::move(rows), order, stop,
                                       [&](Index node) { return tree.node(node).size; });
    case Type:
        return sortedBy<QString>(std::move(rows), order, stop, [&](Index node) {
            return typeText(tree, categoryNames, node).toCaseFolded();
        });
    default:
        return rows;
    }
}

QString SearchResultsModel::typeText(const ScanTree& tree, const QStringList& categoryNames,
                                     Index node)
{
    const ScanTree::Node& entry = tree.node(node);
    if (entry.isFolder())
        return QStringLiteral("Folder");
    if (entry.category < categoryNames.size())
        return categoryNames.at(entry.category);
    const QString name = tree.nameText(node);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0 || dot == name.size() - 1)
        return QStringLiteral("File");
    return name.mid(dot + 1).toUpper() + QLatin1String(" file");
}

int SearchResultsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(rows.size());
}

int SearchResultsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Count;
}

QVariant SearchResultsModel::data(const QModelIndex& index, int role) const
{
    const Index node = index.isValid() ? nodeAt(index.row()) : ScanTree::none;
    if (node == ScanTree::none)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return value(node, index.column());
    case Qt::DecorationRole:
        if (index.column() == Name)
            return scan->node(node).isFolder() ? folderIcon : fileIcon;
        return {};
    case Qt::TextAlignmentRole:
        if (index.column() == Size)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case Qt::UserRole: // the size in bytes, for whoever needs the number
        return QVariant::fromValue(quint64(scan->node(node).size));
    default:
        return {};
    }
}

QVariant SearchResultsModel::value(Index node, int column) const
{
    switch (column) {
    case Name:
        return scan->nameText(node);
    case Folder:
        return scan->shownPath(scan->node(node).parent);
    case Size:
        return DiskUsageGlobal::sizeText(double(scan->node(node).size));
    case Type:
        return typeText(*scan, categories, node);
    default:
        return {};
    }
}

QVariant SearchResultsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const titles[Count] = {"Name", "Folder", "Size", "Type"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= Count)
        return QAbstractTableModel::headerData(section, orientation, role);
    return QString::fromLatin1(titles[section]);
}
