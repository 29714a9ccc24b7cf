#include "../ScreenMetrics.h"

#include <QGuiApplication>
#include <QScreen>

namespace platform {

ScreenSize fullScreenClientSize()
{
    const QScreen* screen = qGuiApp ? QGuiApplication::primaryScreen() : nullptr;
    if (!screen)
        return {};
    const QSize size = screen->availableGeometry().size();
    return {static_cast<std::uint32_t>(size.width()), static_cast<std::uint32_t>(size.height())};
}

} // namespace platform
