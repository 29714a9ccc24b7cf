#pragma once

#include <QList>
#include <QObject>
#include <QStringList>

class ClickableLabel;
class QBoxLayout;
class QWidget;

// The folders scanned last, newest first: kept in the settings store as
// RecentFile1 and on, shown as five rows of an icon and a path, either of
// which scans the folder when clicked.
class RecentFolders : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RecentFolders)

public:
    static constexpr int rowCount = 5;

    // Adds the rows to the layout of `box` and shows the stored folders that
    // are still there.
    RecentFolders(QWidget* box, QBoxLayout* layout);
    ~RecentFolders() override;

    [[nodiscard]] const QStringList& paths() const { return recentPaths; }
    // Puts the folder first, once (compared without regard to case), and
    // stores the list whole: it is never cut, so a sixth folder is written
    // but only five are read back.
    void remember(const QString& path);
    // Longer paths show as their first and last 16 characters around "...".
    [[nodiscard]] static QString shortenedPath(const QString& path);

signals:
    // A row was clicked; a folder deleted since it was shown has left the rows.
    void chosen(const QString& path);

private:
    void load();
    void showPaths();
    void onRowClicked(int row);

    QStringList recentPaths;
    QList<ClickableLabel*> iconLabels;
    QList<ClickableLabel*> textLabels;
};
