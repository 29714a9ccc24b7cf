#include "ResultActions.h"

#include "RemovalQuestion.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QMenu>

ResultActions::ResultActions(QObject* parent)
    : QObject(parent)
    , open(QStringLiteral("Open"))
    , showInFolder(QStringLiteral("Open with File Explorer"))
    , copyPath(QStringLiteral("Copy Path"))
    , refresh(QStringLiteral("Refresh"))
    , refreshAll(QStringLiteral("Refresh All"))
    , moveToTrash(QStringLiteral("Move to ") + RemovalQuestion::trashName())
    , deletePermanently(QStringLiteral("Delete Permanently"))
    , find(QStringLiteral("Find..."))
{
    open.setShortcuts({Qt::Key_Return, Qt::Key_Enter});
    copyPath.setShortcut(QKeySequence::Copy);
    refresh.setShortcut(QKeySequence::Refresh);
    refreshAll.setShortcut(Qt::CTRL | Qt::Key_F5);
    moveToTrash.setShortcut(QKeySequence::Delete);
    deletePermanently.setShortcut(Qt::SHIFT | Qt::Key_Delete);
    find.setShortcut(QKeySequence::Find);
    for (QAction* action : all())
        action->setShortcutContext(Qt::WidgetShortcut);
}

ResultActions::~ResultActions() = default;

QList<QAction*> ResultActions::all()
{
    return {&open,       &showInFolder, &copyPath,          &refresh,
            &refreshAll, &moveToTrash,  &deletePermanently, &find};
}

void ResultActions::attachTo(QWidget* view)
{
    view->addActions(all());
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QWidget::customContextMenuRequested, this,
            [this, view](const QPoint& at) { onMenuRequested(view, at); });
    // A key reaches an action only when it is enabled: each key press in the
    // view first sets them for what it has selected.
    view->installEventFilter(this);
}

QMenu* ResultActions::menuFor(QWidget* view)
{
    auto* menu = new QMenu(view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions({&open, &showInFolder, &copyPath});
    menu->addSeparator();
    menu->addActions({&refresh, &refreshAll});
    menu->addSeparator();
    menu->addActions({&moveToTrash, &deletePermanently});
    menu->addSeparator();
    menu->addAction(&find);
    return menu;
}

bool ResultActions::eventFilter(QObject* watched, QEvent* event)
{
    // Sent to the view before its keys are matched with the actions' keys.
    if (event->type() == QEvent::ShortcutOverride)
        emit prepare(static_cast<QWidget*>(watched));
    return false;
}

void ResultActions::onMenuRequested(QWidget* view, const QPoint& at)
{
    emit prepare(view);
    const auto* scrolled = qobject_cast<QAbstractScrollArea*>(view);
    const QWidget* surface = scrolled ? scrolled->viewport() : view;
    menuFor(view)->popup(surface->mapToGlobal(at));
}
