#pragma once

#include "ResultView.h"
#include "scan/ScanComparison.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class FolderTreeModel;

// The folder tree of the results: name, size with its share of the parent
// drawn as a bar (in the model's measure), bytes on disk beside it, file and
// folder counts, and while comparing with an older scan, what changed. Rows
// keep the model's order (largest first); while comparing, a click on the
// Change header puts those that grew most first, a click on another header
// goes back.
class FolderTreeView : public ResultView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FolderTreeView)

public:
    explicit FolderTreeView(QWidget* parent = nullptr);
    ~FolderTreeView() override;

    // Shows the model's folders, the scanned one open.
    void showFolders(FolderTreeModel* model);
    // Lets go of the model and what draws its bars.
    void letGo();
    // Shows the changes of a comparison with the model's tree in the Change
    // column; none hides the column and puts the rows back in size order.
    void showChanges(std::shared_ptr<const ScanComparison> comparison);
    [[nodiscard]] std::optional<ScanTree::Index> selectedFolder() const;
    // Every folder selected, in the order of the rows.
    [[nodiscard]] std::vector<ScanTree::Index> selectedFolders() const;

    // Where the user is in the tree, by paths, so that it outlives the tree
    // it was taken from.
    struct Place {
        QStringList expanded;
        QStringList selected;
        QString current;
        int scroll = 0;
    };
    [[nodiscard]] Place place() const;
    // Goes back to a place in the model's present tree: a folder that is gone
    // gives way to the nearest one above it that is not.
    void restore(const Place& place);

private:
    void widenNameColumn();
    void onHeaderClicked(int section);
    // Orders the rows again, keeping the user's place.
    void reorder(const std::function<void()>& change);
    [[nodiscard]] FolderTreeModel* folders() const;
    [[nodiscard]] QModelIndex rowOf(const QString& path) const;
};
