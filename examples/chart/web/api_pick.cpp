// What lies under a pixel, as a card to read.

#include "sheet/pixel_answer.h"
#include "store/text_1252.h"
#include "web/api_answer.h"
#include "web/page_api.h"
#include "web/route_point.h"
#include "web/view_request.h"

#include <k7/io/xml_elem.h>

namespace {

std::string Utf8(const K7String& text) { return Utf8Of1252(static_cast<const char*>(text)); }

// What an element is, and its children without children of their own, as rows. Records within it, as an
// airport's runways, are cards of their own and wait behind the others.
void WriteCard(JsonWriter& json, const K7XmlElem& element, std::vector<const K7XmlElem*>& waiting) {
  const K7XmlElem* const type = element.Child("Type");
  json.Begin('{').Key("type").Text(Utf8(type ? type->Text() : element.Name())).Key("rows").Begin('[');
  for (const K7XmlElem* child = element.FirstChild(); child; child = child->NextSibling()) {
    if (child->FirstChild())
      waiting.push_back(child);
    else if (child != type && !child->Text().IsEmpty())
      json.Begin('[').Text(Utf8(child->Name())).Text(Utf8(child->Text())).End(']');
  }
  json.End(']').End('}');
}

void WriteRecords(JsonWriter& json, const Picked& thing) {
  json.Key("records").Begin('[');
  const std::vector<std::string> documents =
      thing.records ? thing.records(K7XML_DISPLAY) : std::vector<std::string>();
  for (const std::string& document : documents) {
    K7XmlElem read;
    if (!read.Parse(document.c_str())) continue;
    std::vector<const K7XmlElem*> waiting = {&read};
    for (size_t i = 0; i < waiting.size(); ++i) WriteCard(json, *waiting[i], waiting);
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
