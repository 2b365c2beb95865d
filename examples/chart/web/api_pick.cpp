// What lies under a pixel, as a card to read.

#include "sheet/pixel_answer.h"
#include "web/api_answer.h"
#include "web/page_api.h"
#include "web/record_rows.h"
#include "web/route_point.h"
#include "web/view_request.h"

namespace {

void WriteRecords(JsonWriter& json, const Picked& thing) {
  json.Key("records").Begin('[');
  for (const RecordCard& card : CardsOf(thing)) {
    json.Begin('{').Key("type").Text(card.type).Key("rows").Begin('[');
    for (const auto& [name, value] : card.rows) json.Begin('[').Text(name).Text(value).End(']');
    json.End(']').End('}');
  }
  json.End(']');
}

void WriteFound(JsonWriter& json, const std::vector<Picked>& found) {
  json.Key("found").Begin('[');
  for (const Picked& thing : found) {
    json.Begin('{').Key("text").Text(thing.text).Key("layer").Text(thing.layer).Key("point");
    thing.point ? json.Text(PointText(thing.point->ident, thing.point->place)) : json.Null();
    WriteRecords(json, thing);
    json.End('}');
  }
  json.End(']');
}

void Write(JsonWriter& json, const PixelAnswer& answer) {
  json.Key("place").Begin('{');
  WritePlace(json, answer.place);
  json.End('}').Key("point").Text(PointText(answer.place)).Key("elevation_ft");
  answer.feet == K7_NO_ELEV ? json.Null() : json.Integer(answer.feet);
  json.Key("variation").Begin('{').Key("degrees").Number(answer.variation, 1);
  json.Key("text").Text(VariationAt(answer.variation)).End('}');
  WriteFound(json, answer.found);
}

}  // namespace

HttpAnswer AnswerPick(const HttpRequest& request, Desk& desk) {
  ViewRequest view;
  double x = 0, y = 0;
  std::string problem = ReadView(request, desk, view);
  if (problem.empty()) problem = ReadPixel(request, view, x, y);
  if (problem.empty() && (x < 0 || y < 0 || x > view.map.width || y > view.map.height))
    problem = "the pixel lies outside the picture";
  if (problem.empty()) problem = desk.Painter().Show(view.map);
  if (!problem.empty()) return Problem(400, problem);
  const PixelAnswer answer = AskPixel(desk.Painter().Shown(), x, y, desk.Data().Terrain());
  JsonWriter json;
  json.Begin('{');
  if (answer.nothing.empty())
    Write(json, answer);
  else
    json.Key("off").Bool(true).Key("found").Begin('[').End(']');
  json.End('}');
  return JsonAnswer(std::move(json));
}
