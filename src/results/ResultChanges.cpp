#include "ResultChanges.h"

#include "ResultsLog.h"
#include "desktop/FileRemoval.h"
#include "scan/DiskUsageWorkerThread.h"
#include "scan/ScanEdit.h"

#include <QFileInfo>

#include <algorithm>
#include <optional>

// One job, run on the worker thread: it reads `from`, which the screen keeps
// unchanged meanwhile, and writes only into itself.
struct ResultChanges::Job {
    const ScanResult* from = nullptr;
    ScanRequest request;
    std::vector<Index> removals;
    std::optional<Removal> how;
    std::vector<Index> refreshes;

    ScanResult result;
    QList<Failure> failures;

    void run();

private:
    void removeEach(ScanEdit& edit);
    void readAgain(ScanEdit& edit, Index folder) const;
};

ResultChanges::ResultChanges(QObject* parent)
    : QObject(parent)
{}

ResultChanges::~ResultChanges()
{
    if (worker) {
        worker->wait();
        delete worker;
    }
}

void ResultChanges::setScan(ScanResult scan, ScanRequest scanRequest)
{
    current = std::move(scan);
    request = std::move(scanRequest);
    request.atEntry = {};
}

std::vector<ScanTree::Index> ResultChanges::outermost(const ScanTree& tree,
                                                      const std::vector<Index>& entries)
{
    const auto chosen = [&](Index node) {
        return std::find(entries.begin(), entries.end(), node) != entries.end();
    };
    std::vector<Index> kept;
    for (Index entry : entries) {
        bool inside = false;
        for (Index above = tree.node(entry).parent; above != ScanTree::none && !inside;
             above = tree.node(above).parent)
            inside = chosen(above);
        if (!inside && std::find(kept.begin(), kept.end(), entry) == kept.end())
            kept.push_back(entry);
    }
    return kept;
}

std::vector<ScanTree::Index> ResultChanges::removable(const ScanTree& tree,
                                                      const std::vector<Index>& entries)
{
    std::vector<Index> kept = outermost(tree, entries);
    kept.erase(std::remove(kept.begin(), kept.end(), Index(0)), kept.end());
    return kept;
}

void ResultChanges::remove(const std::vector<Index>& entries, Removal how)
{
    auto next = std::make_unique<Job>();
    next->removals = entries;
    next->how = how;
    start(std::move(next));
}

void ResultChanges::refresh(const std::vector<Index>& folders)
{
    auto next = std::make_unique<Job>();
    next->refreshes = outermost(*current.tree, folders);
    start(std::move(next));
}

void ResultChanges::start(std::unique_ptr<Job> next)
{
    if (job || !current.tree)
        return;
    job = std::move(next);
    job->from = &current;
    job->request = request;
    worker = QThread::create([run = job.get()] { run->run(); });
    connect(worker, &QThread::finished, this, &ResultChanges::onJobDone);
    worker->start();
}

void ResultChanges::onJobDone()
{
    worker->wait();
    worker->deleteLater();
    worker = nullptr;
    const std::unique_ptr<Job> done = std::move(job);
    if (done->result.tree) {
        current = std::move(done->result);
        emit changed();
    }
    emit finished(done->failures);
}

void ResultChanges::Job::run()
{
    ScanEdit edit;
    removeEach(edit);
    for (Index folder : refreshes)
        readAgain(edit, folder);
    if (!edit.isEmpty())
        result = edit.applyTo(*from);
}

// Whatever the outcome, the tree is made to show what is on the disk: an
// entry gone is taken out, a folder partly removed is read again.
void ResultChanges::Job::removeEach(ScanEdit& edit)
{
    const ScanTree& tree = *from->tree;
    for (Index entry : removals) {
        const QString path = tree.path(entry);
        const FileRemoval::Outcome outcome = how == Removal::ToTrash
                                                 ? FileRemoval::moveToTrash(path)
                                                 : FileRemoval::removePermanently(path);
        qCDebug(lcResults).noquote() << "removed:" << path << outcome.reason;
        if (!outcome.removed())
            failures.append({outcome.failedPath, outcome.reason});
        if (!QFileInfo::exists(path) && !QFileInfo(path).isSymLink())
            edit.remove(entry);
        else if (!outcome.removed() && tree.node(entry).isFolder())
            readAgain(edit, entry);
    }
}

void ResultChanges::Job::readAgain(ScanEdit& edit, Index folder) const
{
    const ScanTree& tree = *from->tree;
    const QString path = tree.path(folder);
    if (folder != 0 && !QFileInfo::exists(path)) {
        edit.remove(folder);
        return;
    }
    if (tree.node(folder).flags & (ScanTree::Elsewhere | ScanTree::Loop))
        return; // shown, never entered
    ScanRequest again = request;
    again.folder = path;
    DiskUsageWorkerThread scan(nullptr, std::move(again));
    scan.start();
    scan.wait();
    edit.replace(folder, scan.takeResult().tree);
}
