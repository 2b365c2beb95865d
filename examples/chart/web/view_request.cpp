#include "web/view_request.h"

#include "layers/projection_names.h"
#include "route/direct_route.h"
#include "route/route_ends.h"
#include "store/text_1252.h"
#include "web/limits.h"
#include "web/query_value.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LEAST_RANGE_NM = 0.1;
constexpr int SMALLEST = 16;  // ordinary pixels
constexpr double MOST_RATIO = 3;
constexpr size_t MOST_NAMES = 64, MOST_PARAMS = 16, MOST_POINTS = 200;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts = SplitList(text, separator);
  for (std::string& part : parts) part = Trimmed(part);
  std::erase(parts, "");
  return parts;
}

std::string Number(double value) { return std::string(K7FmtString("%.9g", value)); }

std::string ReadSize(const HttpRequest& request, MapRequest& map) {
  double width = 1024, height = 768, ratio = 1;
  for (const auto& [name, size] : {std::pair{"width", &width}, {"height", &height}})
    if (std::string problem = ReadWithin(request, name, SMALLEST, MAX_PICTURE_SIDE, *size); !problem.empty())
      return problem;
  if (std::string problem = ReadWithin(request, "ratio", 1, MOST_RATIO, ratio); !problem.empty())
    return problem;
  map.width = static_cast<int>(std::lround(width * ratio));
  map.height = static_cast<int>(std::lround(height * ratio));
  map.scale = ratio;
  const bool fits = std::max(map.width, map.height) <= MAX_PICTURE_SIDE &&
                    1.0 * map.width * map.height <= MAX_PICTURE_PIXELS;
  return fits ? std::string()
              : "a picture has at most " + std::to_string(MAX_PICTURE_SIDE) + " pixels a side and " +
                    std::to_string(MAX_PICTURE_PIXELS) + " in all";
}

std::string ReadPlace(const HttpRequest& request, ChartRequest& chart) {
  static const double FARTHEST = 540;
  double lat = chart.center.Lat(), lon = chart.center.Lon();
  if (std::string problem = ReadWithin(request, "lat", -90, 90, lat); !problem.empty()) return problem;
  if (std::string problem = ReadWithin(request, "lon", -FARTHEST, FARTHEST, lon); !problem.empty())
    return problem;
  chart.center = {lat, std::remainder(lon, 360)};
  if (std::string problem = ReadWithin(request, "range", 0, MOST_RANGE_NM, chart.rangeNM); !problem.empty())
    return problem;
  if (chart.rangeNM > 0 && chart.rangeNM < LEAST_RANGE_NM)
    return "'range' is 0 for the world, or from " + Number(LEAST_RANGE_NM) + " to " + Number(MOST_RANGE_NM);
  return ReadWithin(request, "turn", -360, 360, chart.turn);
}

std::string AddParam(const std::string& text, ProjectionParams& params) {
  const size_t colon = text.rfind(':');
  double value = 0;
  if (colon == std::string::npos || colon == 0 || !ReadValue(std::string_view(text).substr(colon + 1), value))
    return "a parameter of a projection is NAME:NUMBER, not '" + text + "'";
  if (params.size() == MOST_PARAMS) return "no projection has so many parameters";
  params.emplace_back(text.substr(0, colon), value);
  return {};
}

// A tilted view shows what its field of view holds: the range that the address keeps waits for another one.
std::string TakeParams(MapRequest& map) {
  ChartRequest& chart = map.chart;
  const std::unique_ptr<K7Projection> projection(K7MapView::CreateProjection(
      chart.type, chart.center.Lat(), chart.center.Lon(), chart.rangeNM, nullptr));
  if (!projection) return "out of memory";
  if (std::string problem = SetParams(*projection, chart.params); !problem.empty()) return problem;
  if (K7MapView(projection.get(), map.width, map.height).IsTilted()) chart.rangeNM = 0;
  return {};
}

std::string ReadProjection(const HttpRequest& request, ChartRequest& chart) {
  if (const std::string* const name = request.Find("projection"); name && !name->empty()) {
    const NamedProjection* const projection = FindProjection(*name);
    if (!projection) return UnknownProjection(*name);
    chart.type = projection->type;
  }
  for (const auto& [name, value] : request.query)
    if (K7String::IComp(name.c_str(), "p") == 0)
      if (std::string problem = AddParam(value, chart.params); !problem.empty()) return problem;
  return {};
}

