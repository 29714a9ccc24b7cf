#pragma once

#include "../ColourScheme.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <initializer_list>

// What the desktop's answers say, apart from asking: the settings portal's
// value and the output of gsettings.
namespace platform {

// The portal's "color-scheme" value as Read (a variant in a variant) or
// ReadOne (a variant) gives it: 1 asks for dark, 2 for light, 0 for neither.
[[nodiscard]] ColourScheme schemeOfPortalValue(const QVariant& value);
// The GNOME "color-scheme" key as gsettings prints it: 'prefer-dark',
// 'prefer-light' or 'default'.
[[nodiscard]] ColourScheme schemeOfGnomeSetting(const QString& output);
// The GTK theme's name as gsettings prints it: one ending in "-dark" is dark,
// any other light.
[[nodiscard]] ColourScheme schemeOfGtkTheme(const QString& output);
// The first answer that is not Unknown, asking each source in turn and no
// further than needed.
[[nodiscard]] ColourScheme firstKnown(std::initializer_list<std::function<ColourScheme()>> sources);

} // namespace platform
