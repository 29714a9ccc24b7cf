#pragma once

#include "platform/UserFolders.h"

#include <QIcon>
#include <QString>

class QObject;
class QWidget;

class QUrl;

// The program's hand-offs to the desktop: folders, files, links and icons.
// When nothing takes a path, the user is told which path could not be opened.
namespace ShellActions {

void exploreFolder(QWidget* owner, QString path);
void showInExplorer(QString path, QWidget* owner);
void openFile(const QString& fullPath, QWidget* owner);
void openLink(const QUrl& link, QWidget* owner);
[[nodiscard]] QIcon smallFileIcon(const QString& path);
[[nodiscard]] QString specialFolderPath(platform::SpecialFolder which);
[[nodiscard]] QString windowsFolderPath();

// A file's path from its folder and name: one trailing separator of the folder
// dropped, then joined with the platform's separator.
[[nodiscard]] QString joinFolderAndName(QString folder, const QString& name);

} // namespace ShellActions
