#pragma once

#include <QIcon>

namespace platform {

// The small icon the desktop shows for a folder. Call from the GUI thread.
[[nodiscard]] QIcon folderIcon();

} // namespace platform
