#include "PaletteIcons.h"

#include <QAbstractButton>
#include <QEvent>
#include <QImage>
#include <QPixmap>
#include <QVariant>

namespace {

const char* const plainIconProperty = "tallyrootPlainIcon";
const char* const inkedKeyProperty = "tallyrootInkedIconKey";

// Darker than this is ink; the icons' coloured parts are all lighter.
constexpr int inkLightness = 90;

QPixmap recoloured(const QPixmap& pixmap, const QColor& ink)
{
    QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(line[x]);
            if (alpha > 0 && QColor(line[x]).lightness() < inkLightness)
                line[x] = qRgba(ink.red(), ink.green(), ink.blue(), alpha);
        }
    }
    QPixmap result = QPixmap::fromImage(image);
    result.setDevicePixelRatio(pixmap.devicePixelRatio());
    return result;
}

} // namespace

PaletteIcons::PaletteIcons(QObject* parent)
    : QObject(parent)
{}

bool PaletteIcons::isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

QIcon PaletteIcons::inked(const QIcon& icon, QSize size, const QColor& ink)
{
    QIcon result;
    for (const qreal ratio : {1.0, 1.5, 2.0})
        result.addPixmap(recoloured(icon.pixmap(size, ratio), ink));
    return result;
}

bool PaletteIcons::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::Polish || type == QEvent::PaletteChange) {
        if (auto* button = qobject_cast<QAbstractButton*>(watched))
            ink(button);
    }
    return QObject::eventFilter(watched, event);
}

// The button keeps its own icon in a property, so that a later palette inks
// the original rather than the last inking. An icon that is not the one set
// here last was given by the program since, and is the new original.
void PaletteIcons::ink(QAbstractButton* button)
{
    if (button->icon().isNull())
        return;
    const bool dark = isDark(button->palette());
    if (button->icon().cacheKey() != button->property(inkedKeyProperty).toLongLong()) {
        if (!dark)
            return;
        button->setProperty(plainIconProperty, button->icon());
    }
    const auto plain = button->property(plainIconProperty).value<QIcon>();
    button->setIcon(
        dark ? inked(plain, button->iconSize(), button->palette().color(QPalette::ButtonText))
             : plain);
    button->setProperty(inkedKeyProperty, button->icon().cacheKey());
}
