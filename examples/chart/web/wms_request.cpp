#include "web/wms_request.h"

#include "layers/layer_list.h"
#include "web/limits.h"
#include "web/query_value.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

// Of a box, in any unit: further on, sums lose the numbers that they are of.
constexpr double FARTHEST = 1e12;

bool Same(const std::string& a, const char* b) { return K7String::IComp(a.c_str(), b) == 0; }

WmsProblem Missing(const char* name) { return {"MissingParameterValue", std::string("there is no ") + name}; }

WmsProblem Invalid(const char* name, const std::string& text) {
  return {"InvalidParameterValue", std::string(name) + " is " + text};
}

struct Crs {
  const char* name;
  MapCrs crs;
  bool latitudeFirst;
};
constexpr Crs SYSTEMS[] = {
    {"EPSG:3857", MapCrs::Mercator, false},
    {"EPSG:4326", MapCrs::Degrees, true},
    {"CRS:84", MapCrs::Degrees, false},
};

MaybeWmsProblem ReadBox(const HttpRequest& request, MapBox& box) {
  const bool old = IsOldWms(request);
  const char* const crsName = old ? "SRS" : "CRS";
  const std::string* const crs = request.Find(crsName);
  if (!crs) return Missing(crsName);
  const auto system =
      std::find_if(std::begin(SYSTEMS), std::end(SYSTEMS), [&](const Crs& s) { return Same(*crs, s.name); });
  if (system == std::end(SYSTEMS))
    return WmsProblem{old ? "InvalidSRS" : "InvalidCRS", "no map in '" + *crs + "'"};
  const std::string* const text = request.Find("BBOX");
  if (!text) return Missing("BBOX");
  double edges[4] = {};
  if (!ReadEdges(*text, edges) ||
      std::any_of(edges, std::end(edges), [](double edge) { return std::fabs(edge) > FARTHEST; }))
    return Invalid("BBOX", "four numbers with commas between");
  box.crs = system->crs;
  const bool turned = system->latitudeFirst && !old;
  box.west = edges[turned ? 1 : 0];
  box.south = edges[turned ? 0 : 1];
  box.east = edges[turned ? 3 : 2];
  box.north = edges[turned ? 2 : 3];
  if (!(box.west < box.east && box.south < box.north))
    return Invalid("BBOX", "the least of both coordinates, then the greatest");
  if (!IsDrawable(box)) return Invalid("BBOX", "of another shape than the picture by far");
  return {};
}

MaybeWmsProblem ReadStyles(const HttpRequest& request, const Desk& desk, std::string& theme) {
  const std::string* const styles = request.Find("STYLES");
  for (const std::string& style : SplitList(styles ? *styles : std::string())) {
    if (style.empty() || Same(style, "default")) continue;
    if (!desk.Data().FindTheme(style))
      return WmsProblem{"StyleNotDefined", "there is no style '" + style + "'"};
    if (!theme.empty() && !Same(style, theme.c_str()))
      return WmsProblem{"StyleNotDefined", "the layers of a picture have one style"};
    theme = style;
  }
  return {};
}

MaybeWmsProblem ReadLook(const HttpRequest& request, WmsMap& map) {
  if (const std::string* const format = request.Find("FORMAT"); format && !Same(*format, "image/png"))
    return WmsProblem{"InvalidFormat", "pictures are image/png"};
  if (const std::string* const transparent = request.Find("TRANSPARENT")) {
    map.transparent = Same(*transparent, "TRUE");
    if (!map.transparent && !Same(*transparent, "FALSE")) return Invalid("TRANSPARENT", "TRUE or FALSE");
  }
  if (const std::string* const color = request.Find("BGCOLOR")) {
    unsigned rgb = 0;
    const char* const last = color->data() + color->size();
    if (color->size() != 8 || (!color->starts_with("0x") && !color->starts_with("0X")) ||
        std::from_chars(color->data() + 2, last, rgb, 16).ptr != last)
      return Invalid("BGCOLOR", "0xRRGGBB");
    map.background = {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
                      static_cast<uint8_t>(rgb), 255};
  }
  return {};
}

