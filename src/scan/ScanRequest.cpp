#include "ScanRequest.h"

#include "settings/ExclusionSettings.h"
#include "settings/FileTypeCatalogue.h"
#include "settings/SettingsStore.h"

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

// Readers wait on the disk more than they use a core when the cache is cold,
// so there are more of them than cores.
int ScanRequest::defaultReaders()
{
    return std::clamp(2 * QThread::idealThreadCount(), 4, 16);
}
