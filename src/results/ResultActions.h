#pragma once

#include <QAction>
#include <QObject>

class QMenu;

// What the user can do with the entries the results show, each with its key:
// open, show in the file manager, copy the path, read again, move to the
// trash, remove for good, and find. The keys work in the lists and the map
// they are given to, each of which offers the actions in its context menu.
class ResultActions : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ResultActions)

public:
    explicit ResultActions(QObject* parent = nullptr);
    ~ResultActions() override;

    QAction open;
    QAction showInFolder;
    QAction copyPath;
    QAction refresh;
    QAction refreshAll;
    QAction moveToTrash;
    QAction deletePermanently;
    QAction find;

    // The actions' keys work while `view` has focus; its context menu offers
    // them after `prepare` has said, for that view, which apply.
    void attachTo(QWidget* view);

signals:
    // The user is about to act on `view`, by key or menu: the time to enable
    // the actions that fit what it has selected.
    void prepare(QWidget* view);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onMenuRequested(QWidget* view, const QPoint& at);
    [[nodiscard]] QList<QAction*> all();
    [[nodiscard]] QMenu* menuFor(QWidget* view);
};