// Both the names of 1.3.0 and those of 1.1.1, as "application/vnd.ogc.se_inimage".
WmsOnProblem OnProblemOf(const HttpRequest& request) {
  const std::string* const exceptions = request.Find("EXCEPTIONS");
  if (!exceptions) return WmsOnProblem::Xml;
  const auto endsIn = [&](const char* word) {
    const size_t length = std::strlen(word);
    return exceptions->size() >= length && Same(exceptions->substr(exceptions->size() - length), word);
  };
  return endsIn("INIMAGE") ? WmsOnProblem::InImage
         : endsIn("BLANK") ? WmsOnProblem::Blank
                           : WmsOnProblem::Xml;
}

}  // namespace

bool IsOldWms(const HttpRequest& request) {
  const std::string* const version = request.Find("VERSION");
  return version ? version->starts_with("1.1") || version->starts_with("1.0")
                 : !request.Find("CRS") && request.Find("SRS");
}

MaybeWmsProblem ReadWmsNumber(const HttpRequest& request, const char* name, int least, int most,
                              const char* code, int& value) {
  const std::string* const text = request.Find(name);
  if (!text) return Missing(name);
  int number = 0;
  if (!ReadValue(*text, number) || number < least || number > most)
    return WmsProblem{code, std::string(name) + " is a whole number from " + std::to_string(least) + " to " +
                                std::to_string(most)};
  value = number;
  return {};
}

std::vector<std::string> WmsLayers(Desk& desk, std::string& problem) {
  const LayerSet* const set = desk.Painter().Open(DATA_SCALES[0], problem);
  return set ? LayerList(set->Layers(), *desk.Data().FindTheme("")).Names() : std::vector<std::string>();
}

MaybeWmsProblem ReadWmsLayers(const HttpRequest& request, const char* name, Desk& desk,
                              std::vector<std::string>& layers) {
  const std::string* const text = request.Find(name);
  if (!text || text->empty()) return Missing(name);
  std::string problem;
  std::vector<std::string> known = WmsLayers(desk, problem);
  if (!problem.empty()) return WmsProblem{"", problem};
  known.emplace_back(WMS_CHART);
  for (const std::string& wanted : SplitList(*text)) {
    const auto spelled = std::find_if(known.begin(), known.end(),
                                      [&](const std::string& k) { return Same(k, wanted.c_str()); });
    if (spelled == known.end()) return WmsProblem{"LayerNotDefined", "there is no layer '" + wanted + "'"};
    if (std::find(layers.begin(), layers.end(), *spelled) == layers.end()) layers.push_back(*spelled);
  }
  return {};
}

MaybeWmsProblem ReadWmsMap(const HttpRequest& request, Desk& desk, WmsMap& map) {
  static const char* const SIZE = "InvalidParameterValue";
  map.onProblem = OnProblemOf(request);
  for (const auto& [name, size] : {std::pair{"WIDTH", &map.box.width}, {"HEIGHT", &map.box.height}})
    if (MaybeWmsProblem problem = ReadWmsNumber(request, name, 1, MAX_SQUARE_SIDE, SIZE, *size))
      return problem;
  if (MaybeWmsProblem problem = ReadLook(request, map)) return problem;
  if (MaybeWmsProblem problem = ReadWmsLayers(request, "LAYERS", desk, map.layers)) return problem;
  if (MaybeWmsProblem problem = ReadStyles(request, desk, map.theme)) return problem;
  map.wholeChart = std::erase(map.layers, WMS_CHART) > 0;
  return ReadBox(request, map.box);
}

std::string ShowWmsMap(const WmsMap& map, const MapWindow& window, Desk& desk) {
  MapRequest request = window.map;
  (map.wholeChart ? request.shown : request.only) = map.layers;
  request.theme = map.theme;
  request.paper = map.transparent ? Color{} : map.background;
  return desk.Painter().Show(request);
}
