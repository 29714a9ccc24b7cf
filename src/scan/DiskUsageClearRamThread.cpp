#include "DiskUsageClearRamThread.h"

#include "ScanTree.h"

DiskUsageClearRamThread::DiskUsageClearRamThread(QObject* parent,
                                                 std::shared_ptr<const ScanTree> tree)
    : QThread(parent)
    , tree(std::move(tree))
{}

void DiskUsageClearRamThread::run()
{
    setPriority(QThread::HighPriority);
    tree.reset();
    emit updateScanProgress();
    emit processFinish();
}
