#pragma once

#include "ResultView.h"
#include "scan/ScanTree.h"

#include <optional>

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

private:
    void widenNameColumn();
};
