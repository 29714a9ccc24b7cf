#pragma once

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <functional>

// Runs `check` on the next modal window to open, then closes it. Call before
// the action that opens it: the action blocks until the window is gone.
inline void onNextModal(std::function<void(QWidget*)> check)
{
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [timer, check] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal)
            return;
        timer->stop();
        timer->deleteLater();
        check(modal);
        modal->close();
    });
    timer->start(10);
}

// Answers the next message box with `button`, keeping its title and text.
inline void answerNextMessage(QMessageBox::StandardButton button, QString* title = nullptr,
                              QString* text = nullptr)
{
    onNextModal([=](QWidget* modal) {
        auto* box = qobject_cast<QMessageBox*>(modal);
        if (!box)
            return;
        if (title)
            *title = box->windowTitle();
        if (text)
            *text = box->text();
        if (QAbstractButton* answer = box->button(button))
            answer->click();
    });
}

// Chooses `path` in Qt's own folder picker by typing it, which, unlike
// selecting it, does not depend on the picker having listed the folder yet.
inline void chooseFolder(QFileDialog* picker, const QString& path)
{
    if (auto* name = picker->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        name->setText(path);
    static_cast<QDialog*>(picker)->accept();
}
