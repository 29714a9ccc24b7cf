#include "ScanController.h"

#include "scan/DiskUsageClearRamThread.h"
#include "scan/DiskUsageWorkerThread.h"

#include <QThread>

namespace {

// How often the entry count follows the scan.
constexpr int itemCountInterval = 50; // ms

} // namespace

ScanController::ScanController(QObject* parent)
    : QObject(parent)
{
    itemCountTimer.setInterval(itemCountInterval);
    connect(&itemCountTimer, &QTimer::timeout, this,
            [this] { emit itemCountChanged(worker->itemsScanned()); });
}

ScanController::~ScanController()
{
    if (worker) {
        worker->setCancel(true);
        worker->wait();
    }
    if (fileReader) {
        stopReading = true;
        fileReader->wait();
    }
    if (releaseThread)
        releaseThread->wait();
}

void ScanController::start(ScanRequest request)
{
    worker = new DiskUsageWorkerThread(this, std::move(request));
    connect(worker, &DiskUsageWorkerThread::resultReady, this, &ScanController::onResultReady);
    connect(worker, &DiskUsageWorkerThread::updatePath, this, &ScanController::folderEntered);
    connect(worker, &DiskUsageWorkerThread::updateTotalSubFolder, this,
            &ScanController::stepsKnown);
    connect(worker, &DiskUsageWorkerThread::updateScanProgress, this, &ScanController::stepped);
    // The entry count is read on a timer: an event per entry would cost the
    // GUI thread more than the scan itself.
    itemCountTimer.start();
    worker->start(QThread::InheritPriority);
}

void ScanController::open(const QString& file)
{
    fileReader = QThread::create([this, file] { opened = ScanFile::read(file, &stopReading); });
    fileReader->setParent(this);
    connect(fileReader, &QThread::finished, this, [this] {
        result = std::move(opened.result);
        emit finished();
    });
    fileReader->start(QThread::InheritPriority);
}

void ScanController::cancel()
{
    if (worker)
        worker->setCancel(true);
    stopReading = true;
}

void ScanController::onResultReady()
{
    // The worker has written its last; it ends right after this signal.
    itemCountTimer.stop();
    worker->wait();
    emit itemCountChanged(worker->itemsScanned());
    result = worker->takeResult();
    emit finished();
}

ScanResult ScanController::takeResult()
{
    return std::move(result);
}

void ScanController::release(std::shared_ptr<const ScanTree> tree)
{
    releaseThread = new DiskUsageClearRamThread(this, std::move(tree));
    connect(releaseThread, &DiskUsageClearRamThread::updateScanProgress, this,
            &ScanController::stepped);
    connect(releaseThread, &DiskUsageClearRamThread::processFinish, this, [this] {
        releaseThread->wait();
        emit released();
    });
    releaseThread->start(QThread::InheritPriority);
}
