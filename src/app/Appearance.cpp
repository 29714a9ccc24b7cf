#include "Appearance.h"

#include <QApplication>
#include <QStyle>

namespace {
const QString darkStyle = QStringLiteral("Fusion");
}

Appearance::Appearance(Detector detect, QObject* parent)
    : QObject(parent)
    , detect(std::move(detect))
    , lightStyle(QApplication::style()->name())
    , lightPalette(QApplication::palette())
{}

void Appearance::apply(AppearanceChoice chosen)
{
    choice = chosen;
    switch (choice) {
    case AppearanceChoice::Light:
        setDark(false);
        break;
    case AppearanceChoice::Dark:
        setDark(true);
        break;
    case AppearanceChoice::FollowSystem:
        setDark(detect() == platform::ColourScheme::Dark);
        break;
    }
}

void Appearance::followDesktopChanges()
{
    platform::watchColourScheme(this, [this] { onDesktopChanged(); });
}

void Appearance::onDesktopChanged()
{
    if (choice == AppearanceChoice::FollowSystem)
        apply(choice);
}

// A style set anew resets the palette to its own, so the palette comes after.
void Appearance::setDark(bool wanted)
{
    if (wanted == dark)
        return;
    dark = wanted;
    const QString style = dark ? darkStyle : lightStyle;
    if (QApplication::style()->name().compare(style, Qt::CaseInsensitive) != 0)
        QApplication::setStyle(style);
    QApplication::setPalette(dark ? darkPalette() : lightPalette);
}

QPalette Appearance::darkPalette()
{
    const QColor window(0x2d, 0x2d, 0x30);
    const QColor text(0xe8, 0xe8, 0xe8);
    const QColor disabledText(0x80, 0x80, 0x80);
    QPalette palette(window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Button, window.lighter(120));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, window);
    for (const auto role :
         {QPalette::WindowText, QPalette::ButtonText, QPalette::Text, QPalette::ToolTipText})
        palette.setColor(role, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, disabledText);
    palette.setColor(QPalette::Highlight, QColor(0x26, 0x4f, 0x78));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xff));
    palette.setColor(QPalette::LinkVisited, QColor(0xb4, 0x8c, 0xff));
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
        palette.setColor(QPalette::Disabled, role, disabledText);
    return palette;
}
