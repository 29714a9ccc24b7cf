#include "RecentFolders.h"

#include "ClickableLabel.h"
#include "HomeLog.h"
#include "platform/Shell.h"
#include "settings/SettingsStore.h"

#include <QBoxLayout>
#include <QFileInfo>

namespace {

constexpr int shortenedLength = 36;
constexpr int shortenedPart = 16;

QString valueName(int index)
{
    return QStringLiteral("RecentFile%1").arg(index + 1);
}

} // namespace

RecentFolders::RecentFolders(QWidget* box, QBoxLayout* layout)
    : QObject(box)
{
    for (int row = 0; row < rowCount; ++row) {
        auto* text = new ClickableLabel(box);
        auto* icon = new ClickableLabel(box);
        const QString name = QStringLiteral("recentLabel%1").arg(row + 1);
        text->setObjectName(name);
        icon->setObjectName(name);
        icon->setMaximumWidth(20);
        // A narrow window elides the text rather than growing; the tooltip
        // has the whole path.
        text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        for (ClickableLabel* label : {text, icon})
            connect(label, &ClickableLabel::clicked, this, [this, row] { onRowClicked(row); });
        auto* rowLayout = new QHBoxLayout;
        rowLayout->addWidget(icon);
        rowLayout->addWidget(text);
        layout->addLayout(rowLayout);
        iconLabels.append(icon);
        textLabels.append(text);
    }
    layout->addStretch();
    load();
    showPaths();
}

RecentFolders::~RecentFolders() = default;

void RecentFolders::load()
{
    recentPaths.clear();
    for (int index = 0; index < rowCount; ++index) {
        const QString path = SettingsStore::readString(valueName(index)).value_or(QString());
        if (!path.isEmpty() && QFileInfo::exists(path))
            recentPaths.append(path);
    }
}

void RecentFolders::showPaths()
{
    for (int row = 0; row < rowCount; ++row) {
        ClickableLabel* text = textLabels.at(row);
        ClickableLabel* icon = iconLabels.at(row);
        if (row >= recentPaths.size()) {
            text->setVisible(false);
            icon->setVisible(false);
            continue;
        }
        const QString& path = recentPaths.at(row);
        text->setElidedText(shortenedPath(path));
        text->setToolTip(path);
        text->setVisible(true);
        const QIcon shellIcon = platform::smallFileIcon(path);
        icon->setPixmap(shellIcon.pixmap(16, 16));
        icon->setVisible(!shellIcon.isNull());
    }
}

QString RecentFolders::shortenedPath(const QString& path)
{
    if (path.size() <= shortenedLength)
        return path;
    return path.left(shortenedPart) + QStringLiteral("...") + path.right(shortenedPart);
}

void RecentFolders::remember(const QString& path)
{
    for (int index = 0; index < recentPaths.size(); ++index) {
        if (recentPaths.at(index).compare(path, Qt::CaseInsensitive) == 0) {
            recentPaths.removeAt(index);
            break;
        }
    }
    recentPaths.prepend(path);
    SettingsStore::Batch batch;
    for (int index = 0; index < recentPaths.size(); ++index)
        SettingsStore::writeString(valueName(index), recentPaths.at(index));
    // A list that cannot be stored is simply not remembered.
    if (!batch.finish())
        qCWarning(lcHome).noquote() << "recent folders not stored:" << SettingsStore::location();
    showPaths();
}

void RecentFolders::onRowClicked(int row)
{
    if (row >= recentPaths.size())
        return;
    const QString path = recentPaths.at(row);
    // A folder deleted since the list was shown leaves the rows instead.
    if (!QFileInfo::exists(path)) {
        recentPaths.removeAt(row);
        showPaths();
    }
    emit chosen(path);
}
