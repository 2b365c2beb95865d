#include "foundation/calendar.h"

namespace {

// Howard Hinnant, "chrono-Compatible Low-Level Date Algorithms", days_from_civil and civil_from_days. Years
// run from March, so that the leap day is their last; an era is 400 of them.
constexpr int64_t ERA_DAYS = 146097;
constexpr int64_t EPOCH_DAYS = 719468;  // 0000-03-01 to 1970-01-01

}  // namespace

int64_t k7calendar::DaysFromDate(int64_t year, int64_t month, int64_t day) {
  year -= month <= 2;
  const int64_t era = FloorDiv(year, 400);
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  return era * ERA_DAYS + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - EPOCH_DAYS;
}

bool k7calendar::SplitSeconds(int64_t seconds, std::tm& fields) {
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
  fields.tm_hour = static_cast<int>(second / 3600);
  fields.tm_min = static_cast<int>(second / 60 % 60);
  fields.tm_sec = static_cast<int>(second % 60);
  fields.tm_wday = WeekDay(days);
  fields.tm_yday = static_cast<int>(days - DaysFromDate(year, 1, 1));
  return true;
}
