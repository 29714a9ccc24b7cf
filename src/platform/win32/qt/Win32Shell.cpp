#include "../../Shell.h"

#include "../../UserFolders.h"

#include <QImage>
#include <QPixmap>
#include <QProcess>

// windows.h must come before the shell's header.
#include <windows.h>
// (keep)
#include <shellapi.h>

namespace platform {

namespace {

std::wstring wide(const QString& text)
{
    return text.toStdWString();
}

} // namespace

void exploreFolder(QWidget* owner, const QString& path)
{
    const std::wstring file = wide(path);
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = 0;
    info.hwnd = owner ? reinterpret_cast<HWND>(owner->winId()) : nullptr;
    info.lpVerb = L"explore";
    info.lpFile = file.c_str();
    info.nShow = SW_SHOWNORMAL;
    ShellExecuteExW(&info);
}

void showItem(const QString& path, QObject* parent)
{
    // Lives until its parent goes: Explorer is neither waited for nor watched.
    auto* explorer = new QProcess(parent);
    explorer->start(QStringLiteral("explorer.exe"), {QStringLiteral("/select,"), path},
                    QIODevice::ReadWrite);
}

void openFile(const QString& path)
{
    // The file's own path as the working folder, as the shell has always had it.
    const std::wstring file = wide(path);
    ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, file.c_str(), SW_SHOWNORMAL);
}

QIcon smallFileIcon(const QString& path)
{
    SHFILEINFOW info{};
    const std::wstring file = wide(path);
    if (SHGetFileInfoW(file.c_str(), FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_NORMAL, &info,
                       sizeof info, SHGFI_ICON | SHGFI_SMALLICON) == 0)
        return {};
    QIcon icon(QPixmap::fromImage(QImage::fromHICON(info.hIcon)));
    DestroyIcon(info.hIcon);
    return icon;
}

QIcon folderIcon()
{
    return smallFileIcon(QString::fromStdWString(windowsFolderPath()));
}

} // namespace platform
