#pragma once

#include <QLabel>

// A label that acts as a link: a pointing hand over it, and any press on it
// reports a click.
class ClickableLabel : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ClickableLabel)

public:
    explicit ClickableLabel(QWidget* parent = nullptr, Qt::WindowFlags f = {});

    // Shows the text, shortened in the middle with "…" when the label is too
    // narrow for it; the whole text comes back as the label widens.
    void setElidedText(const QString& text);

signals:
    void clicked();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();

    QString fullText;
};
