#pragma once

#include "Columns.h"
#include "scan/ScanTree.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QStringList>

#include <atomic>
#include <memory>
#include <vector>

// The files and folders a search found, one row each: name with a folder or
// file icon, the folder holding it, size and type. The rows are node indices
// of the shared tree, in the order they are given; every value is read from
// the tree when a view asks for it, so a million rows cost only their indices.
// Ordering is done by sorted(), which any thread may run.
class SearchResultsModel : public QAbstractTableModel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SearchResultsModel)

public:
    explicit SearchResultsModel(QObject* parent = nullptr);
    ~SearchResultsModel() override;

    // The rows and the tree they index are always replaced together.
    // categoryNames: the scan's catalogue, by ScanTree::Node::category.
    void setResults(std::shared_ptr<const ScanTree> tree, QStringList categoryNames,
                    std::vector<ScanTree::Index> rows);
    // Lets go of the tree: no rows.
    void clear();
    [[nodiscard]] const std::shared_ptr<const ScanTree>& tree() const { return scan; }
    [[nodiscard]] const std::vector<ScanTree::Index>& nodes() const { return rows; }
    // ScanTree::none for a row that is not there.
    [[nodiscard]] ScanTree::Index nodeAt(int row) const;

    // The rows ordered by a column; ties keep the order they came in. Returns
    // early, in no particular order, once `stop` is set.
    [[nodiscard]] static std::vector<ScanTree::Index>
    sorted(const ScanTree& tree, const QStringList& categoryNames,
           std::vector<ScanTree::Index> rows, int column, Qt::SortOrder order,
           const std::atomic<bool>* stop = nullptr);
    // "Folder"; for a file its category's name, else its extension's
    // ("PNG file"), else "File".
    [[nodiscard]] static QString typeText(const ScanTree& tree, const QStringList& categoryNames,
                                          ScanTree::Index node);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    [[nodiscard]] QVariant value(ScanTree::Index node, int column) const;

    std::shared_ptr<const ScanTree> scan;
    QStringList categories;
    std::vector<ScanTree::Index> rows;
    QIcon folderIcon;
    QIcon fileIcon;
};
