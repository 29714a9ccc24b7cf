#pragma once

#include "CategoryMatcher.h"
#include "FolderColumn.h"
#include "FolderReadAhead.h"
#include "ScanRequest.h"
#include "ScanResult.h"

#include <QThread>

#include <array>
#include <atomic>
#include <optional>
#include <unordered_set>
#include <vector>

class QStandardItem;

// Walks one folder tree on its own thread, with readers listing folders ahead
// of it: builds the folder rows, keeps the biggest files and each category's
// biggest files, prepares the report, and emits resultReady() once at the
// end, also after a cancel. It writes only into its own result, which the
// receiver of resultReady() takes.
class DiskUsageWorkerThread : public QThread {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageWorkerThread)

public:
    DiskUsageWorkerThread(QObject* parent, ScanRequest request);
    ~DiskUsageWorkerThread() override;

    // Safe from any thread; the walk stops at its next entry.
    void setCancel(bool cancel);
    // Entries met so far. Safe from any thread, so that a screen can show the
    // count on a timer rather than take an event per entry.
    [[nodiscard]] int itemsScanned() const { return itemCount.load(std::memory_order_relaxed); }
    // The result, once: call after resultReady() (or after the thread ended).
    [[nodiscard]] ScanResult takeResult();

signals:
    void resultReady();
    void updatePath(QString path);
    void updateTotalSubFolder(int total);
    void updateScanProgress();
    void updateTotalItemScan(int totalItem);

protected:
    void run() override;

private:
    using Cells = std::array<QStandardItem*, FolderColumn::Count>;
    struct Frame;
    struct Totals {
        quint64 size = 0;
        quint64 onDisk = 0;
        quint32 files = 0;
        quint32 folders = 0;
    };

    [[nodiscard]] bool cancelled() const { return cancel.load(std::memory_order_relaxed); }
    void buildRootRow(const QString& name, Cells& cells) const;
    // Walks the tree below the root row; fills the root row's cells and the totals.
    void walk(FolderReadAhead& readAhead, Cells& rootCells);
    [[nodiscard]] Frame enter(FolderReadAhead& readAhead, FolderReadAhead::FolderPtr folder,
                              int depth);
    void addEntry(FolderReadAhead& readAhead, std::vector<Frame>& stack);
    void addFile(Frame& frame, const FolderReadAhead::Entry& entry);
    void addDataFile(const QString& folderPath, platform::NativeStringView name,
                     const FolderReadAhead::Entry& entry);
    [[nodiscard]] bool isExcluded(const QString& path) const;
    [[nodiscard]] bool inExcludedOneDrive(const QString& path) const;
    // The first enabled folder of the list that is a prefix of the path.
    [[nodiscard]] const ExcludeEntry* excludingEntry(const QString& path) const;
    [[nodiscard]] Cells appendFolderRow(QStandardItem* parent, const QString& name,
                                        const QString& path) const;
    [[nodiscard]] const QIcon& iconFor(const QString& path) const;
    void finish(Frame& frame);

    const ScanRequest request;
    ScanResult result;
    std::atomic<bool> cancel{false};
    std::atomic<int> itemCount{0};
    int items = 0;
    int folderIndex = 0;
    int dataFileIndex = 100;
    quint64 sizeFloor = 0;
    // Files of several names met so far: the first place counts what they take.
    std::unordered_set<std::uint64_t> linkedFilesSeen;
    std::optional<CategoryMatcher> matcher;
};