std::string ReadLook(const HttpRequest& request, const MapData& data, MapRequest& map) {
  if (const std::string* const theme = request.Find("theme")) map.theme = *theme;
  if (std::string problem = data.WhyNoTheme(map.theme); !problem.empty()) return problem;
  for (const auto& [name, names] : {std::pair{"show", &map.shown}, {"hide", &map.hidden}}) {
    const std::string* const text = request.Find(name);
    if (text) *names = Split(*text, ',');
    if (names->size() > MOST_NAMES) return "'" + std::string(name) + "' names too many layers";
  }
  double dim = 0;
  if (std::string problem = ReadWithin(request, "dim", 0, 100, dim); !problem.empty()) return problem;
  map.offRouteAlpha = static_cast<unsigned char>(std::lround(255 * (1 - dim / 100)));
  return {};
}

}  // namespace

// Names and positions are looked up and come back in answers: they are to be texts.
std::string WhyNoTexts(const HttpRequest& request) {
  const auto isControl = [](unsigned char c) { return c < ' ' || c == 0x7F; };
  for (const auto& [name, value] : request.query)
    if (std::any_of(value.begin(), value.end(), isControl) || !IsUtf8(value))
      return "a value is one line of text in UTF-8";
  return {};
}

std::string ReadWithin(const HttpRequest& request, const char* name, double least, double most,
                       double& value) {
  const std::string* const text = request.Find(name);
  if (!text) return {};
  double number = 0;
  if (!ReadValue(*text, number) || number < least || number > most)
    return "'" + std::string(name) + "' is a number from " + Number(least) + " to " + Number(most);
  value = number;
  return {};
}

std::string ReadPixel(const HttpRequest& request, const ViewRequest& view, double& x, double& y) {
  static const double FARTHEST = 1e5;
  for (const auto& [name, at] : {std::pair{"x", &x}, {"y", &y}}) {
    if (!request.Find(name)) return "a pixel has 'x' and 'y'";
    if (std::string problem = ReadWithin(request, name, -FARTHEST, FARTHEST, *at); !problem.empty())
      return problem;
    *at *= view.map.scale;
  }
  return {};
}

std::string ReadRoute(const HttpRequest& request, Desk& desk, Route& route) {
  const std::string* const text = request.Find("route");
  if (std::string problem = WhyNoTexts(request); !problem.empty()) return problem;
  const std::vector<std::string> points = text ? Split(*text, ';') : std::vector<std::string>();
  if (points.empty()) return "a route has points, as 'route=KSEA;SEA;CYVR'";
  if (points.size() > MOST_POINTS) return "a route has at most " + Number(MOST_POINTS) + " points";
  std::string problem;
  NavStore none;
  NavStore* store = &none;
  if (std::any_of(points.begin(), points.end(), MayBeIdent)) store = desk.Store(problem);
  if (!problem.empty()) return problem;
  if (!store) return "there are no navigation data in which a route's identifiers could be looked up";
  problem = DirectRoute(*store, points, route);
  store->FreeRecs();
  return problem;
}

std::string ReadView(const HttpRequest& request, Desk& desk, ViewRequest& view) {
  MapRequest& map = view.map;
  if (std::string problem = WhyNoTexts(request); !problem.empty()) return problem;
  if (std::string problem = ReadSize(request, map); !problem.empty()) return problem;
  if (std::string problem = ReadProjection(request, map.chart); !problem.empty()) return problem;
  if (std::string problem = ReadPlace(request, map.chart); !problem.empty()) return problem;
  if (std::string problem = TakeParams(map); !problem.empty()) return problem;
  if (std::string problem = ReadLook(request, desk.Data(), map); !problem.empty()) return problem;
  if (const std::string* const route = request.Find("route"); !route || route->empty()) return {};
  if (std::string problem = ReadRoute(request, desk, view.route); !problem.empty()) return problem;
  view.layer = std::make_unique<RouteLayer>(view.route);
  map.top = view.layer.get();
  return {};
}
