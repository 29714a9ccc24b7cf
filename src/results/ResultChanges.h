#pragma once

#include "scan/ScanRequest.h"
#include "scan/ScanResult.h"

#include <QObject>
#include <QThread>

#include <memory>
#include <vector>

// What the user changes on the disk from the results, and the results made to
// follow: entries moved to the trash or removed for good, folders read again.
// The work runs on a thread of its own, one job at a time; the results it
// started from stay shown (and readable) until the job hands over new ones.
class ResultChanges : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ResultChanges)

public:
    using Index = ScanTree::Index;
    enum class Removal { ToTrash, Permanently };
    struct Failure {
        QString path; // the entry that stayed: the one chosen, or one inside it
        QString reason;
    };

    explicit ResultChanges(QObject* parent = nullptr);
    // Waits for a job still running: it reads the results this object holds.
    ~ResultChanges() override;

    // The scan shown and the request that made it, which a folder read again
    // repeats.
    void setScan(ScanResult scan, ScanRequest request);
    [[nodiscard]] const ScanResult& scan() const { return current; }
    [[nodiscard]] bool isBusy() const { return job != nullptr; }

    // Entries of the scan, as removable() gives them.
    void remove(const std::vector<Index>& entries, Removal how);
    // Folders of the scan, read again; the scanned folder reads all again.
    void refresh(const std::vector<Index>& folders);

    // What a removal is about: the entries left when those inside another are
    // dropped, in the order given.
    [[nodiscard]] static std::vector<Index> outermost(const ScanTree& tree,
                                                      const std::vector<Index>& entries);
    // The same, without the scanned folder itself, which is never removed.
    [[nodiscard]] static std::vector<Index> removable(const ScanTree& tree,
                                                      const std::vector<Index>& entries);

signals:
    // scan() now shows the disk as the job left it.
    void changed();
    // The job has ended; what it could not remove, each once.
    void finished(const QList<ResultChanges::Failure>& failures);

private:
    struct Job;
    void start(std::unique_ptr<Job> next);
    void onJobDone();

    ScanResult current;
    ScanRequest request;
    std::unique_ptr<Job> job;
    QThread* worker = nullptr;
};
