#pragma once

#include <string>

// Points the settings store at a throw-away place for the life of the object:
// a temporary XDG_CONFIG_HOME on Linux, a test subkey under Windows.
class IsolatedSettings {
public:
    IsolatedSettings();
    ~IsolatedSettings();
    IsolatedSettings(const IsolatedSettings&) = delete;
    IsolatedSettings& operator=(const IsolatedSettings&) = delete;

    // Removes every stored value.
    void clear();

private:
    std::string location;
};
