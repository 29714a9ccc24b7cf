#pragma once

#include "JsonPull.h"
#include "ScanFile.h"
#include "ScanTally.h"

#include <atomic>
#include <optional>
#include <string>
#include <vector>

// Takes a scan file apart as it streams in: the catalogue and whose scan it
// is from the head, then the tree, entry by entry in walk order, counted as
// the walk counted them. What it does not need (the figures that the count
// gives again) it passes over.
class ScanFileReader {
public:
    ScanFileReader(QIODevice& device, const std::atomic<bool>* cancel);

    // The scan, or nothing, and then what() says why.
    [[nodiscard]] std::optional<ScanResult> read();

    enum class Failure { None, NotAScan, OlderFormat, NewerFormat, CutShort, Damaged, Cancelled };
    [[nodiscard]] Failure failure() const { return failed; }
    [[nodiscard]] int format() const { return version; }
    [[nodiscard]] qint64 offset() const { return json.offset(); }

private:
    using Index = ScanTree::Index;
    struct Folder {
        std::uint64_t children = 0;
        std::uint64_t flags = 0;
        std::uint64_t onDisk = 0;
    };
    struct Frame {
        Index folder;
        Index next;
        Index end;
        FolderTotals totals;
    };

    bool readKey(const std::string& key);
    bool readCategories();
    bool readCategory();
    bool readTree();
    bool readFolder(Folder& folder);
    bool readFile(Index file, FolderTotals& totals);
    bool readEntry(std::vector<Frame>& stack);
    void place(Index node, const Folder& folder);
    [[nodiscard]] bool enter(Index node, const Folder& folder, std::vector<Frame>& stack);
    void finish(const Frame& frame);
    void setName(Index node);
    bool stop(Failure why);

    JsonPull json;
    const std::atomic<bool>* cancel;
    ScanResult result;
    ScanTree* tree = nullptr;
    std::optional<ScanTally> tally;
    std::string text;
    std::string nameText; // the last entry's name
    QString rootPath;
    int version = 0;
    bool sawFolders = false;
    int items = 0;
    std::uint32_t foldersFinished = 0;
    Failure failed = Failure::None;
};
