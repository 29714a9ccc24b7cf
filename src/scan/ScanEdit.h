#pragma once

#include "ScanResult.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>

// Changes to a finished scan: entries gone from the disk and folders read
// again. Applied, they give what a scan of the changed disk gives: the tree
// copied in walk order without what went, each folder read again holding its
// new contents, and every figure counted anew. The scan it is applied to is
// left as it was, so views may go on reading it meanwhile.
class ScanEdit {
public:
    using Index = ScanTree::Index;

    // A file or folder below the scanned folder that is no longer there.
    void remove(Index node);
    // A folder whose contents become those of `rescanned`, a scan of it.
    void replace(Index folder, std::shared_ptr<const ScanTree> rescanned);
    [[nodiscard]] bool isEmpty() const { return removed.empty() && replaced.empty(); }

    [[nodiscard]] ScanResult applyTo(const ScanResult& scan) const;

private:
    friend class ScanRebuild;

    std::unordered_set<Index> removed;
    std::unordered_map<Index, std::shared_ptr<const ScanTree>> replaced;
};
