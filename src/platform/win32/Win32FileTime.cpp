#include "../FileTime.h"

#include <windows.h>

namespace platform {

bool fileTimeToCalendar(std::uint64_t ticks, CalendarTime& time)
{
    FILETIME fileTime;
    fileTime.dwLowDateTime = static_cast<DWORD>(ticks & 0xFFFFFFFFu);
    fileTime.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    SYSTEMTIME system;
    if (!FileTimeToSystemTime(&fileTime, &system))
        return false;
    time = {system.wYear,   system.wMonth,  system.wDay,         system.wHour,
            system.wMinute, system.wSecond, system.wMilliseconds};
    return true;
}

} // namespace platform
