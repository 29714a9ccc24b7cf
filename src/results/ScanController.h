#pragma once

#include "scan/ScanFile.h"
#include "scan/ScanRequest.h"
#include "scan/ScanResult.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <memory>

class DiskUsageClearRamThread;
class DiskUsageWorkerThread;

// The life of one scan behind the results screen, and no widget: the worker
// and what it reports, its entry count read on a timer, a cancel, and the
// release of the results on a thread of their own. A scan kept in a file is
// read on a thread of its own as well.
class ScanController : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScanController)

public:
    explicit ScanController(QObject* parent = nullptr);
    // Waits for a thread still running: none outlives what it writes into.
    ~ScanController() override;

    void start(ScanRequest request);
    // Reads a scan file instead of scanning; finished() follows, and then
    // either the result or the error.
    void open(const QString& file);
    // Why the file could not be opened; empty when it was, or for a scan.
    [[nodiscard]] const QString& openError() const { return opened.error; }
    // The walk stops at its next entry; finished() follows.
    void cancel();
    // Once finished(): the result, once.
    [[nodiscard]] ScanResult takeResult();
    // Frees the tree on a thread of its own, which is to hold the last
    // reference to it; released() follows.
    void release(std::shared_ptr<const ScanTree> tree);

signals:
    // The walk entered a folder just below the scanned one.
    void folderEntered(const QString& path);
    void itemCountChanged(int count);
    // How many steps the progress takes, and one more step.
    void stepsKnown(int steps);
    void stepped();
    void finished();
    void released();

private:
    void onResultReady();

    DiskUsageWorkerThread* worker = nullptr;
    QThread* fileReader = nullptr;
    std::atomic<bool> stopReading{false};
    ScanFile::Opened opened; // written by the file's reader until it ends
    DiskUsageClearRamThread* releaseThread = nullptr;
    QTimer itemCountTimer;
    ScanResult result;
};
