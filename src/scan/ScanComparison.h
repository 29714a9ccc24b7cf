#pragma once

#include "ScanTree.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

// Two scans of one folder side by side: what changed from the older to the
// newer. Entries are matched by their names below the scanned folders, which
// may lie in different places: a file only with a file, a folder only with a
// folder. A folder the exclusions left out counts as nothing in its scan.
// Every entry of the newer scan has a change; what only the older one holds
// is gone, noted under the newer folder it went from. Sizes are each scan's
// own, as it counted them (every hard link).
//
// Built in one pass over the newer tree, the older folder's children looked
// up by name; it keeps one index per newer entry. Holds both trees; once made,
// any number of threads may read it.
class ScanComparison {
public:
    using Index = ScanTree::Index;

    enum class Status : std::uint8_t { Same, Grown, Shrunk, New };
    struct Change {
        // Past what a signed 64-bit number holds, the change stops at its end.
        std::int64_t bytes = 0;
        std::int64_t files = 0;
        Status status = Status::Same;
    };
    // An entry of the older scan that the newer one does not hold.
    struct Gone {
        Index folder = 0; // the folder of the newer scan it went from
        Index entry = 0;  // in the older scan
    };

    ScanComparison(std::shared_ptr<const ScanTree> older, std::shared_ptr<const ScanTree> newer);

    [[nodiscard]] const ScanTree& older() const { return *before; }
    [[nodiscard]] const ScanTree& newer() const { return *after; }
    [[nodiscard]] const std::shared_ptr<const ScanTree>& newerTree() const { return after; }

    // The entry of the older scan that an entry of the newer one is, or none.
    [[nodiscard]] Index olderOf(Index entry) const { return matches[entry]; }
    // What an entry of the newer scan changed by: grown or shrunk in bytes (or,
    // at the same size, in files), new, or the same. An excluded folder counts
    // nothing in either scan.
    [[nodiscard]] Change changeOf(Index entry) const;
    // What went from a folder of the newer scan, in the older one's listing
    // order. Entries inside a gone folder go with it and are not listed.
    [[nodiscard]] std::span<const Gone> goneFrom(Index folder) const;
    // What a gone entry took with it: its bytes and files, negative.
    [[nodiscard]] Change goneChangeOf(Index olderEntry) const;
    // What the files directly in a folder changed by, those gone from it included.
    [[nodiscard]] Change filesChangeOf(Index folder) const;
    // Up to `limit` children of a folder (files and shown folders) that grew
    // in bytes, most first, ties in listing order.
    [[nodiscard]] std::vector<Index> grownChildren(Index folder, std::size_t limit) const;
    // Up to `limit` shown folders below the scanned one that grew in bytes,
    // most first, ties by path.
    [[nodiscard]] std::vector<Index> grownFolders(std::size_t limit) const;

    // "+1.20 GB, +30 files", "−300.00 MB, −2 files", "no change".
    [[nodiscard]] static QString changeText(const Change& change);

private:
    struct Scratch;
    struct Pair {
        Index newer;
        Index older;
    };

    void matchChildren(const Pair& folders, Scratch& scratch, std::vector<Pair>& pending);
    void matchByName(const Pair& folders, Scratch& scratch);
    void take(Index newer, Index older, Index ordinal, Scratch& scratch);
    [[nodiscard]] bool sameEntry(Index newer, Index older) const;
    [[nodiscard]] static Status statusOf(std::int64_t bytes, std::int64_t files);

    std::shared_ptr<const ScanTree> before;
    std::shared_ptr<const ScanTree> after;
    std::vector<Index> matches; // by entry of the newer scan
    std::vector<Gone> gone;     // by folder
};
