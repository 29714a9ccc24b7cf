#include "ClickableLabel.h"

#include <QFontMetrics>

ClickableLabel::ClickableLabel(QWidget* parent, Qt::WindowFlags f)
    : QLabel(parent, f)
{}

void ClickableLabel::enterEvent(QEnterEvent* event)
{
    setCursor(Qt::PointingHandCursor);
    QLabel::enterEvent(event);
}

void ClickableLabel::leaveEvent(QEvent* event)
{
    setCursor(Qt::ArrowCursor);
    QLabel::leaveEvent(event);
}

void ClickableLabel::mousePressEvent(QMouseEvent*)
{
    emit clicked();
}

void ClickableLabel::setElidedText(const QString& text)
{
    fullText = text;
    elide();
}

void ClickableLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    if (!fullText.isEmpty())
        elide();
}

void ClickableLabel::elide()
{
    setText(fontMetrics().elidedText(fullText, Qt::ElideMiddle, contentsRect().width()));
}
