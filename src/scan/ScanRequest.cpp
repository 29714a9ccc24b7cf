#include "ScanRequest.h"

#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"
#include "settings/SettingsStore.h"

#include "platform/NativeText.h"
#include "platform/Volumes.h"

#include <QThread>

#include <algorithm>

ScanRequest ScanRequest::fromSettings(const QString& folder)
{
    ScanRequest request;
    request.folder = folder;
    for (const ExcludeEntry& entry : ExclusionSettings::excludeList()) {
        if (entry.enable)
            request.exclusions.append(entry);
    }
    request.oneDrivePath = SettingsStore::oneDrivePath();
    request.excludeOneDrive = ExclusionSettings::excludeOneDriveFolder() != 0;
    request.catalogue = FileTypeCatalogue::instance();
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
