#include "store/import_openair.h"

#include "store/import_fields.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace {

constexpr double LARGEST_RADIUS = 1000;  // NM

char Upper(char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); }

// Capitals, without blanks.
std::string Packed(std::string_view text) {
  std::string packed;
  for (const char c : text)
    if (c != ' ' && c != '\t') packed += Upper(c);
  return packed;
}

std::string_view WithoutComment(std::string_view line) {
  return Trimmed(line.substr(0, std::min(line.find('*'), line.size())));
}

bool ReadPlace(std::string_view text, K7LatLon& place) {
  const std::string copy(Trimmed(text));
  // Without its letters a place could lie in any quadrant.
  return copy.find_first_of("NSns") != std::string::npos && copy.find_first_of("EWew") != std::string::npos &&
         place.ParsePosition(copy.c_str()) != 0;
}

bool ReadNumbers(std::string_view text, double* numbers, int count) {
  for (int i = 0; i < count; ++i) {
    const size_t comma = i + 1 < count ? text.find(',') : text.size();
    if (comma == std::string_view::npos || !ReadDecimal(Trimmed(text.substr(0, comma)), numbers[i]))
      return false;
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return true;
}

struct Word {
  std::string_view text;
  uint32_t value;
};
constexpr Word WHOLE_LIMITS[] = {{"SFC", K7Alt::GROUND},      {"GND", K7Alt::GROUND},
                                 {"UNL", K7Alt::UNLIMITED},   {"UNLIM", K7Alt::UNLIMITED},
                                 {"UNLTD", K7Alt::UNLIMITED}, {"UNLIMITED", K7Alt::UNLIMITED},
                                 {"NOTAM", K7Alt::NOTAM},     {"BYNOTAM", K7Alt::NOTAM}};
// Behind a number; a longer one first where it ends in a shorter.
constexpr Word REFERENCES[] = {{"AMSL", 0},
                               {"MSL", 0},
                               {"ALT", 0},
                               {"AGL", K7Alt::ABOVE_GROUND},
                               {"AGND", K7Alt::ABOVE_GROUND},
                               {"GND", K7Alt::ABOVE_GROUND},
                               {"ASFC", K7Alt::ABOVE_GROUND},
                               {"SFC", K7Alt::ABOVE_GROUND}};
constexpr Word UNITS[] = {{"", 0}, {"FT", 0}, {"F", 0}, {"M", K7Alt::METRIC}};

}  // namespace

bool ReadLimit(std::string_view text, K7Alt& limit) {
  std::string rest = Packed(text);
  for (const Word& word : WHOLE_LIMITS) {
    if (rest != word.text) continue;
    limit = K7Alt(word.value);
    return true;
  }
  double number;
  if (rest.compare(0, 2, "FL") == 0) {
    if (!ReadDecimal(rest.substr(2), number) || number < 0 || number > 999) return false;
    limit = K7Alt(static_cast<uint32_t>(std::lround(number)) * 100, K7Alt::FLIGHT_LEVEL);
    return true;
  }
  uint32_t flags = 0;
  for (const Word& word : REFERENCES) {
    if (!rest.ends_with(word.text)) continue;
    rest.resize(rest.size() - word.text.size());
    flags = word.value;
    break;
  }
  const size_t digits = std::min(rest.find_first_not_of("0123456789."), rest.size());
  if (!ReadDecimal(rest.substr(0, digits), number) || number > 200000) return false;
  const Word* const unit = std::find_if(std::begin(UNITS), std::end(UNITS),
                                        [&](const Word& word) { return word.text == rest.substr(digits); });
  if (unit == std::end(UNITS)) return false;
  limit = K7Alt(static_cast<uint32_t>(std::lround(number)), flags | unit->value);
  return true;
}

const OpenAirReader::Record OpenAirReader::RECORDS[] = {
    {"AC", &OpenAirReader::ReadClass, false},
    {"AN", &OpenAirReader::ReadName, false},
    {"AL", &OpenAirReader::ReadFloor, false},
    {"AH", &OpenAirReader::ReadCeiling, false},
    {"DP", &OpenAirReader::ReadPoint, true},
    {"V", &OpenAirReader::ReadVariable, true},
    {"DC", &OpenAirReader::ReadCircle, true},
    {"DA", &OpenAirReader::ReadArcByBearings, true},
    {"DB", &OpenAirReader::ReadArcByPoints, true},
    {"DY", &OpenAirReader::RefuseAirway, true},
    // Places of labels, frequencies, types, times and identifiers of later versions, and styles.
    {"AT", nullptr, false},
    {"AF", nullptr, false},
    {"AG", nullptr, false},
    {"AX", nullptr, false},
    {"AY", nullptr, false},
    {"AI", nullptr, false},
    {"AA", nullptr, false},
    {"SP", nullptr, false},
    {"SB", nullptr, false},
};

const OpenAirReader::Record* OpenAirReader::FindRecord(std::string_view name) {
  const std::string wanted = Packed(name);
  for (const Record& record : RECORDS)
    if (record.name == wanted) return &record;
  return nullptr;
}

bool OpenAirReader::SaysNothing(std::string_view line) { return WithoutComment(line).empty(); }

bool OpenAirReader::IsFirstLine(std::string_view line) {
  const std::string_view text = WithoutComment(line);
  const std::string name = Packed(text.substr(0, text.find_first_of(" \t")));
  return name == "AC" || name == "SP" || name == "SB";
}

