#pragma once

#include <QtGlobal>

#include <cstdint>
#include <vector>

class QStandardItem;
class QStandardItemModel;

// The folder tree as the map needs it: sizes and shape only, copied from the
// folder model on the GUI thread, so that layout and painting can run on
// another thread while the model stays the GUI thread's. Each folder's
// subfolders come first among its children, then one block for the files
// that sit directly in it.
class TreemapTree {
public:
    static constexpr std::uint32_t none = 0xffffffff;

    struct Node {
        quint64 size = 0;
        std::uint32_t parent = none;
        std::uint32_t firstChild = 0; // children are stored one after the other
        std::uint32_t childCount = 0;
        std::uint32_t depth = 0;
        // Which of the scanned folder's children this node is or lies in: its colour.
        std::uint32_t branch = 0;
        bool files = false; // the block of a folder's own files
    };

    TreemapTree() = default;
    // The folder model's first row and everything below it.
    [[nodiscard]] static TreemapTree fromModel(const QStandardItemModel& model);

    [[nodiscard]] const std::vector<Node>& nodes() const { return nodeList; }
    [[nodiscard]] bool isEmpty() const { return nodeList.empty(); }
    // The folder row of a node (a files block: its folder's). Only on the GUI
    // thread, and only while the model holds its rows.
    [[nodiscard]] QStandardItem* item(std::uint32_t node) const { return items[node]; }
    // The folder node of a folder row; none when it is not in the tree.
    [[nodiscard]] std::uint32_t nodeOf(const QStandardItem* item) const;

    // For the layout's tests: a tree from sizes given directly. children[i]
    // lists node i's children; node 0 is the root.
    [[nodiscard]] static TreemapTree fromSizes(const std::vector<quint64>& sizes,
                                               const std::vector<std::vector<int>>& children);

private:
    std::vector<Node> nodeList;
    std::vector<QStandardItem*> items;
};
