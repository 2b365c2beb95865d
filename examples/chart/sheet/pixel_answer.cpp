#include "sheet/pixel_answer.h"

#include "app_common/position_text.h"
#include "ink/text.h"
#include "sheet/profile.h"
#include "store/text_1252.h"

#include <k7/foundation/string.h>
#include <k7/geodesy/magvar.h>
#include <k7/io/xml_elem.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

std::string ElevationText(int feet) {
  if (feet == K7_NO_ELEV) return "no elevation";
  return std::string(K7FmtString("%d ft  %d m", feet, MetresOfFeet(feet)));
}

// Projections have positions beyond what is drawn of them, as about a Lambert chart's far pole.
bool IsDrawn(const K7MapView& view, double dx, double dy, double& lat, double& lon) {
  static const double INSIDE = 1e-4;  // the frame itself is not lost to rounding
  const double x = std::clamp(dx, INSIDE, view.Width() - INSIDE);
  const double y = std::clamp(dy, INSIDE, view.Height() - INSIDE);
  double againX, againY;
  return view.FromDevice(x, y, lat, lon) && view.ToDevice(lat, lon, againX, againY) &&
         view.FromDevice(dx, dy, lat, lon);
}

void Add(K7XmlElem& parent, const char* name, const char* text) {
  parent.AddChild(new K7XmlElem(name, text));
}

// The layer and what the text says of it come first in each.
std::unique_ptr<K7XmlElem> NewRecord(const Picked& thing) {
  auto record = std::make_unique<K7XmlElem>("Record");
  record->AddAttrib("Layer", Text1252(thing.layer).c_str());
  record->AddAttrib("Text", Text1252(thing.text).c_str());
  return record;
}

void AddRecords(const Picked& thing, K7XmlOutputType_t type, K7XmlElem& parent) {
  const std::vector<std::string> documents = thing.records ? thing.records(type) : std::vector<std::string>();
  for (const std::string& document : documents) {
    K7XmlElem read;
    if (!read.Parse(document.c_str())) continue;
    std::unique_ptr<K7XmlElem> record = NewRecord(thing);
    while (K7XmlElem* const child = read.FirstChild()) record->AddChild(child);
    parent.AddChild(record.release());
  }
  if (documents.empty()) parent.AddChild(NewRecord(thing).release());
}

}  // namespace

std::string VariationAt(double degrees) {
  const double tenths = std::round(degrees * 10) / 10;
  const char* const side = tenths > 0 ? " E" : tenths < 0 ? " W" : "";
  return Utf8(K7FmtString("variation %.1f\xB0%s", std::fabs(tenths), side));
}

PixelAnswer AskPixel(Chart& chart, double dx, double dy, K7Terrain* terrain) {
  PixelAnswer answer = {.x = dx, .y = dy};
  double lat, lon;
  if (!IsDrawn(*chart.View(), dx, dy, lat, lon)) {
    answer.nothing = "off the map";
    return answer;
  }
  answer.place = {lat, lon};
  if (terrain) answer.feet = terrain->GetElev(lat, lon, 0);
  answer.variation = K7MagVar::GetMagVar()->Position(lat, lon, 0, 0, 0);
  answer.found = chart.Pick(dx, dy);
  return answer;
}

std::string TextOf(const PixelAnswer& answer) {
  const std::string pixel(K7FmtString("%g,%g  ", answer.x, answer.y));
  if (!answer.nothing.empty()) return pixel + answer.nothing + "\n";
  std::string text = pixel + PositionText(answer.place) + "  " + ElevationText(answer.feet) + "  " +
                     VariationAt(answer.variation) + "\n";
  for (const Picked& thing : answer.found) text += "    " + thing.text + "\n";
  return text;
}

void AddXML(const PixelAnswer& answer, K7XmlOutputType_t type, K7XmlElem& parent) {
  auto* const pixel = new K7XmlElem("Pixel");
  parent.AddChild(pixel);
  pixel->AddAttrib("X", K7FmtString("%g", answer.x));
  pixel->AddAttrib("Y", K7FmtString("%g", answer.y));
  if (!answer.nothing.empty()) {
    Add(*pixel, "Nothing", answer.nothing.c_str());
    return;
  }
  Add(*pixel, "Position", PositionText(answer.place).c_str());
  Add(*pixel, "Lat", K7FmtString("%.6f", answer.place.Lat()));
  Add(*pixel, "Lon", K7FmtString("%.6f", answer.place.Lon()));
  if (answer.feet != K7_NO_ELEV) {
    Add(*pixel, "ElevationFeet", K7FmtString("%d", answer.feet));
    Add(*pixel, "ElevationMetres", K7FmtString("%d", MetresOfFeet(answer.feet)));
  }
  Add(*pixel, "Variation", K7FmtString("%.1f", std::round(answer.variation * 10) / 10 + 0.0));
  for (const Picked& thing : answer.found) AddRecords(thing, type, *pixel);
}
