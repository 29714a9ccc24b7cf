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

// Where the settings live: the registry key, or the settings file.
[[nodiscard]] QString location();
// How many values are stored: a stored count can promise no more than that.
[[nodiscard]] quint32 storedValueCount();

// Gathers the writes made while it lives: on Linux the settings file is
// written once, when the batch finishes.
class Batch {
public:
    Batch();
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    // Ends the batch; false when any of its writes failed.
    [[nodiscard]] bool finish();

private:
    bool finished = false;
};

// Values kept outside the application's own key.
[[nodiscard]] QString oneDrivePath();
[[nodiscard]] QString downloadsPath();

} // namespace SettingsStore
