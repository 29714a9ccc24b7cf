#include "../../ShellIcons.h"

#include "../../UserFolders.h"

#include <QImage>
#include <QPixmap>

// windows.h must come before the shell's header.
#include <windows.h>
// (keep)
#include <shellapi.h>

namespace platform {

namespace {

// Owns an icon handle returned by the shell.
class IconHandle {
public:
    explicit IconHandle(HICON icon)
        : icon(icon)
    {}
    ~IconHandle()
    {
        if (icon)
            DestroyIcon(icon);
    }
    IconHandle(const IconHandle&) = delete;
    IconHandle& operator=(const IconHandle&) = delete;
    [[nodiscard]] HICON get() const { return icon; }

private:
    HICON icon;
};

} // namespace

QIcon folderIcon()
{
    SHFILEINFOW info{};
    const std::wstring folder = windowsFolderPath();
    if (SHGetFileInfoW(folder.c_str(), FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_NORMAL, &info,
                       sizeof info, SHGFI_ICON | SHGFI_SMALLICON) == 0)
        return {};
    const IconHandle icon(info.hIcon);
    return QIcon(QPixmap::fromImage(QImage::fromHICON(icon.get())));
}

} // namespace platform
