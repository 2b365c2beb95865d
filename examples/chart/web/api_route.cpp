// Routes as tables: over points, and found over the airways.

#include "app_common/position_text.h"
#include "sheet/trip.h"
#include "web/api_answer.h"
#include "web/page_api.h"
#include "web/route_point.h"
#include "web/view_request.h"

#include <cmath>

namespace {

constexpr double LEAST_KNOTS = 10, MOST_KNOTS = 5000;

void WriteCourse(JsonWriter& json, const char* name, double degrees, bool isKnown) {
  json.Key(name);
  // Rounded here, so that nobody's compass has 360.0 beside 0.0.
  isKnown&& degrees >= 0 ? json.Number(std::fmod(std::round(degrees * 10), 3600) / 10, 1) : json.Null();
}

void WriteLeg(JsonWriter& json, const Route& route, size_t i, double total, double knots) {
  const RouteLeg& leg = route.legs[i];
  const RouteFix &from = route.fixes[i], &to = route.fixes[i + 1];
  json.Begin('{').Key("from").Text(from.ident).Key("to").Text(to.ident).Key("airway").Text(leg.airway);
  WriteCourse(json, "course_true", from.place.InitCourse(to.place), true);
  WriteCourse(json, "course_mag", leg.course, !leg.isTrue);
  json.Key("distance_nm").Number(leg.distance, 2).Key("total_nm").Number(total, 2);
  const int minutes = MinutesTo(total, knots) - MinutesTo(total - leg.distance, knots);
  json.Key("time").Text(TimeText(minutes)).Key("total_time").Text(TimeText(MinutesTo(total, knots)));
  json.Key("minimum").Text(AltitudeText(leg.minimum)).End('}');
}

// Without a record an identifier is the airways' alone, and nothing would find it again.
std::string PointOf(const RouteFix& fix) {
  return PointText(fix.key.NoRecord() ? std::string() : fix.ident, fix.place);
}

void WritePoints(JsonWriter& json, const Route& route) {
  std::string text;
  json.Key("points").Begin('[');
  for (const RouteFix& fix : route.fixes) {
    const std::string point = PointOf(fix);
    text += (text.empty() ? "" : ";") + point;
    json.Begin('{').Key("ident").Text(fix.ident).Key("kind").Text(fix.kind).Key("point").Text(point);
    WritePlace(json, fix.place);
    json.End('}');
  }
  json.End(']').Key("route").Text(text).Key("words").Text(RouteText(route));
}

HttpAnswer Table(const Route& route, double knots) {
  JsonWriter json;
  json.Begin('{').Key("from").Text(route.fixes.front().ident).Key("to").Text(route.fixes.back().ident);
  json.Key("from_name").Text(route.fromName).Key("to_name").Text(route.toName);
  json.Key("distance_nm").Number(route.distance, 2);
  json.Key("direct_nm").Number(route.fixes.front().place.Distance(route.fixes.back().place), 2);
  json.Key("time").Text(TimeText(MinutesTo(route.distance, knots))).Key("speed").Number(knots, 1);
  WritePoints(json, route);
  json.Key("legs").Begin('[');
  double total = 0;
  for (size_t i = 0; i < route.legs.size(); ++i)
    WriteLeg(json, route, i, total += route.legs[i].distance, knots);
  json.End(']').Key("notes").Begin('[');
  for (const std::string& note : route.notes) json.Text(note);
  json.End(']').End('}');
  return JsonAnswer(std::move(json));
}

std::string ReadKnots(const HttpRequest& request, double& knots) {
  return ReadWithin(request, "speed", LEAST_KNOTS, MOST_KNOTS, knots);
}

std::string ReadSearch(const HttpRequest& request, RouteRequest& search) {
  static const double MOST_DIRECT_NM = 1000, HIGHEST = 100000;
  static const size_t LONGEST = 64;
  if (std::string problem = WhyNoTexts(request); !problem.empty()) return problem;
  for (const auto& [name, end] : {std::pair{"from", &search.from}, {"to", &search.to}}) {
    const std::string* const text = request.Find(name);
    if (!text || text->empty() || text->size() > LONGEST)
      return "a route is found 'from' and 'to' an identifier or a position";
    *end = *text;
  }
  double feet = -1;
  if (std::string problem = ReadWithin(request, "level", 0, HIGHEST, feet); !problem.empty()) return problem;
  if (feet >= 0) search.feet = static_cast<int>(std::lround(feet));
  return ReadWithin(request, "direct", 0, MOST_DIRECT_NM, search.directNM);
}

}  // namespace

HttpAnswer AnswerRoute(const HttpRequest& request, Desk& desk) {
  Route route;
  double knots = 120;
  std::string problem = ReadKnots(request, knots);
  if (problem.empty()) problem = ReadRoute(request, desk, route);
  return problem.empty() ? Table(route, knots) : Problem(400, problem);
}

HttpAnswer AnswerFind(const HttpRequest& request, Desk& desk) {
  RouteRequest search;
  double knots = 120;
  std::string problem = ReadKnots(request, knots);
  if (problem.empty()) problem = ReadSearch(request, search);
  if (!problem.empty()) return Problem(400, problem);
  NavStore* const store = desk.Store(problem);
  const AirwayGraph* const airways = desk.Airways(problem);
  if (!problem.empty()) return Problem(500, problem);
  if (!store || !airways) return Problem(404, "there are no navigation data, and so no airways");
  Route route;
  problem = FindRoute(*store, *airways, search, route);
  store->FreeRecs();
  return problem.empty() ? Table(route, knots) : Problem(404, problem);
}
