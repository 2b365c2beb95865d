#include "layers/projection_params.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

struct Range {
  K7ProjType type;
  int index;
  double low, high;
  bool lowIncluded, highIncluded;
};

constexpr double HIGHEST_EYE_FT = 1e9;

constexpr Range RANGES[] = {
    {K7_PROJ_RECTANGULAR, 0, -90, 90, false, false}, {K7_PROJ_LAMBERT, 0, -90, 90, false, false},
    {K7_PROJ_LAMBERT, 1, -90, 90, false, false},     {K7_PROJ_ALBERS, 0, -90, 90, false, false},
    {K7_PROJ_ALBERS, 1, -90, 90, false, false},      {K7_PROJ_PERSPECTIVE, 0, 1, HIGHEST_EYE_FT, true, true},
    {K7_PROJ_PERSPECTIVE, 1, -360, 360, true, true}, {K7_PROJ_PERSPECTIVE, 2, -360, 360, true, true},
    {K7_PROJ_PERSPECTIVE, 3, -90, 80, true, false},  {K7_PROJ_PERSPECTIVE, 4, 0, 90, false, false},
};

const Range* FindRange(const K7Projection& projection, int index) {
  const auto* const range = std::find_if(std::begin(RANGES), std::end(RANGES), [&](const Range& r) {
    return r.type == projection.Type() && r.index == index;
  });
  return range == std::end(RANGES) ? nullptr : range;
}

std::string Text(double value) {
  K7String text;
  text.Format(std::fabs(value) >= 1e6 ? "%.0f" : "%.9g", value);
  return std::string(text);
}

bool Holds(const Range& range, double value) {
  return (range.lowIncluded ? value >= range.low : value > range.low) &&
         (range.highIncluded ? value <= range.high : value < range.high);
}

std::string UnknownParam(const K7Projection& projection, const std::string& name) {
  std::string text = projection.Name();
  text += " has no parameter '" + name + "'";
  for (int i = 0; i < projection.ParamCount(); ++i) {
    text += i ? ", " : "; it has ";
    text += projection.ParamName(i);
  }
  return text;
}

int FindParam(const K7Projection& projection, const std::string& name) {
  int index = 0;
  while (index < projection.ParamCount() && K7String::IComp(name.c_str(), projection.ParamName(index)) != 0)
    ++index;
  return index;
}

// Of the perspective's parameters, those that only a tilted view has a use for: straight down north is up and
// the range decides how much is seen.
constexpr int HEADING = 1, BANK = 2, PITCH = 3, FIELD_OF_VIEW = 4;
constexpr double STRAIGHT_DOWN = -90;

bool NeedsTilt(const K7Projection& projection, int index) {
  return projection.Type() == K7_PROJ_PERSPECTIVE &&
         (index == HEADING || index == BANK || index == FIELD_OF_VIEW);
}

// Two parallels on opposite sides of the equator make a cylinder, not a cone. Equal ones touch the globe
// along one circle: a sound cone, but Lambert's constant is 0/0 then. A hair apart it keeps ten digits, and
// the circle moves by half the hair, which is half a metre.
std::string LayCone(K7Projection& projection) {
  static const double OPPOSITE = 1e-4;
  static const double HAIR = 1e-5;
  const double first = projection.ParamValue(0);
  const double second = projection.ParamValue(1);
  if (std::fabs(first + second) < OPPOSITE)
    return std::string(projection.Name()) + " has no cone for '" + projection.ParamName(0) +
           "' = " + Text(first) + " and '" + projection.ParamName(1) + "' = " + Text(second) +
           ": parallels must not be opposite of each other";
  if (projection.Type() == K7_PROJ_LAMBERT && std::fabs(first - second) < HAIR)
    projection.ParamValue(1, first - std::copysign(HAIR, std::fabs(first) > 45 ? first : -first));
  return {};
}

}  // namespace

std::string SetParams(K7Projection& projection, const ProjectionParams& params) {
  for (const auto& [name, value] : params)
    if (FindParam(projection, name) == projection.ParamCount()) return UnknownParam(projection, name);
  const char* needsTilt = nullptr;
  for (int i = 0; i < projection.ParamCount(); ++i)
    for (const auto& [name, value] : params) {
      if (FindParam(projection, name) != i) continue;
      const Range* const range = FindRange(projection, i);
      if (range && !Holds(*range, value))
        return "'" + std::string(projection.ParamName(i)) + "' is " + ParamRange(projection, i) + ", not " +
               Text(value);
      if (NeedsTilt(projection, i) && value != projection.ParamValue(i)) needsTilt = projection.ParamName(i);
      projection.ParamValue(i, value);
    }
  if (needsTilt && projection.ParamValue(PITCH) == STRAIGHT_DOWN)
    return "'" + std::string(needsTilt) + "' changes nothing for an eye that looks straight down: set '" +
           projection.ParamName(PITCH) + "' above " + Text(STRAIGHT_DOWN);
  return projection.IsConic() ? LayCone(projection) : std::string();
}

std::string ParamRange(const K7Projection& projection, int index) {
  const Range* const range = FindRange(projection, index);
  if (!range) return "any number";
  return (range->lowIncluded ? "from " : "above ") + Text(range->low) +
         (range->highIncluded  ? " to "
          : range->lowIncluded ? " to below "
                               : " and below ") +
         Text(range->high);
}
