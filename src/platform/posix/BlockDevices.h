#pragma once

#include <QString>

#include <optional>

namespace posix {

// Whether the disk behind a block device pays for seeks (a spinning disk), as
// sysfs under `sysBlock` (normally /sys/dev/block) tells it; none when it
// cannot tell. A virtual disk tells nothing: it says it spins whatever its
// host's disk is.
[[nodiscard]] std::optional<bool> seeksAreSlow(const QString& sysBlock, unsigned major,
                                               unsigned minor);

} // namespace posix
