#include "RecentFolders.h"

#include "ClickableLabel.h"
#include "HomeLog.h"
#include "platform/Shell.h"
#include "settings/SettingsStore.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QLocale>

namespace {

constexpr int shortenedLength = 36;
constexpr int shortenedPart = 16;

QString valueName(int index)
{
    return QStringLiteral("RecentFile%1").arg(index + 1);
}

QString timeName(int index)
{
    return QStringLiteral("RecentTime%1").arg(index + 1);
}

QDateTime storedTime(int index)
{
    const QString text = SettingsStore::readString(timeName(index)).value_or(QString());
    const QDateTime when = QDateTime::fromString(text, Qt::ISODate);
    return when.isValid() ? when.toUTC() : QDateTime();
}

} // namespace

RecentFolders::RecentFolders(QWidget* box, QBoxLayout* layout)
    : QObject(box)
{
    for (int row = 0; row < rowCount; ++row) {
        auto* text = new ClickableLabel(box);
        auto* icon = new ClickableLabel(box);
        auto* time = new ClickableLabel(box);
        const QString name = QStringLiteral("recentLabel%1").arg(row + 1);
        text->setObjectName(name);
        icon->setObjectName(name);
        time->setObjectName(QStringLiteral("recentTime%1").arg(row + 1));
        icon->setMaximumWidth(20);
        // A narrow window elides the text rather than growing; the tooltip
        // has the whole path.
        text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        // Under the path, smaller and quieter: the narrow column keeps its
        // width for the path.
        QFont small = time->font();
        small.setPointSizeF(small.pointSizeF() * 0.9);
        time->setFont(small);
        time->setForegroundRole(QPalette::PlaceholderText);
        for (ClickableLabel* label : {text, icon, time})
            connect(label, &ClickableLabel::clicked, this, [this, row] { onRowClicked(row); });
        auto* lines = new QVBoxLayout;
        lines->setSpacing(0);
        lines->addWidget(text);
        lines->addWidget(time);
        auto* rowLayout = new QHBoxLayout;
        rowLayout->addWidget(icon, 0, Qt::AlignTop);
        rowLayout->addLayout(lines);
        layout->addLayout(rowLayout);
        iconLabels.append(icon);
        textLabels.append(text);
        timeLabels.append(time);
    }
    layout->addStretch();
    load();
    showPaths();
}

RecentFolders::~RecentFolders() = default;

void RecentFolders::load()
{
    recentPaths.clear();
    scannedTimes.clear();
    for (int index = 0; index < rowCount; ++index) {
        const QString path = SettingsStore::readString(valueName(index)).value_or(QString());
        if (!path.isEmpty() && QFileInfo::exists(path)) {
            recentPaths.append(path);
            scannedTimes.append(storedTime(index));
        }
    }
}

void RecentFolders::showPaths()
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (int row = 0; row < rowCount; ++row) {
        ClickableLabel* text = textLabels.at(row);
        ClickableLabel* icon = iconLabels.at(row);
        ClickableLabel* time = timeLabels.at(row);
        if (row >= recentPaths.size()) {
            text->setVisible(false);
            icon->setVisible(false);
            time->setVisible(false);
            continue;
        }
        const QString& path = recentPaths.at(row);
        text->setElidedText(shortenedPath(path));
        text->setToolTip(path);
        text->setVisible(true);
        const QDateTime& scanned = scannedTimes.at(row);
        time->setText(whenText(scanned, now));
        time->setToolTip(scanned.isValid() ? QStringLiteral("Last scanned %1")
                                                 .arg(QLocale().toString(scanned.toLocalTime(),
                                                                         QLocale::LongFormat))
                                           : QString());
        time->setVisible(scanned.isValid());
        const QIcon shellIcon = platform::smallFileIcon(path);
        icon->setPixmap(shellIcon.pixmap(16, 16));
        icon->setVisible(!shellIcon.isNull());
    }
}

void RecentFolders::refresh()
{
    showPaths();
}

QString RecentFolders::shortenedPath(const QString& path)
{
    if (path.size() <= shortenedLength)
        return path;
    return path.left(shortenedPart) + QStringLiteral("...") + path.right(shortenedPart);
}

// Calendar days are the user's own, so "yesterday" turns at local midnight.
// A time ahead of now (a clock set back) shows as its date.
QString RecentFolders::whenText(const QDateTime& when, const QDateTime& now)
{
    if (!when.isValid())
        return {};
    const QDateTime local = when.toLocalTime();
    const QDateTime current = now.toLocalTime();
    const qint64 seconds = local.secsTo(current);
    if (seconds >= 0 && seconds < 60)
        return QStringLiteral("just now");
    if (seconds >= 0 && seconds < 3600)
        return QStringLiteral("%1 min ago").arg(seconds / 60);
    const qint64 days = local.date().daysTo(current.date());
    const QLocale locale;
    const QString time = locale.toString(local.time(), QStringLiteral("HH:mm"));
    if (days == 0)
        return QStringLiteral("today %1").arg(time);
    if (days == 1)
        return QStringLiteral("yesterday %1").arg(time);
    if (days > 1 && days < 7)
        return QStringLiteral("%1 days ago").arg(days);
    if (days > 0 && local.date().year() == current.date().year())
        return locale.toString(local.date(), QStringLiteral("d MMM"));
    return locale.toString(local.date(), QStringLiteral("d MMM yyyy"));
}

int RecentFolders::rowOf(const QString& path) const
{
    for (int index = 0; index < recentPaths.size(); ++index) {
        if (recentPaths.at(index).compare(path, Qt::CaseInsensitive) == 0)
            return index;
    }
    return -1;
}

void RecentFolders::remember(const QString& path)
{
    QDateTime scanned;
    if (const int row = rowOf(path); row >= 0) {
        recentPaths.removeAt(row);
        scanned = scannedTimes.takeAt(row);
    }
    recentPaths.prepend(path);
    scannedTimes.prepend(scanned);
    store();
    showPaths();
}

void RecentFolders::markScanned(const QString& path, const QDateTime& when)
{
    const int row = rowOf(path);
    if (row < 0)
        return;
    scannedTimes[row] = when.toUTC();
    store();
    showPaths();
}

// A folder never scanned to the end stores an empty time, which also
// replaces the time a folder before it in that row had.
void RecentFolders::store()
{
    SettingsStore::Batch batch;
    for (int index = 0; index < recentPaths.size(); ++index) {
        const QDateTime& scanned = scannedTimes.at(index);
        SettingsStore::writeString(valueName(index), recentPaths.at(index));
        SettingsStore::writeString(timeName(index),
                                   scanned.isValid() ? scanned.toString(Qt::ISODate) : QString());
    }
    // A list that cannot be stored is simply not remembered.
    if (!batch.finish())
        qCWarning(lcHome).noquote() << "recent folders not stored:" << SettingsStore::location();
}

void RecentFolders::onRowClicked(int row)
{
    if (row >= recentPaths.size())
        return;
    const QString path = recentPaths.at(row);
    // A folder deleted since the list was shown leaves the rows instead.
    if (!QFileInfo::exists(path)) {
        recentPaths.removeAt(row);
        scannedTimes.removeAt(row);
        showPaths();
    }
    emit chosen(path);
}
