#include <k7/foundation.h>

#include "support/platform.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

namespace {

// Central European Time by rule, whatever zones the machine has installed.
class K7TimeInEurope : public testing::Test {
 protected:
  K7TimeInEurope() { setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1); }
  ~K7TimeInEurope() override { unsetenv("TZ"); }
};

const char ISO[] = "%Y-%m-%d %H:%M:%S";

}  // namespace

TEST(K7Time, AgreesWithTheStandardCalendar) {
  std::mt19937_64 random(7);
  // Every day of the 400 years in which the calendar repeats itself, then days years away.
  for (int64_t i = 0; i < 150000; ++i) {
    const int64_t days = i < 146097 ? i - 100000 : static_cast<int64_t>(random() % 3652500) - 1826250;
    const int64_t seconds = days * 86400 + static_cast<int64_t>(random() % 86400);
    const std::chrono::sys_seconds moment{std::chrono::seconds(seconds)};
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    K7TimeStruct f;
    ASSERT_TRUE(K7Time(seconds).GetTime(f));
    ASSERT_EQ(std::chrono::year_month_day(std::chrono::year(f.year) / f.month / f.day), date) << seconds;
    ASSERT_EQ((f.hour * 60 + f.minute) * 60 + f.second, (moment - day).count());
    ASSERT_EQ(static_cast<unsigned>(f.weekDay), std::chrono::weekday(day).c_encoding());
    ASSERT_EQ(f.yearDay, (day - std::chrono::sys_days(date.year() / 1 / 1)).count());
    ASSERT_EQ(K7Time(f), K7Time(seconds));
  }
}

TEST(K7Time, TextsAndOffsets) {
  // Seconds from Python's calendar.timegm.
  K7Time time;
  EXPECT_TRUE(time.SetTime("1900-03-01 00:00:00", 0, false));
  EXPECT_EQ(time, -2203891200);
  EXPECT_TRUE(time.SetTime("2100-03-01 00:00:00", -330));
  EXPECT_EQ(time, 4107542400 - 19800);
  EXPECT_TRUE(time.SetTime("2024-02-29 12:34:56"));
  EXPECT_EQ(time, 1709210096);
  EXPECT_EQ(K7Time(2022, 26, 28, 36, 35, -4), time);            // by hand: 28 February 36:34:56
  EXPECT_STREQ(time.Format(ISO, -330), "2024-02-29 18:04:56");  // five and a half hours east
  EXPECT_STREQ(time.Format("%j %a", 780), "059 Wed");
  for (const char* bad :
       {"2024-02-29 12:34:561", "2024/02/29 12:34:56", "2024-02/29 12:34:56", "2024-02-29T12:34:56",
        "2024-02-29 12:34:5 ", "+024-02-29 12:34:56", "2024-02-29 12.34:56", "2024-02-29 12:34-56", ""})
    EXPECT_FALSE(time.SetTime(bad)) << bad;
  EXPECT_EQ(time += -1709210097, -1);
  // Longer than the first buffers, and empty.
  const std::string pattern(3000, 'x');
  EXPECT_STREQ(time.Format((pattern + "%Y").c_str()), (pattern + "1969").c_str());
  EXPECT_EQ(time.Format(std::string(1 << 20, 'x').c_str()).AllocLen(), 0);  // longer than it writes
  for (const char* const empty : {"", static_cast<const char*>(nullptr)})
    EXPECT_STREQ(time.Format(empty), "");
  for (const int year : {0, 9999}) EXPECT_EQ(K7Time(year, 7, 1, 0, 0, 0).Format("%m").Len(), 2) << year;
  for (const int year : {-1, 10000}) EXPECT_EQ(K7Time(year, 7, 1, 0, 0, 0).Format("%m").Len(), 0) << year;
}

