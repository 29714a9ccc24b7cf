#include "../UserFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace platform {

namespace {

std::wstring standardPath(QStandardPaths::StandardLocation location)
{
    return QDir::toNativeSeparators(QStandardPaths::writableLocation(location)).toStdWString();
}

QStandardPaths::StandardLocation locationOf(SpecialFolder which)
{
    switch (which) {
    case SpecialFolder::Documents:
        return QStandardPaths::DocumentsLocation;
    case SpecialFolder::Music:
        return QStandardPaths::MusicLocation;
    case SpecialFolder::Pictures:
        return QStandardPaths::PicturesLocation;
    case SpecialFolder::Videos:
        return QStandardPaths::MoviesLocation;
    case SpecialFolder::Profile:
        break;
    }
    return QStandardPaths::HomeLocation;
}

} // namespace

std::wstring specialFolderPath(SpecialFolder which)
{
    return standardPath(locationOf(which));
}

std::wstring downloadsFolderPath()
{
    return standardPath(QStandardPaths::DownloadLocation);
}

std::wstring oneDriveFolderPath()
{
    // Linux sync clients export the folder as OneDrive, as Windows does; the
    // folder in the home directory is their common default.
    const QString variable = qEnvironmentVariable("OneDrive");
    if (!variable.isEmpty())
        return variable.toStdWString();
    const QString folder = QDir::homePath() + QStringLiteral("/OneDrive");
    return QFileInfo(folder).isDir() ? folder.toStdWString() : std::wstring();
}

std::wstring windowsFolderPath()
{
    return L"/";
}

void setOneDriveKey(const std::wstring&) {}

} // namespace platform
