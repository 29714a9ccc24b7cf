#pragma once

#include "ExcludeEntry.h"

#include <QList>

#include <optional>

// The process-wide exclusions: up to ten folders, and whether the OneDrive
// folder is left out of scans. Read by the scan engine.
namespace ExclusionSettings {

constexpr int maximumFolders = 10;

[[nodiscard]] QList<ExcludeEntry>& excludeList();
// 1 when the OneDrive folder is left out of scans, 0 otherwise.
[[nodiscard]] quint32& excludeOneDriveFolder();

// Replaces both with what the settings store holds.
void load();
// Appends a folder unless the list is full or holds the path already, in any
// case; true when it was appended.
bool append(QList<ExcludeEntry>& list, const ExcludeEntry& entry);
// "1;C:\Temp" gives an enabled C:\Temp; a text without ";" or starting with it
// gives nothing.
[[nodiscard]] std::optional<ExcludeEntry> parseStored(const QString& text);

} // namespace ExclusionSettings
