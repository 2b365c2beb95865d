#include "web/wms_feature_info.h"

#include "web/json.h"
#include "web/record_rows.h"
#include "web/xml_text.h"

#include <k7/foundation/string.h>

#include <algorithm>

namespace {

using Found = std::vector<Picked>;

std::string AsText(const Found& found) {
  std::string text;
  for (const Picked& thing : found) {
    text += thing.text + "\n";
    for (const RecordRows& rows : RowsOf(thing))
      for (const auto& [name, value] : rows) text += "    " + name + ": " + value + "\n";
  }
  return text.empty() ? "nothing here\n" : text;
}

std::string AsHtml(const Found& found) {
  std::string text =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>Chart</title></head><body>\n";
  for (const Picked& thing : found) {
    text += "<h3>" + XmlText(thing.text) + "</h3>\n";
    for (const RecordRows& rows : RowsOf(thing)) {
      text += "<table>\n";
      for (const auto& [name, value] : rows)
        text += "<tr><th align=\"left\">" + XmlText(name) + "</th><td>" + XmlText(value) + "</td></tr>\n";
      text += "</table>\n";
    }
  }
  return text + (found.empty() ? "<p>nothing here</p>\n" : "") + "</body></html>\n";
}

std::string AsXml(const Found& found) {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<FeatureInfoResponse>\n";
  for (const Picked& thing : found) {
    text += "<Feature layer=\"" + XmlText(ChartLayerOf(thing)) + "\" text=\"" + XmlText(thing.text) + "\">\n";
    for (const RecordRows& rows : RowsOf(thing)) {
      text += "<Record>\n";
      for (const auto& [name, value] : rows)
        text += "<Field name=\"" + XmlText(name) + "\">" + XmlText(value) + "</Field>\n";
      text += "</Record>\n";
    }
    text += "</Feature>\n";
  }
  return text + "</FeatureInfoResponse>\n";
}

// An object has each name once: what comes again, as for each of an airport's runways, is a list of values.
void WriteProperty(JsonWriter& json, const RecordRows& rows, const std::string& name) {
  const auto isNamed = [&](const auto& row) { return row.first == name; };
  const bool isList = std::count_if(rows.begin(), rows.end(), isNamed) > 1;
  json.Key(name);
  if (isList) json.Begin('[');
  for (const auto& row : rows)
    if (isNamed(row)) json.Text(row.second);
  if (isList) json.End(']');
}

// A feature a record, as programs that know GeoJSON show in tables.
std::string AsJson(const Found& found) {
  JsonWriter json;
  json.Begin('{').Key("type").Text("FeatureCollection").Key("features").Begin('[');
  for (const Picked& thing : found) {
    std::vector<RecordRows> records = RowsOf(thing);
    if (records.empty()) records.emplace_back();
    for (const RecordRows& rows : records) {
      json.Begin('{').Key("type").Text("Feature").Key("geometry").Null().Key("properties").Begin('{');
      json.Key("layer").Text(ChartLayerOf(thing)).Key("text").Text(thing.text);
      for (auto row = rows.begin(); row != rows.end(); ++row)
        if (row->first != "layer" && row->first != "text" &&
            std::none_of(rows.begin(), row, [&](const auto& before) { return before.first == row->first; }))
          WriteProperty(json, rows, row->first);
      json.End('}').End('}');
    }
  }
  return json.End(']').End('}').Take();
}

struct Format {
  const char* name;
  const char* type;
  std::string (*write)(const Found& found);
};
constexpr Format FORMATS[] = {
    {"text/plain", "text/plain; charset=utf-8", AsText},
    {"text/html", "text/html; charset=utf-8", AsHtml},
    {"text/xml", "text/xml; charset=utf-8", AsXml},
    {"application/json", "application/json", AsJson},
    {"application/geo+json", "application/geo+json", AsJson},
};

const Format* FindFormat(const HttpRequest& request) {
  const std::string* const wanted = request.Find("INFO_FORMAT");
  for (const Format& format : FORMATS)
    if (!wanted || wanted->empty() || K7String::IComp(wanted->c_str(), format.name) == 0) return &format;
  return nullptr;
}

struct Query {
  WmsMap map;
  std::vector<std::string> layers;
  int i = 0, j = 0, most = 1;
};

MaybeWmsProblem ReadQuery(const HttpRequest& request, Desk& desk, Query& query) {
  static const int MOST = 1000;
  if (MaybeWmsProblem problem = ReadWmsMap(request, desk, query.map)) return problem;
  if (MaybeWmsProblem problem = ReadWmsLayers(request, "QUERY_LAYERS", desk, query.layers)) return problem;
  for (const std::string& layer : query.layers)
    if (!query.map.wholeChart &&
        (layer == WMS_CHART ||
         std::find(query.map.layers.begin(), query.map.layers.end(), layer) == query.map.layers.end()))
      return WmsProblem{"LayerNotDefined", "the picture has no layer '" + layer + "'"};
  const bool old = IsOldWms(request);
  const MapBox& box = query.map.box;
  if (MaybeWmsProblem problem =
          ReadWmsNumber(request, old ? "X" : "I", 0, box.width - 1, "InvalidPoint", query.i))
    return problem;
  if (MaybeWmsProblem problem =
          ReadWmsNumber(request, old ? "Y" : "J", 0, box.height - 1, "InvalidPoint", query.j))
    return problem;
  return request.Find("FEATURE_COUNT")
             ? ReadWmsNumber(request, "FEATURE_COUNT", 1, MOST, "InvalidParameterValue", query.most)
             : MaybeWmsProblem();
}

// By the same places and labels as the picture has: what found no room there is not to be picked.
MaybeWmsProblem Pick(const Query& query, Desk& desk, Found& found) {
  const std::optional<MapWindow> window = WindowOf(query.map.box);
  double x = query.i + 0.5, y = query.j + 0.5;
  if (!window || !window->world.Holds({x, y, x, y})) return {};
  if (std::string problem = ShowWmsMap(query.map, *window, desk); !problem.empty())
    return WmsProblem{"", problem};
  cairo_matrix_t toMap = window->toPicture;
  cairo_matrix_invert(&toMap);
  cairo_matrix_transform_point(&toMap, &x, &y);
  found = desk.Painter().Shown().Pick(x, y);
  const auto isWanted = [&](const std::string& layer) {
    return std::find(query.layers.begin(), query.layers.end(), layer) != query.layers.end();
  };
  std::erase_if(found,
                [&](const Picked& thing) { return !isWanted(WMS_CHART) && !isWanted(ChartLayerOf(thing)); });
  if (found.size() > static_cast<size_t>(query.most)) found.resize(static_cast<size_t>(query.most));
  return {};
}

}  // namespace

MaybeWmsProblem WmsFeatureInfo(const HttpRequest& request, Desk& desk, HttpAnswer& answer) {
  Query query;
  if (MaybeWmsProblem problem = ReadQuery(request, desk, query)) return problem;
  const Format* const format = FindFormat(request);
  if (!format) return WmsProblem{"InvalidFormat", "there is no such INFO_FORMAT"};
  Found found;
  if (MaybeWmsProblem problem = Pick(query, desk, found)) return problem;
  answer.type = format->type;
  answer.body = format->write(found);
  return {};
}
