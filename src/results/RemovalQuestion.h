#pragma once

#include "ResultChanges.h"

#include <QString>

#include <vector>

class QWidget;

// The question asked before anything is removed: it names what goes and how
// much, and where it goes.
class RemovalQuestion {
public:
    // `entries` as ResultChanges::outermost gives them.
    RemovalQuestion(const ScanTree& tree, const std::vector<ScanTree::Index>& entries,
                    ResultChanges::Removal how);

    [[nodiscard]] QString text() const;
    // The paths, when there are several.
    [[nodiscard]] QString details() const;
    // True when the user said yes.
    [[nodiscard]] bool ask(QWidget* parent) const;

    // Where the trash is said to be: the Trash, or the Recycle Bin on Windows.
    [[nodiscard]] static QString trashName();

private:
    [[nodiscard]] QString what() const;

    const ScanTree& tree;
    const std::vector<ScanTree::Index>& entries;
    ResultChanges::Removal how;
};
