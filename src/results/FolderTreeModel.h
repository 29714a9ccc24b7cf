#pragma once

#include "scan/ScanComparison.h"

#include <QAbstractItemModel>
#include <QIcon>

#include <memory>
#include <unordered_map>
#include <vector>

// The folder tree of a scan as rows: the scanned folder, and below each
// folder its subfolders (not the excluded ones), largest first by the measure
// (size or space on disk), ties in listing order; while comparing with an
// older scan, on request those that grew most first. Values are read from the
// scan's tree as a view asks for them; a folder's rows are ordered the first
// time they are wanted, and that order kept until the order or the measure
// changes.
class FolderTreeModel : public QAbstractItemModel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FolderTreeModel)

public:
    // The Change column's figures, as numbers.
    enum Role { ChangeBytesRole = Qt::UserRole, ChangeFilesRole, ChangeStatusRole };
    // BySize: largest first by the measure.
    enum class Order { BySize, ByGrowth };

    explicit FolderTreeModel(QObject* parent = nullptr);
    ~FolderTreeModel() override;

    // Folders whose path begins with oneDrivePath carry the cloud icon.
    void setTree(std::shared_ptr<const ScanTree> tree, const QString& oneDrivePath = {});
    // Lets go of the tree: no rows.
    void clear();
    [[nodiscard]] const std::shared_ptr<const ScanTree>& tree() const { return scan; }
    // What the Change column shows: a comparison of an older scan with this
    // tree (one made of another tree is not taken), or none. Orders the rows
    // again; so does a new tree, which lets go of the comparison.
    void setComparison(std::shared_ptr<const ScanComparison> comparison);
    [[nodiscard]] const std::shared_ptr<const ScanComparison>& comparison() const
    {
        return compared;
    }
    // Growth orders the rows only while comparing; the order stays for the
    // next comparison.
    void setOrder(Order order);
    [[nodiscard]] Order order() const { return ordered; }
    // What "largest" means: the rows' order, growth's ties and each folder's
    // share of its parent (the Percentage column) follow it. The rows move in
    // place, so a view keeps its selection and its open folders; a new tree
    // keeps the measure.
    void setMeasure(ScanTree::Measure measure);
    [[nodiscard]] ScanTree::Measure measure() const { return measured; }

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
    [[nodiscard]] QVariant changeData(Index node, int role) const;
    [[nodiscard]] QString goneText(Index folder) const;
    void forgetRows();

    std::shared_ptr<const ScanTree> scan;
    std::shared_ptr<const ScanComparison> compared;
    Order ordered = Order::BySize;
    ScanTree::Measure measured = ScanTree::Measure::Size;
    QString oneDrive;
    QIcon folderIcon;
    QIcon cloudIcon;
    mutable std::unordered_map<Index, std::vector<Index>> rows;
    mutable std::unordered_map<Index, int> rowInParent;
};
