#pragma once

#include "DirectoryListing.h"

#include <QString>
#include <QStringList>

// Conversions between the platform layer's native names and Qt's strings.
namespace platform {

[[nodiscard]] QString toQString(const NativeString& text);
// The program's arguments as the system gave them: on Linux each as bytes,
// so that a name that is not UTF-8 survives; on Windows as Qt reads them.
// Needs the application object.
[[nodiscard]] QStringList arguments(int argc, char* argv[]);
[[nodiscard]] NativeString toNative(const QString& text);

// The path of an entry of a folder, joined with the platform's separator.
[[nodiscard]] QString childPath(const QString& folder, const QString& name);

} // namespace platform
