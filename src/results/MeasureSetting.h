#pragma once

#include "scan/ScanTree.h"

#include <optional>

// The measure the results screen was last switched to, kept for the next
// results: the number "SizeMeasure", 0 for size and 1 for space on disk.
namespace MeasureSetting {

[[nodiscard]] ScanTree::Measure load();
// Nothing, or a number that names no measure, is size.
[[nodiscard]] ScanTree::Measure fromStored(std::optional<quint32> value);
bool write(ScanTree::Measure measure);

} // namespace MeasureSetting
