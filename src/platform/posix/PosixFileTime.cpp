#include "../FileTime.h"

namespace platform {

namespace {

constexpr std::uint64_t ticksPerSecond = 10000000;
constexpr std::int64_t secondsPerDay = 86400;
// Days from 0000-03-01 to 1601-01-01 in the proleptic Gregorian calendar.
constexpr std::int64_t daysTo1601 = 584694;

// Year, month and day of a day count from 0000-03-01 (Howard Hinnant's method).
void civilFromDays(std::int64_t days, int& year, int& month, int& day)
{
    const std::int64_t era = days / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthIndex = (5 * dayOfYear + 2) / 153;
    day = static_cast<int>(dayOfYear - (153 * monthIndex + 2) / 5 + 1);
    month = static_cast<int>(monthIndex < 10 ? monthIndex + 3 : monthIndex - 9);
    year = static_cast<int>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
}

} // namespace

bool fileTimeToCalendar(std::uint64_t ticks, CalendarTime& time)
{
    // Windows refuses file times with the top bit set; so do we.
    if (ticks >= (std::uint64_t{1} << 63))
        return false;
    const auto seconds = static_cast<std::int64_t>(ticks / ticksPerSecond);
    const std::int64_t secondOfDay = seconds % secondsPerDay;
    civilFromDays(seconds / secondsPerDay + daysTo1601, time.year, time.month, time.day);
    time.hour = static_cast<int>(secondOfDay / 3600);
    time.minute = static_cast<int>(secondOfDay / 60 % 60);
    time.second = static_cast<int>(secondOfDay % 60);
    time.millisecond = static_cast<int>(ticks % ticksPerSecond / 10000);
    return true;
}

} // namespace platform
