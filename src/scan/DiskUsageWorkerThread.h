#pragma once

#include "CategoryMatcher.h"
#include "ScanTargets.h"
#include "settings/ExcludeEntry.h"

#include <QIcon>
#include <QThread>

#include <array>
#include <atomic>
#include <optional>
#include <vector>

#include "platform/DirectoryListing.h"

// Walks one folder tree on its own thread: builds the folder rows, keeps the
// biggest files and each category's biggest files, prepares the report, and
// emits resultReady() once at the end, also after a cancel.
class DiskUsageWorkerThread : public QThread {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageWorkerThread)

public:
    DiskUsageWorkerThread(QObject* parent, const QString& scanPath);
    ~DiskUsageWorkerThread() override;

    void setTargets(const ScanTargets& targets);
    // Safe from any thread; the walk stops at its next entry.
    void setCancel(bool cancel);

signals:
    void resultReady();
    void updatePath(QString path);
    void updateTotalSubFolder(int total);
    void updateScanProgress();
    void updateTotalItemScan(int totalItem);

protected:
    void run() override;

private:
    struct Folder;
    struct Totals {
        quint64 size = 0;
        quint32 files = 0;
        quint32 folders = 0;
    };

    [[nodiscard]] bool cancelled() const { return cancel.load(std::memory_order_relaxed); }
    void buildRootRow(const QString& name);
    [[nodiscard]] int countRootSubfolders() const;
    // Walks the tree below the root row; returns the root row's nine cells.
    [[nodiscard]] std::array<QStandardItem*, 9> walk(Totals& result);
    // Starts a folder: the root when there is no parent listing.
    [[nodiscard]] Folder enter(const platform::DirectoryListing* parent,
                               const platform::NativeString& name, QString path, int depth);
    void addEntry(std::vector<Folder>& stack, platform::DirectoryEntry& entry);
    void addFile(Folder& folder, const platform::DirectoryEntry& entry);
    void addDataFile(const QString& folderPath, const platform::DirectoryEntry& entry);
    [[nodiscard]] bool isExcluded(const QString& path) const;
    [[nodiscard]] std::array<QStandardItem*, 9>
    appendFolderRow(QStandardItem* parent, const QString& name, const QString& path) const;
    [[nodiscard]] const QIcon& iconFor(const QString& path) const;
    void finish(Folder& folder);

    ScanTargets targets;
    QString scanPath;
    std::atomic<bool> cancel{false};
    int folderIndex = 0;
    int dataFileIndex = 100;
    int itemCount = 0;
    quint64 sizeFloor = 0;
    QString oneDrivePath;
    bool excludeOneDrive = false;
    QList<ExcludeEntry> exclusions;
    std::optional<CategoryMatcher> matcher;
    QIcon folderIcon;
    QIcon cloudFolderIcon;
    Totals totals;
};
