#pragma once

#include <functional>

class QObject;

// Whether the desktop asks programs for light or dark colours.
namespace platform {

enum class ColourScheme { Unknown, Light, Dark };

// What the desktop asks for now; Unknown when it says nothing or cannot be
// asked. Quick even without a desktop: each question has a short timeout.
[[nodiscard]] ColourScheme desktopColourScheme();

// Calls `changed` when the desktop's choice may have changed, for as long as
// `context` lives. Does nothing where changes cannot be followed.
void watchColourScheme(QObject* context, const std::function<void()>& changed);

} // namespace platform
