// K7LatLon: the geographic position of the whole library.
#pragma once

#include <k7/export.h>
#include <k7/foundation/string.h>

/// Latitude and longitude in decimal degrees, north and east positive, on a spherical earth of radius
/// K7_EARTH_RADIUS_NM. Distances are nautical miles, courses degrees true. Nothing is checked when fields are
/// stored; the parsers check ranges before they store. A value: copy freely, no locking.
///
/// The navigation formulas are the vector form of Snyder, "Map Projections: A Working Manual", USGS
/// Professional Paper 1395, equations 5-3 to 5-6. Where the cosine of a distance is near 1 or -1, the length
/// of the cross product replaces it.
///
///     K7LatLon from, to;
///     if (from.ParsePosition("N47 30.0 W122 18.5") && to.ParsePosition("50N40"))
///       course = from.InitCourse(to);
class K7_API K7LatLon {
 public:
  K7LatLon() = default;
  K7LatLon(double lat, double lon) : m_lat(lat), m_lon(lon) {}

  void Init(double lat, double lon) {
    m_lat = lat;
    m_lon = lon;
  }
  double Lat() const { return m_lat; }
  double Lon() const { return m_lon; }

  /// \name Navigation
  /// @{
  /// Answers the great-circle distance, the same both ways and never negative. A metre and an antipode keep
  /// their digits.
  double Distance(const K7LatLon& to) const;
  /// Answers the course on leaving this point towards `to`, [0, 360). It is -639 where there is no course:
  /// between points whose vectors differ by at most 4 epsilon in each component (180 east and west, a pole
  /// and itself), and where both components of the course come out exactly zero.
  double InitCourse(const K7LatLon& to) const;
  /// Answers the course on arriving at `to`, [0, 360]: the way back turned by 180, where 360 itself stays.
  /// It is 261 between identical points, which is what the missing course becomes on its way through the
  /// same steps.
  double FinalCourse(const K7LatLon& to) const;
  /// Moves this position to the point reached from `start` on the initial `course` after `distance`. The
  /// longitude lies within +-180.
  void EndPoint(const K7LatLon& start, double course, double distance);
  /// @}

  /// \name Text out
  /// @{
  /// Writes the latitude (longitude) by a template such as "%H %02d %04.1M": bytes are copied, and "%", an
  /// optional width and precision as in printf, and a letter print
  ///
  ///     H  hemisphere, N S E W            x  degree sign, byte 176
  ///     D  decimal degrees                d  whole degrees
  ///     M  decimal minutes                m  whole minutes
  ///     S  decimal seconds                s  whole seconds, rounded
  ///
  /// Whole degrees without a minutes field, and whole minutes without a seconds field, are rounded; minutes
  /// and seconds that would print as 60 carry instead. Rounding of decimals is exactly printf's. "%%" is a
  /// percent sign; other letters outside 'D' to 'x' are copied with their percent sign.
  ///
  /// False with `out` unchanged for a null template, another letter within 'D' to 'x', a precision on d, m or
  /// s, more than one point, a width or precision above 255, a coordinate that is not finite or whose whole
  /// degrees do not fit an int, or without memory.
  bool FormatLat(const char* fmt, K7String& out) const { return Format(fmt, out, true); }
  bool FormatLon(const char* fmt, K7String& out) const { return Format(fmt, out, false); }
  /// @}

  /// \name Text in
  /// @{
  /// Reads one coordinate: degrees, minutes, seconds as separate numbers, or packed as DDMM, DDMMSS, or
  /// DDMMSS with implied decimals of seconds behind; MMSS may follow degrees. Hemisphere letter anywhere, or
  /// a sign before the first number. Separators are the bytes "-: ./\_'\";" and 176. Numbers are digits with
  /// an optional fraction, never an exponent, and only the last may have one. 60 minutes are taken as one
  /// degree. A first number of 3 or 5 digits is refused. A text without any number reads as 0.
  ///
  /// The characters consumed, which is the whole text; 0 on failure, which leaves the coordinate 0.
  int ParseLat(const char* text);
  int ParseLon(const char* text);
  /// Kept for callers of old: do nothing and return false.
  bool ParseLat(const char* text, const char* fmt);
  bool ParseLon(const char* text, const char* fmt);

  /// Reads a whole position: the quadrant form, then the flight-management form, then two coordinates as
  /// ParseLat and ParseLon read them. The longitude begins at an E or W that precedes its digits; else, when
  /// E or W ends the text, behind the N or S that ends the latitude; without E or W at the first '+', else
  /// '-', else blank behind the first digit. 5 and 7 for the first two forms, else the characters consumed; 0
  /// on failure, which may leave either coordinate 0 or new.
  int ParseLatLon(const char* text);
  /// Quadrant form of five characters, whole degrees with the quadrant's letter: "5040N", and "50N40" for
  /// longitudes from 100 on. N is north and west, E north and east, S south and east, W south and west.
  /// Unchanged on failure.
  bool ParseLatLon424Format(K7String text);
  /// Flight-management form: "4728N12218W", "47N122W", "472815N1221830W", nothing else. 60 minutes are
  /// refused; 90 degrees with minutes are not. When only the longitude is bad the latitude has been stored.
  bool ParseLatLonFmsFormat(K7String text);

  /// Reads a whole position as people and this library write it: all that ParseLatLon takes, and also
  ///
  ///     N47 30.0 W122 18.5    47 30.0N 122 18.5W    N47 30.0, W122 18.5    47.5, -122.3    47.5;122.3
  ///     N473015 W1221830      4728N12218W           50N40                  47°30′15″N 122°18′30″W (UTF-8)
  ///
  /// that is, longitudes of three-digit degrees, packed longitudes DDDMM and DDDMMSS, one comma between the
  /// halves (or a semicolon where nothing else divides them), UTF-8 degree sign and primes. It reads back
  /// what FormatLat and FormatLon write.
  ///
  /// Values are those of ParseLatLon with three exceptions. A half without a number is refused. A position
  /// out of range is refused in every form. And seven or more longitude digits beside an E or W are DDDMMSS,
  /// not DDMMSS and tenths: whoever writes a hemisphere and seven digits writes degrees as 122 or 002.
  /// Without the letter they are what ParseLatLon has them be.
  ///
  /// The characters consumed, which is the whole text; 0 on failure, which leaves this position unchanged.
  int ParsePosition(const char* text);
  /// @}

 protected:
  bool Format(const char* fmt, K7String& out, bool latitude) const;

 private:
  double m_lat = 0;
  double m_lon = 0;
};

static_assert(sizeof(K7LatLon) == 2 * sizeof(double));
