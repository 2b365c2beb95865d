#include <k7/foundation/time.h>

#include "io/os.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int64_t HOUR = 3600;
constexpr int64_t DAY = 24 * HOUR;
// Beyond this the year does not fit an int.
constexpr int64_t FARTHEST = int64_t{INT32_MAX} * 366 * DAY;
constexpr int FIRST_TM_YEAR = 1900;

int64_t FloorDiv(int64_t a, int64_t b) { return a / b - (a % b < 0); }

// Days from 1970-01-01 to a date of the proleptic Gregorian calendar, and back: Howard Hinnant,
// "chrono-Compatible Low-Level Date Algorithms", days_from_civil and civil_from_days. Years run from March,
// so that the leap day is their last; an era is 400 of them.
constexpr int64_t ERA_DAYS = 146097;
constexpr int64_t EPOCH_DAYS = 719468;  // 0000-03-01 to 1970-01-01

int64_t DaysFromDate(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2;
  const int64_t era = FloorDiv(year, 400);
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  return era * ERA_DAYS + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - EPOCH_DAYS;
}

// Without a name of its own the library's clock would lend the machine's. Not every system's fields have one.
template <class Fields>
void NameUniversalZone(Fields& fields) {
  if constexpr (requires { fields.tm_zone; }) fields.tm_zone = "GMT";
}

// Fields of the universal calendar. False when the year does not fit.
bool SplitSeconds(int64_t seconds, std::tm& fields) {
  const int64_t days = FloorDiv(seconds, DAY);
  const int64_t era = FloorDiv(days + EPOCH_DAYS, ERA_DAYS);
  const int64_t dayOfEra = days + EPOCH_DAYS - era * ERA_DAYS;
  const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
  const int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  const int64_t year = yearOfEra + era * 400 + (month <= 2);
  const int64_t tmYear = year - FIRST_TM_YEAR;
  if (tmYear < INT32_MIN || year > INT32_MAX) return false;

  const int64_t second = seconds - days * DAY;
  fields = {};
  fields.tm_year = static_cast<int>(tmYear);
  fields.tm_mon = static_cast<int>(month) - 1;
  fields.tm_mday = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5) + 1;
  fields.tm_hour = static_cast<int>(second / HOUR);
  fields.tm_min = static_cast<int>(second / 60 % 60);
  fields.tm_sec = static_cast<int>(second % 60);
  fields.tm_wday = static_cast<int>(days + 4 - FloorDiv(days + 4, 7) * 7);  // 1970-01-01 was a Thursday
  fields.tm_yday = static_cast<int>(days - DaysFromDate(year, 1, 1));
  return true;
}

// Seconds of fields in the universal calendar; ints cannot make this overflow.
int64_t JoinSeconds(const K7TimeStruct& fields) {
  const int64_t months = int64_t{fields.month} - 1;
  const int64_t years = FloorDiv(months, 12);
  const int64_t days = DaysFromDate(fields.year + years, months - years * 12 + 1, 1) + fields.day - 1;
  return days * DAY + fields.hour * HOUR + int64_t{fields.minute} * 60 + fields.second;
}

bool IsDaylight(int64_t seconds) {
  std::tm local{};
  return k7os::LocalTime(seconds, local) && local.tm_isdst > 0;
}

// Reads the two or four digits at `p`.
bool ReadDigits(const char* p, int count, int& value) {
  value = 0;
  for (int i = 0; i < count; ++i) {
    if (!K7String::IsDigit(p[i])) return false;
    value = value * 10 + (p[i] - '0');
  }
  return true;
}

}  // namespace

K7Time::K7Time(int year, int month, int day, int hour, int minute, int second, int offset, bool dst)
    : K7Time() {
  SetTime(year, month, day, hour, minute, second, offset, dst);
}

K7Time::K7Time(const K7TimeStruct& fields, int offset, bool dst) : K7Time() { SetTime(fields, offset, dst); }

