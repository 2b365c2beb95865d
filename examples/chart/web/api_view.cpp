// Views: the picture, what stands beside it, and which place a pixel shows.

#include "sheet/scale_bar.h"
#include "web/api_answer.h"
#include "web/page_api.h"
#include "web/view_request.h"

#include <algorithm>

namespace {

void WriteBounds(JsonWriter& json, const K7ChartRect& extent) {
  static const int DECIMALS = 6;
  json.Key("bounds");
  if (extent.IsEmpty()) {
    json.Null();
    return;
  }
  json.Begin('[');
  for (const double side : {extent.West(), extent.South(), extent.East(), extent.North()})
    json.Number(side, DECIMALS);
  json.End(']');
}

void WriteScale(JsonWriter& json, const K7MapView& view, double ratio, double dataScale) {
  static const int DECIMALS = 9;
  const double nm = view.NMPerPixel() * ratio;
  double north, east, angle;
  const bool hasScale = view.Scale(view.CenterLat(), view.CenterLon(), north, east);
  json.Key("nmPerPixel").Number(nm, DECIMALS);
  json.Key("nmPerPixelEast").Number(hasScale ? nm * east / north : nm, DECIMALS);
  json.Key("north");
  view.TrueNorth(view.CenterLat(), view.CenterLon(), angle) ? json.Number(angle, 4) : json.Null();
  const std::string data = view.IsTilted() ? std::string() : DataScaleText(dataScale, nm);
  json.Key("scale").Text(view.IsTilted() ? std::string() : "1 : " + Denominator(ScaleDenominator(nm)));
  json.Key("dataScale").Text(data);
}

// What the page draws around the picture.
JsonWriter Describe(const ViewRequest& request, const Chart& chart) {
  const K7MapView& view = *chart.View();
  const double half = std::min(view.Width(), view.Height()) / 2.0;
  JsonWriter json;
  json.Begin('{').Key("lat").Number(view.CenterLat(), 7).Key("lon").Number(view.CenterLon(), 7);
  json.Key("range").Number(view.IsTilted() ? 0 : view.NMPerPixel() * half, 6);
  json.Key("world").Bool(request.map.chart.rangeNM == 0 && !view.IsTilted());
  json.Key("tilted").Bool(view.IsTilted()).Key("turn").Number(view.Turn(), 4);
  json.Key("title").Text(view.Projection()->Name());
  WriteBounds(json, view.GetExtent());
  WriteScale(json, view, request.map.scale, chart.DataScale());
  json.End('}');
  return json;
}

}  // namespace

HttpAnswer AnswerViewPng(const HttpRequest& request, Desk& desk) {
  ViewRequest view;
  if (const std::string problem = ReadView(request, desk, view); !problem.empty())
    return Problem(400, problem);
  std::vector<unsigned char> png;
  if (const std::string problem = desk.Painter().DrawPng(view.map, png); !problem.empty())
    return Problem(400, problem);
  HttpAnswer answer{.type = "image/png", .body = std::string(png.begin(), png.end())};
  answer.headers.emplace_back("K7-View", Describe(view, desk.Painter().Shown()).Take());
  return answer;
}

HttpAnswer AnswerView(const HttpRequest& request, Desk& desk) {
  ViewRequest view;
  if (const std::string problem = ReadView(request, desk, view); !problem.empty())
    return Problem(400, problem);
  if (const std::string problem = desk.Painter().Show(view.map); !problem.empty())
    return Problem(400, problem);
  return JsonAnswer(Describe(view, desk.Painter().Shown()));
}

HttpAnswer AnswerAt(const HttpRequest& request, Desk& desk) {
  ViewRequest view;
  double x = 0, y = 0, lat = 0, lon = 0;
  std::string problem = ReadView(request, desk, view);
  if (problem.empty()) problem = ReadPixel(request, view, x, y);
  // Without layers: only where things fall matters.
  NoProgress progress;
  const Theme theme;
  Chart chart({}, theme, progress);
  if (problem.empty()) problem = chart.Show(view.map.chart, view.map.width, view.map.height, 1);
  if (!problem.empty()) return Problem(400, problem);
  JsonWriter json;
  json.Begin('{');
  if (chart.View()->FromDevice(x, y, lat, lon))
    WritePlace(json, {lat, lon});
  else
    json.Key("off").Bool(true);
  json.End('}');
  return JsonAnswer(std::move(json));
}
