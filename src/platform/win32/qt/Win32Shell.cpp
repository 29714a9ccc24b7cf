#include "../../Shell.h"

#include "../../UserFolders.h"

#include <QImage>
#include <QPixmap>
#include <QProcess>

// windows.h must come before the shell's headers.
#include <windows.h>
// (keep)
#include <commctrl.h>
#include <commoncontrols.h>
#include <shellapi.h>
#include <shlobj.h>

namespace platform {

namespace {

std::wstring wide(const QString& text)
{
    return text.toStdWString();
}

// The shell's small icon of a path, and its index in the system image list.
bool shellIconOf(const QString& path, SHFILEINFOW& info)
{
    const std::wstring file = wide(path);
    return SHGetFileInfoW(file.c_str(), FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_NORMAL, &info,
                          sizeof info, SHGFI_ICON | SHGFI_SMALLICON) != 0;
}

} // namespace

QString fileManagerPath(const QString& path)
{
    if (path.size() < MAX_PATH)
        return path;
    const std::wstring extended = L"\\\\?\\" + wide(path);
    std::wstring shortPath(extended.size() + 1, L'\0');
    const DWORD length =
        GetShortPathNameW(extended.c_str(), shortPath.data(), DWORD(shortPath.size()));
    if (length > 0 && length < shortPath.size()) {
        shortPath.resize(length);
        const QString shortened = QString::fromStdWString(shortPath).mid(4);
        if (shortened.size() < MAX_PATH)
            return shortened;
    }
    QString folder = path;
    while (folder.size() >= MAX_PATH) {
        const qsizetype separator = folder.lastIndexOf(QLatin1Char('\\'));
        if (separator <= 0)
            return path;
        folder.truncate(separator);
    }
    return folder;
}

bool exploreFolder(QWidget* owner, const QString& path)
{
    const std::wstring file = wide(path);
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = 0;
    info.hwnd = owner ? reinterpret_cast<HWND>(owner->winId()) : nullptr;
    info.lpVerb = L"explore";
    info.lpFile = file.c_str();
    info.nShow = SW_SHOWNORMAL;
    return ShellExecuteExW(&info) != FALSE;
}

bool showItem(const QString& path, QObject* parent)
{
    // Lives until its parent goes: Explorer is not waited for, only started.
    auto* explorer = new QProcess(parent);
    explorer->start(QStringLiteral("explorer.exe"), {QStringLiteral("/select,"), path},
                    QIODevice::ReadWrite);
    return explorer->waitForStarted();
}

void openFile(const QString& path, QObject*,
              const std::function<void(const QString& reason)>& failed)
{
    // The file's own path as the working folder, as the shell has always had it.
    const std::wstring file = wide(path);
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, file.c_str(), SW_SHOWNORMAL));
    if (result > 32) // smaller values are the shell's error codes
        return;
    switch (result) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        failed(QStringLiteral("The file is not there any more."));
        break;
    case SE_ERR_NOASSOC:
        failed(QStringLiteral("No program on this system opens files of this type."));
        break;
    case SE_ERR_ACCESSDENIED:
        failed(QStringLiteral("Access was denied."));
        break;
    default:
        failed(QStringLiteral("Windows could not open it (error %1).").arg(result));
    }
}

QIcon smallFileIcon(const QString& path)
{
    SHFILEINFOW info{};
    if (!shellIconOf(path, info))
        return {};
    QIcon icon(QPixmap::fromImage(QImage::fromHICON(info.hIcon)));
    DestroyIcon(info.hIcon);
    return icon;
}

QPixmap largeIcon(const QString& path)
{
    SHFILEINFOW info{};
    if (!shellIconOf(path, info))
        return {};
    DestroyIcon(info.hIcon);
    // The same icon at 48x48 from the system's extra-large image list.
    IImageList* list = nullptr;
    if (FAILED(SHGetImageList(SHIL_EXTRALARGE, __uuidof(IImageList),
                              reinterpret_cast<void**>(&list))) ||
        !list)
        return {};
    HICON icon = ImageList_GetIcon(reinterpret_cast<HIMAGELIST>(list), info.iIcon, 0);
    list->Release();
    if (!icon)
        return {};
    QPixmap pixmap = QPixmap::fromImage(QImage::fromHICON(icon));
    DestroyIcon(icon);
    // The list is drawn for the screen's scaling (72 pixels at 150%): it is
    // shown at 48 of the window's own pixels, as the card has room for.
    pixmap.setDevicePixelRatio(qreal(pixmap.width()) / 48);
    return pixmap;
}

namespace {

int CALLBACK selectStart(HWND window, UINT message, LPARAM, LPARAM start)
{
    if (message == BFFM_INITIALIZED)
        SendMessageW(window, BFFM_SETSELECTIONW, TRUE, start);
    return 0;
}

} // namespace

QString browseForFolder(const QString& title, const QString& start)
{
    const std::wstring caption = wide(title);
    const std::wstring startPath = wide(start);
    BROWSEINFOW browse{};
    browse.lpszTitle = caption.c_str();
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_NEWDIALOGSTYLE;
    browse.lpfn = selectStart;
    browse.lParam = reinterpret_cast<LPARAM>(startPath.c_str());
    LPITEMIDLIST chosen = SHBrowseForFolderW(&browse);
    if (!chosen)
        return {};
    wchar_t path[MAX_PATH] = {};
    const bool found = SHGetPathFromIDListW(chosen, path);
    IMalloc* allocator = nullptr;
    if (SUCCEEDED(SHGetMalloc(&allocator)) && allocator) {
        allocator->Free(chosen);
        allocator->Release();
    }
    return found ? QString::fromWCharArray(path) : QString();
}

QIcon folderIcon()
{
    return smallFileIcon(QString::fromStdWString(windowsFolderPath()));
}

} // namespace platform
