#pragma once

#include "ScanTree.h"

#include <QRegularExpression>
#include <QString>

#include <atomic>
#include <cstdint>
#include <vector>

// What the user looks for among the files and folders of a scan.
struct SearchQuery {
    // Without wildcards (* ? [...]) a part of the name, with them the whole
    // name; as a regular expression, anywhere in the name; empty, any name.
    // Letter case never counts.
    QString pattern;
    bool regularExpression = false;
    // Files and folders smaller than this (a folder counts its whole
    // subtree) are not found.
    std::uint64_t minimumSize = 0;
};

// Finds the files and folders of a scan whose names match a query: every
// entry below the scanned folder that is reached from it, excluded folders
// left out as everywhere else.
class TreeSearch {
public:
    explicit TreeSearch(const SearchQuery& query);

    // False for a regular expression that does not compile; errorText() says why.
    [[nodiscard]] bool isValid() const { return expression.isValid(); }
    [[nodiscard]] QString errorText() const { return expression.errorString(); }

    [[nodiscard]] bool matches(const QString& name) const;
    // The matches, a folder's children together in listing order; nothing
    // once `stop` is set.
    [[nodiscard]] std::vector<ScanTree::Index> find(const ScanTree& tree,
                                                    const std::atomic<bool>* stop = nullptr) const;

private:
    // A part of the name every match holds: looked for first, as it is
    // much cheaper than the expression.
    QString literal;
    bool literalIsEnough = false;
    // Case-folded; matched without a regular expression, which is cheaper.
    QString wildcards;
    QRegularExpression expression;
    std::uint64_t minimumSize;
};
