#pragma once

#include <cstdint>

namespace platform {

struct CalendarTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// Splits a file time (100-nanosecond ticks since 1601-01-01 UTC) into UTC
// calendar fields. False for times the system cannot express.
[[nodiscard]] bool fileTimeToCalendar(std::uint64_t ticks, CalendarTime& time);

} // namespace platform
