#include "TreemapTree.h"

#include "scan/FolderColumn.h"

#include <QStandardItemModel>

#include <algorithm>

namespace {

quint64 sizeOf(const QStandardItem* folder)
{
    return folder->index().siblingAtColumn(FolderColumn::Size).data().toULongLong();
}

} // namespace

// Breadth first, so that every node's children stand together.
TreemapTree TreemapTree::fromModel(const QStandardItemModel& model)
{
    TreemapTree tree;
    QStandardItem* root = model.item(0);
    if (!root)
        return tree;
    tree.nodeList.push_back({sizeOf(root)});
    tree.items.push_back(root);
    for (std::uint32_t index = 0; index < tree.nodeList.size(); ++index) {
        if (tree.nodeList[index].files)
            continue;
        QStandardItem* folder = tree.items[index];
        const Node parent = tree.nodeList[index];
        const auto first = std::uint32_t(tree.nodeList.size());
        quint64 inSubfolders = 0;
        const auto add = [&](quint64 size, QStandardItem* item, bool files) {
            const std::uint32_t ordinal = std::uint32_t(tree.nodeList.size()) - first;
            tree.nodeList.push_back({size, index, 0, 0, parent.depth + 1,
                                     parent.depth == 0 ? ordinal : parent.branch, files});
            tree.items.push_back(item);
        };
        for (int row = 0; row < folder->rowCount(); ++row) {
            const quint64 size = sizeOf(folder->child(row));
            inSubfolders += size;
            add(size, folder->child(row), false);
        }
        if (parent.size > inSubfolders)
            add(parent.size - inSubfolders, folder, true);
        tree.nodeList[index].firstChild = first;
        tree.nodeList[index].childCount = std::uint32_t(tree.nodeList.size()) - first;
    }
    return tree;
}

std::uint32_t TreemapTree::nodeOf(const QStandardItem* item) const
{
    for (std::uint32_t node = 0; node < items.size(); ++node) {
        if (items[node] == item && !nodeList[node].files)
            return node;
    }
    return none;
}

TreemapTree TreemapTree::fromSizes(const std::vector<quint64>& sizes,
                                   const std::vector<std::vector<int>>& children)
{
    // Renumbered breadth first, as fromModel stores them.
    TreemapTree tree;
    std::vector<int> order{0};
    tree.nodeList.push_back({sizes.at(0)});
    const std::vector<int> leaf;
    for (std::size_t index = 0; index < order.size(); ++index) {
        const std::size_t given = std::size_t(order[index]);
        const Node above = tree.nodeList[index];
        const auto first = std::uint32_t(tree.nodeList.size());
        for (int child : given < children.size() ? children[given] : leaf) {
            const std::uint32_t ordinal = std::uint32_t(tree.nodeList.size()) - first;
            tree.nodeList.push_back({sizes.at(std::size_t(child)), std::uint32_t(index), 0, 0,
                                     above.depth + 1, above.depth == 0 ? ordinal : above.branch,
                                     false});
            order.push_back(child);
        }
        tree.nodeList[index].firstChild = first;
        tree.nodeList[index].childCount = std::uint32_t(tree.nodeList.size()) - first;
    }
    tree.items.assign(tree.nodeList.size(), nullptr);
    return tree;
}
