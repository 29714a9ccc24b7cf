#include "../../ColourScheme.h"

namespace platform {

// Windows tells of a change only through a window message; the choice is read
// again when the program starts or the options are saved.
void watchColourScheme(QObject*, const std::function<void()>&) {}

} // namespace platform