std::string OpenAirReader::Take(std::string_view line, int number) {
  m_number = number;
  const std::string_view text = WithoutComment(line);
  if (text.empty()) return {};
  const size_t blank = std::min(text.find_first_of(" \t="), text.size());
  const Record* const record = FindRecord(text.substr(0, blank));
  if (!record) {
    // Records of boundaries begin so.
    if (Upper(text[0]) == 'D' || Upper(text[0]) == 'V') Spoil();
    return "there is no record '" + std::string(text.substr(0, std::min<size_t>(blank, 20))) + "'";
  }
  if (!record->read) return {};
  if (!m_open && record->read != &OpenAirReader::ReadClass) return "it belongs to no airspace";
  std::string problem = (this->*record->read)(Trimmed(text.substr(blank)));
  if (problem.empty() || !record->ofBoundary || m_bad) return problem;
  m_bad = true;
  return problem + ": the airspace '" + m_space.name + "' is left out";
}

void OpenAirReader::Finish() {
  if (m_open && !m_bad) m_done(m_space);
  m_space = {};
  m_open = m_bad = m_counterClockwise = false;
}

std::string OpenAirReader::ReadClass(std::string_view text) {
  Finish();
  m_open = true;
  m_space.line = m_number;
  m_space.airspaceClass = Packed(text.substr(0, 10));
  return text.empty() ? "there is no class" : "";
}

std::string OpenAirReader::ReadName(std::string_view text) {
  m_space.name = text;
  return {};
}

std::string OpenAirReader::ReadFloor(std::string_view text) {
  return ReadLimit(text, m_space.floor) ? "" : "the lower limit is none that is known";
}

std::string OpenAirReader::ReadCeiling(std::string_view text) {
  return ReadLimit(text, m_space.ceiling) ? "" : "the upper limit is none that is known";
}

std::string OpenAirReader::ReadPoint(std::string_view text) {
  BoundaryPart part;
  if (!ReadPlace(text, part.start)) return "the point is no position";
  m_space.boundary.push_back(part);
  return {};
}

std::string OpenAirReader::ReadVariable(std::string_view text) {
  const size_t equals = std::min(text.find('='), text.size());
  const std::string name = Packed(text.substr(0, equals));
  const std::string_view value = Trimmed(text.substr(std::min(equals + 1, text.size())));
  if (name == "X") {
    m_hasCenter = ReadPlace(value, m_center);
    return m_hasCenter ? "" : "the centre is no position";
  }
  if (name == "D" && (value == "+" || value == "-")) {
    m_counterClockwise = value == "-";
    return {};
  }
  // Scales and widths of drawings.
  return name == "Z" || name == "W" || name == "T" ? "" : "the variable is none that is known";
}

std::string OpenAirReader::AddCircle(double radius) {
  BoundaryPart circle;
  circle.kind = BoundaryPart::CIRCLE;
  circle.center = m_center;
  circle.radius = radius;
  circle.endBrg = 360;
  circle.start.EndPoint(m_center, 0, radius);
  circle.end = circle.start;
  circle.counterClockwise = m_counterClockwise;
  m_space.boundary.push_back(circle);
  return {};
}

std::string OpenAirReader::ReadCircle(std::string_view text) {
  double radius;
  if (!ReadNumbers(text, &radius, 1) || radius <= 0 || radius > LARGEST_RADIUS)
    return "the circle has no radius within its bounds";
  return m_hasCenter ? AddCircle(radius) : "the circle has no centre";
}

std::string OpenAirReader::AddArc(const BoundaryPart& arc) {
  m_space.boundary.push_back(arc);
  BoundaryPart& added = m_space.boundary.back();
  added.kind = BoundaryPart::ARC;
  added.center = m_center;
  added.counterClockwise = m_counterClockwise;
  return {};
}

std::string OpenAirReader::ReadArcByBearings(std::string_view text) {
  double numbers[3];
  if (!m_hasCenter) return "the arc has no centre";
  if (!ReadNumbers(text, numbers, 3) || numbers[0] <= 0 || numbers[0] > LARGEST_RADIUS ||
      std::fabs(numbers[1]) > 360 || std::fabs(numbers[2]) > 360)
    return "the arc is no radius and two bearings";
  if (std::fmod(numbers[2] - numbers[1], 360) == 0) return AddCircle(numbers[0]);
  BoundaryPart arc;
  arc.radius = numbers[0];
  arc.startBrg = std::fmod(numbers[1] + 360, 360);
  arc.endBrg = std::fmod(numbers[2] + 360, 360);
  arc.start.EndPoint(m_center, arc.startBrg, arc.radius);
  arc.end.EndPoint(m_center, arc.endBrg, arc.radius);
  return AddArc(arc);
}

std::string OpenAirReader::ReadArcByPoints(std::string_view text) {
  const size_t comma = text.find(',');
  BoundaryPart arc;
  if (!m_hasCenter) return "the arc has no centre";
  if (comma == std::string_view::npos || !ReadPlace(text.substr(0, comma), arc.start) ||
      !ReadPlace(text.substr(comma + 1), arc.end))
    return "the arc is no pair of positions";
  arc.radius = m_center.Distance(arc.start);
  arc.startBrg = m_center.InitCourse(arc.start);
  arc.endBrg = m_center.InitCourse(arc.end);
  if (arc.startBrg < 0 || arc.endBrg < 0 || arc.radius > LARGEST_RADIUS)
    return "the arc's radius is not within its bounds";
  if (arc.start.Distance(arc.end) == 0) return AddCircle(arc.radius);
  return AddArc(arc);
}

std::string OpenAirReader::RefuseAirway(std::string_view) { return "airways (DY) have no area"; }
