#pragma once

#include "PoolHandOff.h"
#include "scan/ScanComparison.h"
#include "scan/ScanResult.h"

#include <QObject>

#include <atomic>
#include <memory>

// Compares the scan shown with an older one, off the window's thread: reads
// the older scan's file on a pool thread, refuses one of another folder, and
// compares there too. When the scan shown changes (a removal, a refresh), it
// is compared again with the older scan already read.
class ScanComparer : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScanComparer)

public:
    explicit ScanComparer(QObject* parent = nullptr);
    // A file still being read is let go: its thread stops at the next entry.
    ~ScanComparer() override;

    // Reads `file` and compares it with `shown`, a scan of `folder`; whatever
    // was compared before is let go.
    void compareWith(const QString& file, const ScanResult& shown, const QString& folder);
    // The scan shown changed: compared again once the older scan is read.
    void follow(const ScanResult& shown);
    // Lets go of the older scan and its comparison.
    void stop();

    [[nodiscard]] bool isComparing() const { return !file.isEmpty(); }
    // The comparison of the scan last given, once made; else null.
    [[nodiscard]] const std::shared_ptr<const ScanComparison>& comparison() const
    {
        return current;
    }
    // The older scan's file and when that scan was made.
    [[nodiscard]] const QString& olderFile() const { return file; }
    [[nodiscard]] const QDateTime& olderScannedAt() const { return scannedAt; }

    // Whether two paths name the same folder, as the system compares names.
    [[nodiscard]] static bool sameFolder(const QString& a, const QString& b);

signals:
    // comparison() is the scan shown compared with the older one.
    void compared();
    // The older scan could not be read, or is of another folder; comparing stopped.
    void failed(const QString& reason);

private:
    struct Job;

    void compareAgain();
    void start(std::shared_ptr<Job> job);
    void takeJob(const std::shared_ptr<Job>& done);
    void letGo();

    QString file;
    QString folder;
    QDateTime scannedAt;
    std::shared_ptr<const ScanTree> older;
    std::shared_ptr<const ScanTree> shownTree;
    std::shared_ptr<const ScanComparison> current;
    std::shared_ptr<std::atomic<bool>> cancel;
    std::uint64_t generation = 0;
    bool running = false;
    PoolHandOff<ScanComparer> handOff;
};
