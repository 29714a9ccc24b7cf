#include "../ScreenMetrics.h"

#include <windows.h>

namespace platform {

ScreenSize fullScreenClientSize()
{
    return {static_cast<std::uint32_t>(GetSystemMetrics(SM_CXFULLSCREEN)),
            static_cast<std::uint32_t>(GetSystemMetrics(SM_CYFULLSCREEN))};
}

} // namespace platform
