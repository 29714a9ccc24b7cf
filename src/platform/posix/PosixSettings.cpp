#include "../SettingsBackend.h"

#include "../DebugLog.h"
#include "SettingsFile.h"

#include <QString>

#include <cstdlib>
#include <mutex>
#include <optional>
#include <pwd.h>
#include <sys/stat.h>
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

std::string settingsFilePath()
{
    return configFolder() + "/Tallyroot/Tallyroot.conf";
}

// The settings file as last read, kept while the file on disk stays the same,
// so that a run of values costs one read, and a batch of writes one write.
struct Settings {
    std::mutex mutex;
    std::optional<posix::SettingsFile> file;
    bool readable = false;
    struct stat seen {};
    int batchDepth = 0;
    bool unsaved = false;
};

Settings& settings()
{
    static Settings instance;
    return instance;
}

bool sameFile(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

// The current file, read again only when it changed on disk or moved (tests
// move it with XDG_CONFIG_HOME). Call with the mutex held.
posix::SettingsFile& current(Settings& state)
{
    const std::string path = settingsFilePath();
    struct stat now {};
    if (::stat(path.c_str(), &now) != 0)
        now = {};
    const bool fresh = state.file && state.file->path() == path && sameFile(now, state.seen);
    if (!fresh && !state.unsaved) {
        state.file.emplace(path);
        state.readable = state.file->load();
        state.seen = now;
    }
    return *state.file;
}

bool save(Settings& state)
{
    // A file that exists but cannot be read is left alone rather than replaced
    // by one that holds only the new values.
    if (!state.readable || !state.file->save()) {
        debugLog(L"Cannot write settings file: " +
                 QString::fromStdString(state.file->path()).toStdWString());
        return false;
    }
    if (::stat(state.file->path().c_str(), &state.seen) != 0)
        state.seen = {};
    debugLog(L"true");
    return true;
}

template <typename Change> bool write(Change&& change)
{
    Settings& state = settings();
    std::lock_guard lock(state.mutex);
    change(current(state));
    if (state.batchDepth > 0) {
        state.unsaved = true;
        return state.readable;
    }
    return save(state);
}

} // namespace

bool readDwordValue(const std::wstring& valueName, std::uint32_t& value)
{
    Settings& state = settings();
    std::lock_guard lock(state.mutex);
    const posix::SettingsFile& file = current(state);
    const auto stored = state.readable ? file.dword(valueName) : std::nullopt;
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
    Settings& state = settings();
    std::lock_guard lock(state.mutex);
    const posix::SettingsFile& file = current(state);
    if (!state.readable)
        return false;
    const auto stored = file.text(valueName);
    if (!stored) {
        debugLog(L"error");
        return false;
    }
    text = *stored;
    return true;
}

bool writeDwordValue(const std::wstring& valueName, std::uint32_t value)
{
    return write([&](posix::SettingsFile& file) { file.setDword(valueName, value); });
}

bool writeStringValue(const std::wstring& valueName, const std::wstring& text)
{
    return write([&](posix::SettingsFile& file) { file.setText(valueName, text); });
}

std::wstring settingsLocation()
{
    return QString::fromStdString(settingsFilePath()).toStdWString();
}

std::uint32_t storedValueCount()
{
    Settings& state = settings();
    std::lock_guard lock(state.mutex);
    const posix::SettingsFile& file = current(state);
    return state.readable ? static_cast<std::uint32_t>(file.valueCount()) : 0;
}

void beginSettingsBatch()
{
    Settings& state = settings();
    std::lock_guard lock(state.mutex);
    ++state.batchDepth;
}

bool endSettingsBatch()
{
    Settings& state = settings();
    std::lock_guard lock(state.mutex);
    if (--state.batchDepth > 0)
        return true;
    const bool saved = !state.unsaved || save(state);
    if (!saved)
        state.file.reset(); // what could not be written is not kept as if it were
    state.unsaved = false;
    return saved;
}

} // namespace platform
