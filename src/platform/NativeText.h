#pragma once

#include "DirectoryListing.h"

#include <QString>

// Conversions between the platform layer's native names and Qt's strings.
namespace platform {

[[nodiscard]] QString toQString(const NativeString& text);
[[nodiscard]] NativeString toNative(const QString& text);

// The path of an entry of a folder, joined with the platform's separator.
[[nodiscard]] QString childPath(const QString& folder, const QString& name);

} // namespace platform
