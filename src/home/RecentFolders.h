#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QStringList>

class ClickableLabel;
class QBoxLayout;
class QWidget;

// The folders scanned last, newest first: kept in the settings store as
// RecentFile1 and on, with when each was last scanned to the end as
// RecentTime1 and on (UTC, ISO 8601; empty while it never was), shown as five
// rows of an icon, a path and how long ago, any of which scans the folder when
// clicked.
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
    // Notes that a scan of the folder, a listed one, was made at `when`.
    void markScanned(const QString& path, const QDateTime& when);
    // Says again how long ago each folder was scanned, as of now.
    void refresh();
    // Longer paths show as their first and last 16 characters around "...".
    [[nodiscard]] static QString shortenedPath(const QString& path);
    // When a folder was scanned, as of `now`: "just now", "5 min ago",
    // "today 14:05", "yesterday 09:30", "3 days ago", then the date. Empty
    // when it is not known.
    [[nodiscard]] static QString whenText(const QDateTime& when, const QDateTime& now);

signals:
    // A row was clicked; a folder deleted since it was shown has left the rows.
    void chosen(const QString& path);

private:
    void load();
    void store();
    void showPaths();
    void onRowClicked(int row);
    [[nodiscard]] int rowOf(const QString& path) const;

    QStringList recentPaths;
    QList<QDateTime> scannedTimes; // one for each path, invalid when not known
    QList<ClickableLabel*> iconLabels;
    QList<ClickableLabel*> textLabels;
    QList<ClickableLabel*> timeLabels;
};
