#include "ScanRequest.h"

#include "settings/SettingsStore.h"

#include "platform/NativeText.h"
#include "platform/Volumes.h"

#include <QDir>
#include <QThread>

#include <algorithm>

// Paths with the system's separators, as the walk joins them, so that an
// exclusion picked as "C:/Temp" leaves out C:\Temp.
ScanRequest ScanRequest::of(const QString& folder, const Settings& settings)
{
    ScanRequest request;
    request.folder = QDir::toNativeSeparators(folder);
    for (const ExcludeEntry& entry : settings.exclusions) {
        if (entry.enable)
            request.exclusions.append({true, QDir::toNativeSeparators(entry.path)});
    }
    request.oneDrivePath = QDir::toNativeSeparators(SettingsStore::oneDrivePath());
    request.excludeOneDrive = settings.excludeOneDrive;
    request.catalogue = settings.catalogue;
    return request;
}

int ScanRequest::solidDiskReaders()
{
    return std::clamp(8 * QThread::idealThreadCount(), 16, 32);
}

int ScanRequest::readersFor(const QString& folder)
{
    return platform::seeksAreSlow(platform::toNative(folder)).value_or(false) ? spinningDiskReaders
                                                                              : solidDiskReaders();
}
