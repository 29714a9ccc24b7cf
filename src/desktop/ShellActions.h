#pragma once

#include <QString>

class QUrl;
class QWidget;

// The program's hand-offs to the desktop: folders, files, links and icons.
// When nothing takes a path, the user is told which path could not be opened.
namespace ShellActions {

void exploreFolder(QString path, QWidget* owner);
void showInExplorer(QString path, QWidget* owner);
void openFile(const QString& fullPath, QWidget* owner);
void openLink(const QUrl& link, QWidget* owner);

} // namespace ShellActions
