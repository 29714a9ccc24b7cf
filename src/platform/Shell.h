#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QWidget>

#include <functional>

class QObject;

// Handing paths to the desktop. Each takes a path with the platform's own
// separators; those that return a flag return false when nothing could take
// the path.
namespace platform {

// The path as the file manager can take it. Windows Explorer takes no path
// of MAX_PATH characters or more: such a path is given in its short (8.3)
// form, or where that is still too long, as the nearest folder above it that
// is short enough. Elsewhere the path itself.
[[nodiscard]] QString fileManagerPath(const QString& path);
// Opens a folder in a file manager window.
bool exploreFolder(QWidget* owner, const QString& path);
// Shows a file manager window with the item selected.
bool showItem(const QString& path, QObject* parent);
// Opens a file with the program the desktop associates with it. When that
// fails, `failed` is called with the reason, at once or once the desktop's
// opener has ended, unless `context` is gone by then.
void openFile(const QString& path, QObject* context,
              const std::function<void(const QString& reason)>& failed);
// The 16x16 icon the desktop shows for a file; none for a file that is gone.
[[nodiscard]] QIcon smallFileIcon(const QString& path);
// The small icon the desktop shows for a folder. Call from the GUI thread.
[[nodiscard]] QIcon folderIcon();
// The large (48x48) icon of a drive or folder for the home screen's cards;
// none when the desktop has none.
[[nodiscard]] QPixmap largeIcon(const QString& path);
// Asks the user for a folder, starting at `start`; empty when cancelled.
[[nodiscard]] QString browseForFolder(const QString& title, const QString& start);

} // namespace platform
