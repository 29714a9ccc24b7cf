#pragma once

#include <QThread>

#include <memory>

class ScanTree;

// Frees a scan's tree away from the GUI thread, which would otherwise wait
// for every chunk of a large tree to be given back.
class DiskUsageClearRamThread : public QThread {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageClearRamThread)

public:
    // The thread holds the last reference it is given; views let go first.
    DiskUsageClearRamThread(QObject* parent, std::shared_ptr<const ScanTree> tree);

signals:
    void updateScanProgress();
    void processFinish();

protected:
    void run() override;

private:
    std::shared_ptr<const ScanTree> tree;
};
