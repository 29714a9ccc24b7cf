#pragma once

#include <string>

// Where the user's own folders are. Every lookup gives an empty string when the
// folder cannot be found.
namespace platform {

enum class SpecialFolder { Documents, Music, Pictures, Videos, Profile };

std::wstring specialFolderPath(SpecialFolder which);
std::wstring downloadsFolderPath();
std::wstring oneDriveFolderPath();
// A folder that always exists, whose shell icon stands for every folder.
std::wstring windowsFolderPath();

// The registry key whose "OneDrive" value names the folder (Windows only; on
// Linux the folder comes from the environment). Tests move it aside.
void setOneDriveKey(const std::wstring& subKey);

} // namespace platform
