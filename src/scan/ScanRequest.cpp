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

void ScanRequest::setShownIcons(const QIcon& desktopFolderIcon)
{
    folderIcon = desktopFolderIcon;
    cloudFolderIcon = QIcon(QStringLiteral(":/resources/images/genericCloudFolder.png"));
    categoryIcons = true;
}

int ScanRequest::defaultReaders()
{
    return std::max(2, QThread::idealThreadCount());
}
