#pragma once

#include <QThread>

class QStandardItemModel;

// Empties the result models away from the GUI thread, which would freeze for
// the time it takes to delete hundreds of thousands of cells.
class DiskUsageClearRamThread : public QThread {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DiskUsageClearRamThread)

public:
    DiskUsageClearRamThread(QObject* parent, QStandardItemModel* folderModel,
                            QStandardItemModel* dataFilesModel,
                            QStandardItemModel* biggestFilesModel);

signals:
    void updateScanProgress();
    void processFinish();

protected:
    void run() override;

private:
    QStandardItemModel* folderModel;
    QStandardItemModel* biggestFilesModel;
    QStandardItemModel* dataFilesModel;
};
