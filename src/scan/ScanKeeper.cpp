#include "ScanKeeper.h"

#include "ScanLog.h"

ScanKeeper::ScanKeeper(QString location, QObject* parent)
    : QObject(parent)
    , location(std::move(location))
{
    // One thread: the scans are kept in the order they were made.
    pool.setMaxThreadCount(1);
}

ScanKeeper::~ScanKeeper()
{
    waitForDone();
}

// The copy shares the tree, so the tree is freed on the pool's thread when
// the write was the last to hold it.
void ScanKeeper::keep(const ScanResult& scan, const ScanHistory::Limits& limits)
{
    qCDebug(lcScan).noquote() << "history: to keep:" << (scan.tree ? scan.tree->rootPath() : "");
    pool.start([this, scan, limits, where = location] {
        const bool kept = ScanHistory(where).keep(scan, limits);
        emit this->kept(kept);
    });
}

bool ScanKeeper::removeAll()
{
    waitForDone();
    return history().removeAll();
}

void ScanKeeper::waitForDone()
{
    pool.waitForDone();
}
