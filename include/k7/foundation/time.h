// K7Time: a point in time, to and from calendar fields and text.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

#include <cstdint>
#include <ctime>

/// Calendar fields of a moment. Fields given beyond their range carry over into the next, as with `mktime`.
struct K7TimeStruct {
  int year = 1970;
  int month = 1;  ///< 1 ... 12
  int day = 1;    ///< 1 ... 31
  int hour = 0;
  int minute = 0;
  int second = 0;
  int weekDay = 4;  ///< 0 Sunday ... 6 Saturday; not read
  int yearDay = 0;  ///< 0 ... 365; not read
};

/// A K7Time is a number of seconds since 1970-01-01 00:00:00 universal time, without leap seconds, of any
/// sign and size. A value: no locks.
///
/// Conversions take an offset in minutes and a daylight flag. The calendar is the proleptic Gregorian one
/// of (seconds - offset x 60), so that a zone 90 minutes east of universal time is written -90. With the
/// flag an hour is added while the machine's zone keeps daylight time. With `LOCAL` the calendar is that of
/// the machine's zone.
class K7_API K7Time {
 public:
  /// As an offset, stands for the machine's time zone. Fields are then taken as daylight time or not as the
  /// system decides when the flag is set, as standard time when it is not.
  static constexpr int LOCAL = -999;

  explicit K7Time(int64_t seconds = 0) : m_seconds(seconds) {}
  /// Take the moment of fields; 0 seconds when `SetTime` would fail.
  K7Time(int year, int month, int day, int hour, int minute, int second, int offset = 0, bool dst = false);
  explicit K7Time(const K7TimeStruct& fields, int offset = 0, bool dst = false);

  /// Stops at the ends of the 64-bit range.
  K7Time& operator+=(int seconds);
  operator int64_t() const { return m_seconds; }

  /// \name To fields
  /// @{
  void GetTime(int64_t& seconds) const { seconds = m_seconds; }
  /// Answers false, with `fields` untouched, when the year does not fit an int or the system has no local
  /// calendar for it.
  bool GetTime(K7TimeStruct& fields, int offset = 0, bool dst = false) const;
  /// Does the same with the standard library's fields.
  bool GetTM(std::tm& fields, int offset = 0, bool dst = false) const;
  /// @}

  /// \name From fields and text
  /// @{
  void SetTime(int64_t seconds) { m_seconds = seconds; }
  /// Reverse `GetTime`. Of two moments an hour apart with the same fields they take the one in daylight
  /// time. Answer false, without change, when the system has no local calendar for the fields.
  bool SetTime(const K7TimeStruct& fields, int offset = 0, bool dst = false);
  bool SetTime(int year, int month, int day, int hour, int minute, int second, int offset = 0,
               bool dst = false);
  /// Reads exactly 19 characters, "2024-02-29 12:34:56". Answers false, without change, for anything else.
  bool SetTime(const K7String& text, int offset = 0, bool dst = false);
  /// @}

  /// Writes the fields as `strftime` does, in the host's locale; "%Z" is "GMT" save for `LOCAL`. Answers a
  /// null string for a null pattern, a year outside 0 ... 9999, a text beyond a megabyte or without memory.
  K7String Format(const char* pattern, int offset = 0, bool dst = false) const;

 private:
  int64_t m_seconds;
};
