#include "web/wms.h"

#include "ink/pen.h"
#include "sheet/png.h"
#include "web/wms_capabilities.h"
#include "web/wms_feature_info.h"
#include "web/wms_request.h"
#include "web/xml_text.h"

#include <k7/foundation/string.h>

namespace {

using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

const WmsProblem NO_MEMORY = {"", "out of memory"};

// A service that answers tells of problems in its own words, not in those of HTTP: programs show them then.
HttpAnswer Report(const WmsProblem& problem) {
  const std::string code = problem.code.empty() ? std::string() : " code=\"" + problem.code + "\"";
  return {.type = "text/xml; charset=utf-8",
          .body =
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<ServiceExceptionReport version=\"1.3.0\" xmlns=\"http://www.opengis.net/ogc\">\n"
              "  <ServiceException" +
              code + ">" + XmlText(problem.text) + "</ServiceException>\n</ServiceExceptionReport>\n"};
}

MapImage NewImage(const WmsMap& map) {
  const cairo_format_t format = map.transparent ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
  return MapImage(cairo_image_surface_create(format, map.box.width, map.box.height));
}

void Clear(cairo_t* cairo, const WmsMap& map) {
  if (map.transparent) return;
  SetColor(cairo, map.background);
  cairo_paint(cairo);
}

std::optional<HttpAnswer> Encode(cairo_surface_t* image) {
  NoProgress progress;
  std::vector<unsigned char> png;
  if (!EncodePng(image, png, progress, PngUse::Shown)) return {};
  return HttpAnswer{.type = "image/png", .body = {png.begin(), png.end()}};
}

void Write(cairo_t* cairo, const std::string& text) {
  static const double SIZE = 13, LINE = 18;
  static const size_t LONGEST = 200;
  cairo_set_source_rgb(cairo, 0.7, 0, 0);
  cairo_set_font_size(cairo, SIZE);
  cairo_move_to(cairo, SIZE / 2, LINE);
  std::string line = text.substr(0, LONGEST);
  for (char& c : line)
    if (c < ' ' || c > '~') c = '?';
  cairo_show_text(cairo, line.c_str());
}

HttpAnswer ReportAsWanted(const WmsProblem& problem, const WmsMap& map) {
  if (map.onProblem == WmsOnProblem::Xml || map.box.width == 0 || map.box.height == 0) return Report(problem);
  const MapImage image = NewImage(map);
  const Context cairo(cairo_create(image.get()), cairo_destroy);
  Clear(cairo.get(), map);
  if (map.onProblem == WmsOnProblem::InImage) Write(cairo.get(), problem.text);
  return Encode(image.get()).value_or(Report(NO_MEMORY));
}

MaybeWmsProblem Draw(const WmsMap& map, Desk& desk, cairo_t* cairo) {
  const std::optional<MapWindow> window = WindowOf(map.box);
  if (!window) return {};
  if (std::string problem = ShowWmsMap(map, *window, desk); !problem.empty()) return WmsProblem{"", problem};
  const PixelBox& world = window->world;
  if (!world.Holds({0, 0, map.box.width * 1.0, map.box.height * 1.0})) {
    cairo_rectangle(cairo, world.left, world.top, world.right - world.left, world.bottom - world.top);
    cairo_clip(cairo);
  }
  cairo_transform(cairo, &window->toPicture);
  std::string problem = desk.Painter().Draw(cairo);
  return problem.empty() ? MaybeWmsProblem() : WmsProblem{"", problem};
}

HttpAnswer GetMap(const HttpRequest& request, Desk& desk) {
  WmsMap map;
  if (MaybeWmsProblem problem = ReadWmsMap(request, desk, map)) return ReportAsWanted(*problem, map);
  const MapImage image = NewImage(map);
  const Context cairo(cairo_create(image.get()), cairo_destroy);
  if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS) return Report(NO_MEMORY);
  Clear(cairo.get(), map);
  if (MaybeWmsProblem problem = Draw(map, desk, cairo.get())) return ReportAsWanted(*problem, map);
  return Encode(image.get()).value_or(Report(NO_MEMORY));
}

HttpAnswer GetCapabilities(const HttpRequest& request, Desk& desk) {
  std::string problem, document = WmsCapabilities(request, desk, problem);
  if (!problem.empty()) return Report({"", problem});
  return {.type = "text/xml; charset=utf-8", .body = std::move(document)};
}

HttpAnswer GetFeatureInfo(const HttpRequest& request, Desk& desk) {
  HttpAnswer answer;
  if (MaybeWmsProblem problem = WmsFeatureInfo(request, desk, answer)) return Report(*problem);
  return answer;
}

}  // namespace

HttpAnswer AnswerWms(const HttpRequest& request, Desk& desk) {
  static constexpr struct {
    const char* name;
    HttpAnswer (*answer)(const HttpRequest& request, Desk& desk);
  } OPERATIONS[] = {
      {"GetCapabilities", GetCapabilities},
      {"GetMap", GetMap},
      {"GetFeatureInfo", GetFeatureInfo},
  };
  if (const std::string* const service = request.Find("SERVICE");
      service && K7String::IComp(service->c_str(), "WMS") != 0)
    return Report({"InvalidParameterValue", "SERVICE is WMS"});
  const std::string* const wanted = request.Find("REQUEST");
  if (!wanted) return Report({"MissingParameterValue", "there is no REQUEST"});
  for (const auto& operation : OPERATIONS)
    if (K7String::IComp(wanted->c_str(), operation.name) == 0) return operation.answer(request, desk);
  return Report({"OperationNotSupported", "REQUEST is GetCapabilities, GetMap or GetFeatureInfo"});
}
