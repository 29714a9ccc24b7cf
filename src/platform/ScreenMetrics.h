#pragma once

#include <cstdint>

namespace platform {

struct ScreenSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

// The client area of a maximised window on the primary screen.
ScreenSize fullScreenClientSize();

} // namespace platform
