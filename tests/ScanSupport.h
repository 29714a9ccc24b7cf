#pragma once

#include "scan/DiskUsageWorkerThread.h"
#include "scan/ScanJsonWriter.h"
#include "settings/Settings.h"

#include <QBuffer>

// A whole scan of a folder, on the worker as the window runs it.
inline ScanResult scanOf(const QString& folder, const Settings& settings = Settings::defaults())
{
    DiskUsageWorkerThread worker(nullptr, ScanRequest::of(folder, settings));
    worker.start();
    worker.wait();
    return worker.takeResult();
}

// A result as tallyroot-scan --json writes it: every figure of it, to
// compare; the moment it was made, which two scans never share, left out.
inline QByteArray jsonOf(const QString& folder, const ScanResult& result)
{
    ScanResult timeless = result;
    timeless.scannedAt = {};
    QByteArray json;
    QBuffer buffer(&json);
    buffer.open(QIODevice::WriteOnly);
    ScanJsonWriter(folder, timeless).write(buffer);
    return json;
}
