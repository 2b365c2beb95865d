#include <k7/foundation/time.h>

#include "foundation/calendar.h"
#include "io/os.h"

#include <algorithm>
#include <cstdlib>

using k7calendar::DAY;
using k7calendar::DaysFromDate;
using k7calendar::FIRST_TM_YEAR;
using k7calendar::FloorDiv;
using k7calendar::SplitSeconds;

namespace {

constexpr int64_t HOUR = 3600;
// Beyond this the year does not fit an int.
constexpr int64_t FARTHEST = int64_t{INT32_MAX} * 366 * DAY;

// Without a name of its own the library's clock would lend the machine's. Not every system's fields have one.
template <class Fields>
void NameUniversalZone(Fields& fields) {
  if constexpr (requires { fields.tm_zone; }) fields.tm_zone = "GMT";
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
