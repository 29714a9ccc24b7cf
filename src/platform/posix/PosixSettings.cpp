#include "../SettingsBackend.h"

#include "../DebugLog.h"
#include "SettingsFile.h"

#include <QString>

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace platform {

namespace {

std::string homeFolder()
{
    if (const char* home = std::getenv("HOME"); home && *home)
        return home;
    if (const passwd* entry = getpwuid(getuid()); entry && entry->pw_dir)
        return entry->pw_dir;
    return "/";
}

std::string configFolder()
{
    // A relative XDG_CONFIG_HOME is invalid and ignored.
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config && *config == '/')
        return config;
    return homeFolder() + "/.config";
}

struct OpenedSettings {
    posix::SettingsFile file;
    bool readable;
};

OpenedSettings openSettings()
{
    posix::SettingsFile file(configFolder() + "/Tallyroot/Tallyroot.conf");
    const bool readable = file.load();
    return {std::move(file), readable};
}

bool store(const OpenedSettings& settings)
{
    // A file that exists but cannot be read is left alone rather than replaced
    // by one that holds only this value.
    if (!settings.readable || !settings.file.save()) {
        debugLog(L"Cannot write settings file: " +
                 QString::fromStdString(settings.file.path()).toStdWString());
        return false;
    }
    debugLog(L"true");
    return true;
}

} // namespace

bool readDwordValue(const std::wstring& valueName, std::uint32_t& value)
{
    const auto settings = openSettings();
    const auto stored = settings.readable ? settings.file.dword(valueName) : std::nullopt;
    if (!stored) {
        debugLog(valueName + L" : Cannot read DWORD from settings file.");
        return false;
    }
    value = *stored;
    return true;
}

bool readStringValue(const std::wstring& valueName, std::wstring& text)
{
    text.clear();
    const auto settings = openSettings();
    if (!settings.readable)
        return false;
    const auto stored = settings.file.text(valueName);
    if (!stored) {
        debugLog(L"error");
        return false;
    }
    text = *stored;
    return true;
}

bool writeDwordValue(const std::wstring& valueName, std::uint32_t value)
{
    auto settings = openSettings();
    settings.file.setDword(valueName, value);
    return store(settings);
}

bool writeStringValue(const std::wstring& valueName, const std::wstring& text)
{
    auto settings = openSettings();
    settings.file.setText(valueName, text);
    return store(settings);
}

} // namespace platform
