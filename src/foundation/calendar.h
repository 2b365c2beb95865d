// The universal calendar: the proleptic Gregorian one, which goes on before 1582 by the same rules. The C
// library's own does not reach as far on every system.
#pragma once

#include <cstdint>
#include <ctime>

namespace k7calendar {

inline constexpr int64_t DAY = 86400;       // seconds
inline constexpr int FIRST_TM_YEAR = 1900;  // from which tm_year counts

/// Rounded down, also below 0.
constexpr int64_t FloorDiv(int64_t a, int64_t b) { return a / b - (a % b < 0); }

/// Days from 1970-01-01 to a date, `month` 1 to 12.
int64_t DaysFromDate(int64_t year, int64_t month, int64_t day);

/// 0 is a Sunday.
constexpr int WeekDay(int64_t days) {
  return static_cast<int>(days + 4 - FloorDiv(days + 4, 7) * 7);  // 1970-01-01 was a Thursday
}

/// The fields of a moment in seconds since 1970, without daylight time. False when the year does not fit.
bool SplitSeconds(int64_t seconds, std::tm& fields);

}  // namespace k7calendar
