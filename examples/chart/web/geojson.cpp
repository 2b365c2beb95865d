#include "web/geojson.h"

#include "layers/layer_table.h"
#include "layers/shape_layer.h"
#include "web/desk.h"
#include "web/geojson_features.h"
#include "web/query_value.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int USUAL_LIMIT = 1000, MOST = 10000;
constexpr const char* USUAL_LAYERS = "airports,navaids,fixes,airways,airspaces";

struct LayerTypes {
  const char* layer;
  std::vector<K7NavType> types;
};

struct Wanted {
  K7ChartRect area;
  std::vector<K7NavType> types;
  std::vector<std::string> sets;  // layers of sets
  int limit = USUAL_LIMIT;
};

const std::vector<LayerTypes>& RecordLayers() {
  static const std::vector<LayerTypes> LAYERS = {
      {"airports", {K7NAV_AIRPORT, K7NAV_LOW_USE_AIRPORT}},
      {"navaids", {K7NAV_VOR, K7NAV_TERMINAL_NDB, K7NAV_ENROUTE_NDB}},
      {"fixes", {K7NAV_TERMINAL_FIX, K7NAV_ENROUTE_FIX}},
      {"airways", {K7NAV_HIGH_AIRWAY, K7NAV_LOW_AIRWAY}},
      {"airspaces", {K7NAV_CTRL_AIRSPACE, K7NAV_SPECIAL_USE_AIRSPACE}},
  };
  return LAYERS;
}

std::string ReadArea(const HttpRequest& request, K7ChartRect& area) {
  static const char* const FORM =
      "bbox is WEST,SOUTH,EAST,NORTH in degrees; west is greater than east across 180";
  const std::string* const text = request.Find("bbox");
  double edges[4] = {};
  if (!text || !ReadEdges(*text, edges)) return FORM;
  for (size_t i = 0; i < std::size(edges); ++i)
    if (std::fabs(edges[i]) > (i % 2 == 0 ? 180 : 90)) return FORM;
  if (edges[1] > edges[3]) return FORM;
  area = {edges[3], edges[1], edges[2], edges[0]};
  return {};
}

std::string AddType(const std::string& name, Wanted& wanted) {
  const size_t before = wanted.types.size();
  for (int i = 0; i < K7NAV_TYPE_COUNT; ++i)
    if (const auto type = static_cast<K7NavType>(i);
        !name.empty() && K7String::IComp(GeoTypeName(type).c_str(), name.c_str()) == 0)
      wanted.types.push_back(type);
  return wanted.types.size() > before ? std::string() : "there is no type '" + name + "'";
}

std::string AddLayer(const std::string& name, Wanted& wanted) {
  for (const LayerTypes& layer : RecordLayers())
    if (K7String::IComp(name.c_str(), layer.layer) == 0) {
      wanted.types.insert(wanted.types.end(), layer.types.begin(), layer.types.end());
      return {};
    }
  wanted.sets.push_back(name);
  return {};
}

std::string Read(const HttpRequest& request, Wanted& wanted) {
  if (std::string problem = ReadArea(request, wanted.area); !problem.empty()) return problem;
  const std::string *types = request.Find("types"), *layers = request.Find("layers");
  if (types)
    for (const std::string& type : SplitList(*types))
      if (std::string problem = AddType(type, wanted); !problem.empty()) return problem;
  if (layers || !types)
    for (const std::string& layer : SplitList(layers ? *layers : USUAL_LAYERS))
      if (std::string problem = AddLayer(layer, wanted); !problem.empty()) return problem;
  if (const std::string* const limit = request.Find("limit"))
    if (!ReadValue(*limit, wanted.limit) || wanted.limit < 1 || wanted.limit > MOST)
      return "limit is a whole number from 1 to " + std::to_string(MOST);
  // What is asked for twice is written once.
  std::sort(wanted.types.begin(), wanted.types.end());
  wanted.types.erase(std::unique(wanted.types.begin(), wanted.types.end()), wanted.types.end());
  std::sort(wanted.sets.begin(), wanted.sets.end());
  wanted.sets.erase(std::unique(wanted.sets.begin(), wanted.sets.end()), wanted.sets.end());
  return {};
}

// At the scale of a chart of that area.
const DataScale& ScaleOf(const K7ChartRect& area) {
  static const double LEAST_NM = 1;
  return ScaleFor(std::max(LEAST_NM, (area.North() - area.South()) * 60 / 2));
}

// A set and what the chart calls it.
struct NamedSet {
  ShapeLayer* layer;
  std::string name;
};

std::string FindSets(const Wanted& wanted, Desk& desk, std::vector<NamedSet>& sets) {
  if (wanted.sets.empty()) return {};
  std::string problem;
  const LayerSet* const all = desk.Painter().Open(ScaleOf(wanted.area), problem);
  if (!all) return problem;
  for (const std::string& name : wanted.sets) {
    const size_t before = sets.size();
    for (Layer* const layer : all->Layers()) {
      const char* const known = LayerNameOf(layer->Item());
      auto* const shapes = dynamic_cast<ShapeLayer*>(layer);
      if (shapes && K7String::IComp((known ? std::string(known) : layer->Name()).c_str(), name.c_str()) == 0)
        sets.push_back({shapes, name});
    }
    if (sets.size() == before) return "there is no layer '" + name + "' of records or shapes";
  }
  return {};
}

std::string Write(const Wanted& wanted, NavStore* store, const std::vector<NamedSet>& sets) {
  JsonWriter json;
  json.Begin('{').Key("type").Text("FeatureCollection").Key("features").Begin('[');
  FeatureWriter features(json, wanted.limit);
  bool isWhole = true;
  for (const K7NavType type : wanted.types)
    if (store && isWhole) isWhole = features.AddRecords(*store, type, wanted.area);
  for (const NamedSet& set : sets)
    if (isWhole) isWhole = features.AddShapes(*set.layer, set.name, wanted.area);
  json.End(']').Key("count").Integer(features.Count()).Key("truncated").Bool(!isWhole).End('}');
  return json.Take();
}

}  // namespace

HttpAnswer AnswerGeoJson(const HttpRequest& request, Desk& desk) {
  Wanted wanted;
  if (std::string problem = Read(request, wanted); !problem.empty()) return Refuse(400, problem);
  std::vector<NamedSet> sets;
  if (std::string problem = FindSets(wanted, desk, sets); !problem.empty()) return Refuse(400, problem);
  std::string problem;
  NavStore* const store = wanted.types.empty() ? nullptr : desk.Store(problem);
  if (!problem.empty()) return Refuse(500, problem);
  return {.type = "application/geo+json", .body = Write(wanted, store, sets)};
}