K7Time& K7Time::operator+=(int seconds) {
  m_seconds =
      seconds > 0 ? std::min(m_seconds, INT64_MAX - seconds) : std::max(m_seconds, INT64_MIN - seconds);
  m_seconds += seconds;
  return *this;
}

bool K7Time::GetTime(K7TimeStruct& fields, int offset, bool dst) const {
  std::tm tm;
  if (!GetTM(tm, offset, dst) || tm.tm_year > INT32_MAX - FIRST_TM_YEAR) return false;
  fields = {tm.tm_year + FIRST_TM_YEAR,
            tm.tm_mon + 1,
            tm.tm_mday,
            tm.tm_hour,
            tm.tm_min,
            tm.tm_sec,
            tm.tm_wday,
            tm.tm_yday};
  return true;
}

bool K7Time::GetTM(std::tm& fields, int offset, bool dst) const {
  if (m_seconds < -FARTHEST || m_seconds > FARTHEST) return false;
  if (offset == LOCAL) return k7os::LocalTime(m_seconds, fields);
  const bool summer = dst && IsDaylight(m_seconds);
  if (!SplitSeconds(m_seconds - int64_t{offset} * 60 + (summer ? HOUR : 0), fields)) return false;
  fields.tm_isdst = summer;
  NameUniversalZone(fields);
  return true;
}

bool K7Time::SetTime(const K7TimeStruct& fields, int offset, bool dst) {
  int64_t seconds = JoinSeconds(fields);
  if (offset == LOCAL) {
    std::tm local;
    if (!SplitSeconds(seconds, local)) return false;
    local.tm_isdst = dst ? -1 : 0;
    return k7os::MakeTime(local, m_seconds);
  }
  seconds += int64_t{offset} * 60;
  if (dst && IsDaylight(seconds - HOUR)) seconds -= HOUR;
  m_seconds = seconds;
  return true;
}

bool K7Time::SetTime(int year, int month, int day, int hour, int minute, int second, int offset, bool dst) {
  K7TimeStruct fields;
  fields.year = year;
  fields.month = month;
  fields.day = day;
  fields.hour = hour;
  fields.minute = minute;
  fields.second = second;
  return SetTime(fields, offset, dst);
}

bool K7Time::SetTime(const K7String& text, int offset, bool dst) {
  static const int LENGTH = 19;
  const char* const p = text;
  if (text.Len() != LENGTH || p[4] != '-' || p[7] != '-' || p[10] != ' ' || p[13] != ':' || p[16] != ':')
    return false;
  K7TimeStruct fields;
  const bool numbers = ReadDigits(p, 4, fields.year) && ReadDigits(p + 5, 2, fields.month) &&
                       ReadDigits(p + 8, 2, fields.day) && ReadDigits(p + 11, 2, fields.hour) &&
                       ReadDigits(p + 14, 2, fields.minute) && ReadDigits(p + 17, 2, fields.second);
  return numbers && SetTime(fields, offset, dst);
}

K7String K7Time::Format(const char* pattern, int offset, bool dst) const {
  static const size_t LONGEST = size_t{1} << 20;
  K7String text;
  std::tm fields;
  if (!pattern || !GetTM(fields, offset, dst)) return text;
  // What the standard libraries agree to write.
  if (fields.tm_year < -FIRST_TM_YEAR || fields.tm_year > 9999 - FIRST_TM_YEAR) return text;
  // A mark at the end tells an empty result from a buffer that is too small.
  const K7String marked = K7String(pattern) + '|';
  for (size_t size = 256; size <= LONGEST; size *= 4) {
    char* const buffer = static_cast<char*>(std::malloc(size));
    if (!buffer) break;
    const size_t length = std::strftime(buffer, size, marked, &fields);
    if (length > 0) text.Copy(buffer, static_cast<int>(length) - 1);
    std::free(buffer);
    if (length > 0) break;
  }
  return text;
}
