#include "WindowGeometry.h"

#include "settings/SettingsStore.h"

#include <limits>

namespace {
const QString posXName = QStringLiteral("posX");
const QString posYName = QStringLiteral("posY");
const QString widthName = QStringLiteral("width");
const QString heightName = QStringLiteral("height");
} // namespace

WindowGeometry WindowGeometry::restore(const Stored& stored, platform::ScreenSize screen)
{
    const quint32 cx = screen.width;
    const quint32 cy = screen.height;
    WindowGeometry g;
    if (stored.x) {
        g.x = *stored.x;
        if (g.x > cx)
            g.x = defaultX;
    }
    if (stored.y) {
        g.y = *stored.y;
        if (g.y > cy)
            g.y = defaultY;
    }
    if (stored.width) {
        g.width = *stored.width;
        if (g.width < minimumWidth)
            g.width = minimumWidth;
        else if (g.width > cx)
            g.width = cx;
        else if (g.x + g.width > cx)
            g.x = cx - g.width;
    }
    if (stored.height) {
        g.height = *stored.height;
        if (g.height < minimumHeight)
            g.height = minimumHeight;
        else if (g.height > cx) // against the width: long-standing behaviour, kept
            g.height = cy;
        else if (g.y + g.height > cy)
            g.y = cy - g.height; // wraps when the height exceeds cy
    }
    return g;
}

WindowGeometry WindowGeometry::fromRect(const QRect& rect)
{
    WindowGeometry g;
    g.x = static_cast<quint32>(rect.x());
    g.y = static_cast<quint32>(rect.y());
    g.width = static_cast<quint32>(rect.width());
    g.height = static_cast<quint32>(rect.height());
    return g;
}

WindowGeometry::Stored WindowGeometry::read()
{
    return {SettingsStore::readDword(posXName), SettingsStore::readDword(posYName),
            SettingsStore::readDword(widthName), SettingsStore::readDword(heightName)};
}

void WindowGeometry::write() const
{
    SettingsStore::Batch batch;
    SettingsStore::writeDword(posXName, x);
    SettingsStore::writeDword(posYName, y);
    SettingsStore::writeDword(widthName, width);
    SettingsStore::writeDword(heightName, height);
    (void)batch.finish(); // a window whose place cannot be stored opens at the default
}

bool WindowGeometry::hasPlaceablePosition() const
{
    constexpr auto largest = static_cast<quint32>(std::numeric_limits<int>::max());
    return x <= largest && y <= largest;
}
