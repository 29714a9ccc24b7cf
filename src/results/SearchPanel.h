#pragma once

#include "scan/ScanTree.h"
#include "scan/TreeSearch.h"

#include <QStringList>
#include <QThreadPool>
#include <QWidget>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class QTreeView;
class SearchResultsModel;

namespace Ui {
class SearchPanel;
}

// Finds files and folders of a scan by name and size as the user types: a
// part of the name, wildcards or a regular expression, and a minimum size.
// Each change starts a search of the whole tree on a thread of the panel's
// own; a newer one stops the older, and only the newest one's rows are shown.
// The tree is read by those threads: it must not change while the panel
// holds it (clear() first, then setTree() again).
class SearchPanel : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SearchPanel)

public:
    explicit SearchPanel(QWidget* parent = nullptr);
    ~SearchPanel() override;

    // Searches this tree from now on, again with what the fields hold.
    // categoryNames: the scan's catalogue, by ScanTree::Node::category.
    void setTree(std::shared_ptr<const ScanTree> tree, QStringList categoryNames);
    // Lets go of the tree; once it returns no search reads it any more.
    void clear();
    // Focuses the filter with its text selected, ready to be typed over.
    void focusSearch();
    // The nodes of the selected rows, in the order they are shown.
    [[nodiscard]] std::vector<ScanTree::Index> selectedNodes() const;
    [[nodiscard]] QTreeView* resultsView() const;
    // The query the fields make.
    [[nodiscard]] SearchQuery query() const;
    // Waits for the searches under way to end; the newest one's rows then
    // come on the event loop's next pass.
    void waitForSearches();

signals:
    // A row was double-clicked, or Enter was pressed on it.
    void chosen(ScanTree::Index node);
    // The newest query's rows, or why there are none, are shown.
    void resultsShown();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Index = ScanTree::Index;
    using Rows = std::vector<Index>;
    // Makes the rows on a search thread; told to stop by its flag.
    using Job = std::function<Rows(const std::atomic<bool>& stop)>;

    void onQueryChanged();
    void onSortChanged();
    void onRowDoubleClicked(const QModelIndex& index);

    void search();
    void start(Job job);
    void onJobDone(quint64 job, const std::shared_ptr<Rows>& rows);
    void showNoRows(const QString& status);
    void showRows(Rows rows);
    void stopSearches();
    void reselect(const std::vector<Index>& nodes);
    void enableFields(bool enabled);

    std::unique_ptr<Ui::SearchPanel> ui;
    SearchResultsModel* model;
    std::shared_ptr<const ScanTree> tree;
    QStringList categories;
    // Counts the queries; a search's rows are shown only if no newer one began.
    quint64 newest = 0;
    bool underWay = false;
    std::shared_ptr<std::atomic<bool>> stopNewest;
    QThreadPool threads;
};
