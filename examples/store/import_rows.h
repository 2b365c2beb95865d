// Rows of the text formats in which free navigation data is published, read one by one. Texts of a row point
// into its line. Each reader answers an empty text, or what is wrong with the line.
#pragma once

#include <k7/geodesy/latlon.h>

#include <string>
#include <string_view>

/// A row of nav.dat: a navaid, or a part of one.
struct NavRow {
  enum Code {
    NDB = 2,
    VOR = 3,
    ILS_LOCALIZER = 4,
    LOCALIZER = 5,
    GLIDESLOPE = 6,
    OUTER_MARKER = 7,
    MIDDLE_MARKER = 8,
    INNER_MARKER = 9,
    PAIRED_DME = 12,  ///< with an ILS, VOR or NDB
    DME = 13
  };

  int code = 0;
  K7LatLon at;
  int elev = 0;              ///< feet
  int freq = 0;              ///< 0.1 kHz of NDBs, 0.01 MHz of all others
  int range = 0;             ///< NM
  double bearing = 0;        ///< true, [0, 360), of localizers, glideslopes and markers
  double angle = 0;          ///< of a glideslope, degrees
  double declination = 0;    ///< of a VOR's radials, degrees, east positive
  std::string_view ident;    ///< empty for markers
  std::string_view airport;  ///< of parts of an ILS
  std::string_view runway;
  std::string_view name;  ///< without the kind
  std::string_view kind;  ///< "VOR-DME", "ILS-cat-I" ...
};
std::string ReadNavRow(std::string_view line, NavRow& row);

struct FixRow {
  K7LatLon at;
  std::string_view ident;
};
std::string ReadFixRow(std::string_view line, FixRow& row);

/// A row of awy.dat: a segment, and the airways that use it.
struct AirwayRow {
  struct End {
    std::string_view ident;
    K7LatLon at;
  };
  End from, to;
  bool high = false;
  int base = 0;  ///< hundreds of feet
  int top = 0;
  std::string_view names;  ///< joined by "-"
};
std::string ReadAirwayRow(std::string_view line, AirwayRow& row);

/// Rows of apt.dat, by their codes.
struct AirportRow {
  enum Code { LAND = 1, SEAPLANE_BASE = 16, HELIPORT = 17 };

  int code = 0;
  int elev = 0;  ///< feet
  bool tower = false;
  std::string_view ident;
  std::string_view name;
};
struct RunwayRow {
  enum Code { LAND = 100, WATER = 101 };
  struct End {
    std::string_view number;
    K7LatLon at;
    double displaced = 0;  ///< metres, as the two below
    double overrun = 0;
    bool approachLights = false;
    bool touchdownLights = false;
    bool identifierLights = false;
  };

  double width = 0;
  int surface = 0;  ///< code of the format
  bool centerLights = false;
  bool edgeLights = false;
  End ends[2];
};
struct HelipadRow {
  std::string_view name;
  K7LatLon at;
  double heading = 0;  ///< true
  double length = 0;   ///< metres
  double width = 0;
  int surface = 0;
};
struct CommRow {
  enum Code {
    WEATHER = 50,
    UNICOM = 51,
    CLEARANCE = 52,
    GROUND = 53,
    TOWER = 54,
    APPROACH = 55,
    DEPARTURE = 56
  };

  int code = 0;
  int freq = 0;  ///< kHz
  std::string_view name;
};
/// The code of a row; negative when it begins with no number.
int RowCode(std::string_view line);
std::string ReadAirportRow(std::string_view line, AirportRow& row);
std::string ReadRunwayRow(std::string_view line, RunwayRow& row);
std::string ReadHelipadRow(std::string_view line, HelipadRow& row);
std::string ReadCommRow(std::string_view line, CommRow& row);
