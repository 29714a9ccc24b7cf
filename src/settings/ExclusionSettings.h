#pragma once

#include "ExcludeEntry.h"

#include <QList>

#include <optional>

// The folders left out of scans, up to ten, and the switch that leaves the
// OneDrive folder out, in their stored form.
namespace ExclusionSettings {

constexpr int maximumFolders = 10;

// The stored folders, in order.
[[nodiscard]] QList<ExcludeEntry> load();
// Whether the stored switch leaves the OneDrive folder out.
[[nodiscard]] bool loadExcludeOneDrive();
// Appends a folder unless the list is full or holds the path already, in any
// case; true when it was appended.
bool append(QList<ExcludeEntry>& list, const ExcludeEntry& entry);
// "1;C:\Temp" gives an enabled C:\Temp; a text without ";" or starting with it
// gives nothing.
[[nodiscard]] std::optional<ExcludeEntry> parseStored(const QString& text);

} // namespace ExclusionSettings
