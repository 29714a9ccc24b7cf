#pragma once

#include <QtGlobal>

#include <optional>

// Whether the program takes light or dark colours as the desktop asks, or
// keeps to one of them.
enum class AppearanceChoice { FollowSystem, Light, Dark };

// The choice in its stored form: the number "Appearance", 0 to follow the
// desktop, 1 for light and 2 for dark.
namespace AppearanceSetting {

[[nodiscard]] AppearanceChoice load();
// Nothing, or a number that names no choice, follows the desktop.
[[nodiscard]] AppearanceChoice fromStored(std::optional<quint32> value);
[[nodiscard]] quint32 toStored(AppearanceChoice choice);
bool write(AppearanceChoice choice);

} // namespace AppearanceSetting
