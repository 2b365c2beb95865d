#include <k7/foundation/time.h>
#include <k7/foundation/validate.h>

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
  for (int i = 0; i < 20000; ++i) {
    // Years -3000 ... 7000 or so; the first rounds look at the days around century ends.
    const int64_t spread = static_cast<int64_t>(random() % 315576000000) - 157788000000;
    const int64_t century = int64_t{i - 200} * 36524 * 86400 + spread % 200000;
    const int64_t seconds = i < 400 ? century : spread;
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
  EXPECT_TRUE(time.SetTime("2024-02-29 12:34:56") && time == 1709210096);
  EXPECT_EQ(K7Time(2022, 26, 28, 36, 35, -4), time);            // by hand: 28 February 36:34:56
  EXPECT_STREQ(time.Format(ISO, -330), "2024-02-29 18:04:56");  // five and a half hours east
  EXPECT_STREQ(time.Format("%j %a", 780), "059 Wed");
  EXPECT_TRUE(time.SetTime("1900-03-01 00:00:00", 0, false) && time == -2203891200);
  EXPECT_TRUE(time.SetTime("2100-03-01 00:00:00", -330) && time == 4107542400 - 19800);
  for (const char* bad :
       {"2024-02-29 12:34:561", "2024/02/29 12:34:56", "2024-02-29T12:34:56", "2024-02-29 12:34:5 ",
        "+024-02-29 12:34:56", "2024-02-29 12.34:56", "2024-02-29 12:34-56", ""})
    EXPECT_FALSE(time.SetTime(bad)) << bad;
  EXPECT_EQ(time += 19801, 4107542401);
  // Longer than the first buffers, and empty.
  const std::string pattern(3000, 'x');
  EXPECT_EQ(static_cast<const char*>(time.Format((pattern + "%Y").c_str())), pattern + "2100");
  EXPECT_TRUE(time.Format("") == "" && time.Format(nullptr) == "");
}

TEST(K7Time, StaysDefinedAtTheEndsOfItsRange) {
  for (const int end : {INT_MIN, INT_MAX}) {
    K7TimeStruct f;
    K7Time time(end < 0 ? INT64_MIN : INT64_MAX);
    EXPECT_EQ(time += end, end < 0 ? INT64_MIN : INT64_MAX);
    EXPECT_FALSE(time.GetTime(f, end, true) || time.GetTime(f, K7Time::LOCAL));
    EXPECT_EQ(time.Format(ISO).AllocLen(), 0);
    for (const int offset : {end, K7Time::LOCAL}) {
      time.SetTime(end, end, end, end, end, end, offset, true);
      time.GetTime(f, offset, true);
    }
  }
}

TEST_F(K7TimeInEurope, LocalCalendarAndDaylightTime) {
  // 2024-07-01 12:00:00 and 2024-01-01 12:00:00 universal time, by Python's calendar.timegm.
  const K7Time summer(1719835200);
  const K7Time winter(1704110400);
  EXPECT_STREQ(summer.Format(ISO, K7Time::LOCAL), "2024-07-01 14:00:00");
  EXPECT_STREQ(winter.Format(ISO, K7Time::LOCAL), "2024-01-01 13:00:00");
  EXPECT_STREQ(summer.Format(ISO, -60, true), "2024-07-01 14:00:00");
  EXPECT_STREQ(summer.Format(ISO, -60, false), "2024-07-01 13:00:00");
  EXPECT_STREQ(winter.Format(ISO, -60, true), "2024-01-01 13:00:00");
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
  const double lats[] = {0, 90, -90, 91, std::nan("")};
  const double lons[] = {0, 180, -180, 0, 0};
  EXPECT_TRUE(K7Validate::checkLatLonArrays(lats, lons, 3) && K7Validate::checkWidthHeight(50, 3840));
  for (const int n : {0, 4}) EXPECT_FALSE(K7Validate::checkLatLonArrays(lats, lons, n)) << n;
  EXPECT_FALSE(K7Validate::checkLatLonArrays(nullptr, lons, 1) ||
               K7Validate::checkLatLonArrays(lats, nullptr, 1));
  EXPECT_FALSE(K7Validate::checkLat(lats[4]) || K7Validate::checkLon(180.0001));
  EXPECT_FALSE(K7Validate::checkWidthHeight(49, 100) || K7Validate::checkWidthHeight(100, 3841));
}
