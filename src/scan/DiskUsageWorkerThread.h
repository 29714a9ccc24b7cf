#pragma once

#include "FolderReadAhead.h"
#include "ScanRequest.h"
#include "ScanResult.h"
#include "ScanTally.h"

#include <QThread>

#include <atomic>
#include <optional>
#include <vector>

// Walks one folder tree on its own thread, with readers listing folders ahead
// of it: builds the tree of every folder and file, keeps the biggest files and
// each category's biggest files, and emits resultReady() once at the end, also
// after a cancel. It writes only into its own result, which the receiver of
// resultReady() takes.
class DiskUsageWorkerThread : public QThread {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageWorkerThread)

public:
    DiskUsageWorkerThread(QObject* parent, ScanRequest request);
    ~DiskUsageWorkerThread() override;

    // Safe from any thread; the walk stops at its next entry.
    void setCancel(bool cancel);
    // Entries read so far, ahead of the walk; once it has ended, those it met.
    // Safe from any thread, so that a screen can show the count on a timer
    // rather than take an event per entry.
    [[nodiscard]] int itemsScanned() const;
    // The result, once: call after resultReady() (or after the thread ended).
    [[nodiscard]] ScanResult takeResult();

signals:
    void resultReady();
    void updatePath(QString path);
    void updateTotalSubFolder(int total);
    void updateScanProgress();

protected:
    void run() override;

private:
    using Index = ScanTree::Index;
    struct Frame;

    [[nodiscard]] bool cancelled() const { return cancel.load(std::memory_order_relaxed); }
    [[nodiscard]] FolderReadAhead::Exclusion exclusion() const;
    void walk(FolderReadAhead& readAhead);
    [[nodiscard]] Frame enter(FolderReadAhead& readAhead, FolderReadAhead::FolderPtr folder,
                              Index node, int depth);
    // False when the tree has no room for them.
    [[nodiscard]] bool addChildren(const FolderReadAhead::Folder& folder, Index node);
    void addEntry(FolderReadAhead& readAhead, std::vector<Frame>& stack);
    void addFile(Frame& frame, const FolderReadAhead::Entry& entry, Index node);
    [[nodiscard]] bool isExcluded(const QString& path) const;
    [[nodiscard]] bool inExcludedOneDrive(const QString& path) const;
    // The first enabled folder of the list that is a prefix of the path.
    [[nodiscard]] const ExcludeEntry* excludingEntry(const QString& path) const;
    void finish(Frame& frame);

    const ScanRequest request;
    ScanResult result;
    ScanTree* tree = nullptr;
    std::atomic<bool> cancel{false};
    std::atomic<int> itemCount{0};
    std::atomic<int> entriesListed{0};
    int items = 0;
    std::uint32_t foldersFinished = 0;
    std::optional<ScanTally> tally;
};
