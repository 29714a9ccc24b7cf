#pragma once

#include "ScanHistory.h"

#include <QObject>
#include <QThreadPool>

// Keeps finished scans in the history on a thread of its own, one after the
// other, so that the window never waits on the write of a large scan. Each
// scan waiting or being written holds its tree, which stays alive however
// soon the results screen lets go of it.
class ScanKeeper : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScanKeeper)

public:
    explicit ScanKeeper(QString location = ScanHistory::defaultLocation(),
                        QObject* parent = nullptr);
    // Waits for every scan handed over: none is lost half written.
    ~ScanKeeper() override;

    [[nodiscard]] ScanHistory history() const { return ScanHistory(location); }
    void keep(const ScanResult& scan, const ScanHistory::Limits& limits);
    // Once the scans handed over before are kept, deletes every kept scan;
    // false when one stayed.
    bool removeAll();
    void waitForDone();

signals:
    // A scan handed over was written and kept, or not.
    void kept(bool kept);

private:
    QString location;
    QThreadPool pool;
};
