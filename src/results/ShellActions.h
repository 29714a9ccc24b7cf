#pragma once

#include "platform/UserFolders.h"

#include <QIcon>
#include <QString>

class QObject;
class QWidget;

// The program's hand-offs to the desktop: folders, files and icons. None of
// them shows a message; a failed call leaves the user without a window.
namespace ShellActions {

void exploreFolder(QWidget* owner, QString path);
void showInExplorer(QString path, QObject* parent);
void openFile(const QString& fullPath);
[[nodiscard]] QIcon smallFileIcon(const QString& path);
[[nodiscard]] QString specialFolderPath(platform::SpecialFolder which);
[[nodiscard]] QString windowsFolderPath();

// A file's path from its folder and name: one trailing separator of the folder
// dropped, then joined with the platform's separator.
[[nodiscard]] QString joinFolderAndName(QString folder, const QString& name);

} // namespace ShellActions