TEST(K7Time, StaysDefinedAtTheEndsOfItsRange) {
  K7TimeStruct f;
  for (const int end : {INT_MIN, INT_MAX}) {
    K7Time time(end < 0 ? INT64_MIN : INT64_MAX);
    EXPECT_EQ(time += end, end < 0 ? INT64_MIN : INT64_MAX);
    EXPECT_EQ(time.Format(ISO).AllocLen(), 0);
    for (const int offset : {end, K7Time::LOCAL}) {
      EXPECT_FALSE(time.GetTime(f, offset, true));
      K7Time far;
      far.SetTime(end, end, end, end, end, end, offset, true);
      far.GetTime(f, offset, true);
    }
  }
  // The last second whose year is an int, and the first whose year is one from 1900 on.
  const K7Time last(INT_MAX, 12, 31, 23, 59, 59), first(INT_MIN + 1900, 1, 1, 0, 0, 0);
  EXPECT_TRUE(last.GetTime(f));
  EXPECT_EQ(f.year, INT_MAX);
  std::tm tm;
  EXPECT_TRUE(first.GetTM(tm));
  EXPECT_EQ(tm.tm_year, INT_MIN);
  for (const int64_t beyond : {last + 1, first - 1}) EXPECT_FALSE(K7Time(beyond).GetTM(tm)) << beyond;
}

TEST_F(K7TimeInEurope, LocalCalendarAndDaylightTime) {
  // 2024-07-01 12:00:00 and 2024-01-01 12:00:00 universal time, by Python's calendar.timegm.
  const K7Time summer(1719835200);
  const K7Time winter(1704110400);
  EXPECT_STREQ(summer.Format("%H:%M %Z", K7Time::LOCAL), "14:00 CEST");
  EXPECT_STREQ(winter.Format("%H:%M %Z", K7Time::LOCAL), "13:00 CET");
  EXPECT_STREQ(summer.Format("%H:%M %Z", 0), "12:00 GMT");
  EXPECT_STREQ(summer.Format("%H:%M %Z", -60, true), "14:00 GMT");
  EXPECT_STREQ(summer.Format("%H:%M", -60, false), "13:00");
  EXPECT_STREQ(winter.Format("%H:%M", -60, true), "13:00");
  EXPECT_EQ(K7Time(2024, 7, 1, 14, 0, 0, K7Time::LOCAL, true), summer);
  EXPECT_EQ(K7Time(2024, 7, 1, 15, 0, 0, K7Time::LOCAL, false), summer + 2 * 3600);  // as standard time
  EXPECT_EQ(K7Time(1970, 1, 1, 0, 59, 59, K7Time::LOCAL, true), -1);
  // The hour that comes twice as clocks go back is taken for daylight time.
  EXPECT_EQ(K7Time(2024, 10, 27, 1, 30, 0, 0, true), 1729989000);
  std::mt19937_64 random(7);
  for (int i = 0; i < 2000; ++i) {
    // Noon is far from the hour that the calendar repeats in October.
    const K7Time time(static_cast<int64_t>(random() % 60000 - 20000) * 86400 + 43200);
    for (const int offset : {0, -60, 345, K7Time::LOCAL}) {
      K7TimeStruct f;
      ASSERT_TRUE(time.GetTime(f, offset, true));
      ASSERT_EQ(K7Time(f, offset, true), time) << offset;
    }
  }
}

TEST(K7Validate, ChecksRanges) {
  const double nan = std::nan(""), lats[] = {90.0001, 0, 90, -90, nan}, lons[] = {0, 0, 180, -180, 0};
  EXPECT_TRUE(K7Validate::checkLatLonArrays(lats + 1, lons + 1, 3));
  for (const int n : {0, 4}) EXPECT_FALSE(K7Validate::checkLatLonArrays(lats + 1, lons + 1, n)) << n;
  for (const double* const bad : {lats, static_cast<const double*>(nullptr)})
    EXPECT_FALSE(K7Validate::checkLatLonArrays(bad, lons, 1));
  EXPECT_FALSE(K7Validate::checkLatLonArrays(lons, nullptr, 1));
  for (const double bad : {nan, 180.0001, -180.0001}) EXPECT_FALSE(K7Validate::checkLon(bad)) << bad;
  for (const double bad : {nan, -90.0001}) EXPECT_FALSE(K7Validate::checkLat(bad)) << bad;
  for (const int size : {49, 50, 3840, 3841}) {
    EXPECT_EQ(K7Validate::checkWidthHeight(size, 100), size == 50 || size == 3840);
    EXPECT_EQ(K7Validate::checkWidthHeight(100, size), size == 50 || size == 3840);
  }
}
