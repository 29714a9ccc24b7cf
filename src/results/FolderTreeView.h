#pragma once

#include "ResultView.h"
#include "scan/ScanTree.h"

#include <QStringList>

#include <optional>
#include <vector>

class FolderTreeModel;

// The folder tree of the results: name, size with its share of the parent
// drawn as a bar, bytes on disk beside it, file and folder counts.
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
    [[nodiscard]] FolderTreeModel* folders() const;
    [[nodiscard]] QModelIndex rowOf(const QString& path) const;
};
