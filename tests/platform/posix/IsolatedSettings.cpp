#include "../IsolatedSettings.h"

#include <cstdlib>
#include <ftw.h>
#include <unistd.h>

namespace {
int removeEntry(const char* path, const struct stat*, int, FTW*)
{
    return ::remove(path);
}
} // namespace

IsolatedSettings::IsolatedSettings()
{
    std::string pattern = "/tmp/tallyroot-settings-XXXXXX";
    if (::mkdtemp(pattern.data()))
        location = pattern;
    ::setenv("XDG_CONFIG_HOME", location.c_str(), 1);
    // The program's data, such as the scans it keeps, goes there too.
    ::setenv("XDG_DATA_HOME", (location + "/data").c_str(), 1);
    ::unsetenv("OneDrive");
}

void IsolatedSettings::setOneDrivePath(const platform::NativeString& path)
{
    if (path.empty())
        ::unsetenv("OneDrive");
    else
        ::setenv("OneDrive", path.c_str(), 1);
}

void IsolatedSettings::clear()
{
    const std::string folder = location + "/Tallyroot";
    ::nftw(folder.c_str(), &removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

IsolatedSettings::~IsolatedSettings()
{
    if (!location.empty())
        ::nftw(location.c_str(), &removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}
