// Airspaces in the OpenAir text format, read line by line.
#pragma once

#include <k7/geodesy/latlon.h>
#include <k7/navdata/alt.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// A point, arc or circle of a boundary, as the file states it.
struct BoundaryPart {
  enum Kind { POINT, ARC, CIRCLE };

  Kind kind = POINT;
  K7LatLon start;  ///< the point itself
  K7LatLon end;    ///< of an arc
  K7LatLon center;
  double radius = 0;    ///< NM
  double startBrg = 0;  ///< degrees true from the centre
  double endBrg = 0;
  bool counterClockwise = false;
};

struct OpenAirSpace {
  int line = 0;               ///< at which it begins
  std::string airspaceClass;  ///< "A", "CTR", "R" ...
  std::string name;
  K7Alt floor{K7Alt::UNKNOWN};
  K7Alt ceiling{K7Alt::UNKNOWN};
  std::vector<BoundaryPart> boundary;
};

/// "FL95", "4500ft MSL", "1500ft AGL", "SFC", "GND", "UNL", metres too. False when it is none of these.
bool ReadLimit(std::string_view text, K7Alt& limit);

class OpenAirReader {
 public:
  /// `done` gets each airspace when its last line was read.
  explicit OpenAirReader(std::function<void(const OpenAirSpace&)> done) : m_done(std::move(done)) {}

  /// What is wrong with a line, or an empty text. An airspace with a boundary that cannot be read is left
  /// out: without the line it would be another one.
  std::string Take(std::string_view line, int number);
  /// Leaves the airspace out: one of its lines, of whatever kind, is lost.
  void Spoil() { m_bad = true; }
  /// Behind the last line.
  void Finish();
  /// False for a line with which no file of this format begins.
  static bool IsFirstLine(std::string_view line);
  /// True for comments and blank lines.
  static bool SaysNothing(std::string_view line);

 private:
  using Read = std::string (OpenAirReader::*)(std::string_view text);
  struct Record {
    std::string_view name;
    Read read;  // null for records that say nothing about place and limits
    bool ofBoundary;
  };
  static const Record RECORDS[];
  static const Record* FindRecord(std::string_view name);

  std::string ReadClass(std::string_view text);
  std::string ReadName(std::string_view text);
  std::string ReadFloor(std::string_view text);
  std::string ReadCeiling(std::string_view text);
  std::string ReadPoint(std::string_view text);
  std::string ReadVariable(std::string_view text);
  std::string ReadCircle(std::string_view text);
  std::string ReadArcByBearings(std::string_view text);
  std::string ReadArcByPoints(std::string_view text);
  std::string RefuseAirway(std::string_view text);
  std::string AddCircle(double radius);
  std::string AddArc(const BoundaryPart& arc);

  std::function<void(const OpenAirSpace&)> m_done;
  OpenAirSpace m_space;
  int m_number = 0;
  bool m_open = false;
  bool m_bad = false;
  bool m_hasCenter = false;
  bool m_counterClockwise = false;
  K7LatLon m_center;
};
