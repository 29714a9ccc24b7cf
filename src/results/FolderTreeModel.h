#pragma once

#include "scan/ScanTree.h"

#include <QAbstractItemModel>
#include <QIcon>

#include <memory>
#include <unordered_map>
#include <vector>

// The folder tree of a scan as rows: the scanned folder, and below each
// folder its subfolders (not the excluded ones), largest first, ties in
// listing order. Values are read from the scan's tree as a view asks for
// them; a folder's rows are ordered the first time they are wanted, and that
// order kept.
class FolderTreeModel : public QAbstractItemModel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FolderTreeModel)

public:
    explicit FolderTreeModel(QObject* parent = nullptr);
    ~FolderTreeModel() override;

    // Folders whose path begins with oneDrivePath carry the cloud icon.
    void setTree(std::shared_ptr<const ScanTree> tree, const QString& oneDrivePath = {});
    // Lets go of the tree: no rows.
    void clear();
    [[nodiscard]] const std::shared_ptr<const ScanTree>& tree() const { return scan; }

    // The row of a folder node, made on demand however deep it lies.
    [[nodiscard]] QModelIndex indexOf(ScanTree::Index folder, int column = 0) const;
    [[nodiscard]] static ScanTree::Index nodeOf(const QModelIndex& index);

    [[nodiscard]] QModelIndex index(int row, int column,
                                    const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    using Index = ScanTree::Index;

    // A folder's subfolder rows in order, computed once.
    const std::vector<Index>& rowsOf(Index folder) const;
    [[nodiscard]] int rowOf(Index folder) const;
    [[nodiscard]] QVariant value(Index node, int column) const;

    std::shared_ptr<const ScanTree> scan;
    QString oneDrive;
    QIcon folderIcon;
    QIcon cloudIcon;
    mutable std::unordered_map<Index, std::vector<Index>> rows;
    mutable std::unordered_map<Index, int> rowInParent;
};
