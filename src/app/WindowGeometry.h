#pragma once

#include "platform/ScreenMetrics.h"

#include <QRect>
#include <QtGlobal>

#include <optional>

// The main window's client rectangle as the settings store keeps it: four
// unsigned 32-bit values, so a negative coordinate comes back as a large number.
class WindowGeometry {
public:
    struct Stored {
        std::optional<quint32> x;
        std::optional<quint32> y;
        std::optional<quint32> width;
        std::optional<quint32> height;
    };

    static constexpr quint32 defaultX = 100;
    static constexpr quint32 defaultY = 100;
    static constexpr quint32 minimumWidth = 986;
    static constexpr quint32 minimumHeight = 513;

    quint32 x = defaultX;
    quint32 y = defaultY;
    quint32 width = minimumWidth;
    quint32 height = minimumHeight;

    // Applies the on-screen rules to the values that were read.
    [[nodiscard]] static WindowGeometry restore(const Stored& stored, platform::ScreenSize screen);
    [[nodiscard]] static WindowGeometry fromRect(const QRect& rect);
    [[nodiscard]] static Stored read();
    void write() const;

    // False when a coordinate wrapped past what a window position can hold.
    [[nodiscard]] bool hasPlaceablePosition() const;
};
