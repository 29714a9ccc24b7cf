#pragma once

#include <QString>

#include <optional>

// Typed values under the application's settings key. A value that is missing,
// unreadable or of the other type reads as std::nullopt; writes never delete.
namespace SettingsStore {

[[nodiscard]] std::optional<quint32> readDword(const QString& valueName);
[[nodiscard]] std::optional<QString> readString(const QString& valueName);
bool writeDword(const QString& valueName, quint32 value);
bool writeString(const QString& valueName, const QString& text);

// Values kept outside the application's own key.
[[nodiscard]] QString oneDrivePath();
[[nodiscard]] QString downloadsPath();

} // namespace SettingsStore
