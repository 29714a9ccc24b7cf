#pragma once

#include "DirectoryListing.h"

#include <string>

// Points the settings store at a throw-away place for the life of the object:
// a temporary XDG_CONFIG_HOME on Linux, a test subkey under Windows. The
// OneDrive folder is read from there too, never from the user's own setting.
// The user's data folder, where scans are kept, is a folder of its own too
// (XDG_DATA_HOME on Linux, LOCALAPPDATA on Windows); clear() leaves it alone.
class IsolatedSettings {
public:
    IsolatedSettings();
    ~IsolatedSettings();
    IsolatedSettings(const IsolatedSettings&) = delete;
    IsolatedSettings& operator=(const IsolatedSettings&) = delete;

    // Removes every stored value.
    void clear();
    // Names the OneDrive folder; an empty path means there is none.
    void setOneDrivePath(const platform::NativeString& path);

private:
    std::string location;
};
