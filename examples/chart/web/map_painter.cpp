#include "web/map_painter.h"

#include "ink/cairo_grfx.h"
#include "ink/pen.h"
#include "sheet/png.h"

#include <k7/foundation/error_string.h>

namespace {

constexpr double TEXT_SIZE = 12;

// Text is measured on one page for all maps of the process's life.
cairo_t* Measure() {
  static thread_local struct Scratch {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    cairo_t* cairo = cairo_create(surface);
    ~Scratch() {
      cairo_destroy(cairo);
      cairo_surface_destroy(surface);
    }
  } scratch;
  return scratch.cairo;
}

}  // namespace

LayerSet* MapPainter::Open(const DataScale& scale, std::string& problem) {
  std::unique_ptr<LayerSet>& layers = m_layers[static_cast<size_t>(&scale - DATA_SCALES)];
  if (!layers) layers = m_data.OpenLayers(scale, problem);
  return layers.get();
}

std::string MapPainter::Show(const MapRequest& request) {
  m_labels.reset();
  m_chart.reset();
  std::string problem = m_data.WhyNoTheme(request.theme);
  if (!problem.empty()) return problem;
  m_theme = *m_data.FindTheme(request.theme);
  if (request.paper) m_theme[ThemeItem::Paper].fill = *request.paper;
  LayerSet* const set = Open(request.data ? *request.data : DataScaleOf(request.chart), problem);
  if (!set) return problem;
  std::vector<Layer*> layers = set->Layers();
  if (request.top) layers.push_back(request.top);
  auto chart = std::make_unique<Chart>(layers, m_theme, m_progress);
  if (!request.only.empty()) {
    chart->Layers().SetAllVisible(false);
    if (!chart->Layers().SetOrder(request.only)) return "there is a layer twice, or one that is not there";
  }
  for (const auto& [names, visible] :
       {std::pair{&request.only, true}, {&request.shown, true}, {&request.hidden, false}})
    for (const std::string& name : *names)
      if (!chart->Layers().SetVisible(name, visible)) return "there is no layer '" + name + "'";
  if (request.top) chart->SetOffRouteAlpha(request.offRouteAlpha);
  m_scale = request.scale;
  if (problem = chart->Show(request.chart, request.width, request.height, m_scale); !problem.empty())
    return problem;
  m_labels.emplace(Measure(), PixelBox{0, 0, request.width * 1.0, request.height * 1.0});
  chart->OfferLabels(TEXT_SIZE * m_scale, *m_labels);
  m_chart = std::move(chart);
  return {};
}

std::string MapPainter::Draw(cairo_t* cairo) {
  const int width = m_chart->View()->Width(), height = m_chart->View()->Height();
  cairo_save(cairo);
  cairo_rectangle(cairo, 0, 0, width, height);
  cairo_clip(cairo);
  SetColor(cairo, m_theme[ThemeItem::Paper].fill);
  cairo_paint(cairo);
  CairoGrfx grfx(cairo, width, height);
  const int code = m_chart->Render(&grfx);
  m_labels->Draw(cairo, m_theme, m_scale, m_chart->LabelOpacity());
  cairo_restore(cairo);
  return code == 0 ? std::string() : std::string(K7ErrorString::ErrorString(code));
}

std::string MapPainter::DrawImage(const MapRequest& request, MapImage& image) {
  if (std::string problem = Show(request); !problem.empty()) return problem;
  image.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24, request.width, request.height));
  const std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cairo(cairo_create(image.get()), cairo_destroy);
  if (cairo_status(cairo.get()) != CAIRO_STATUS_SUCCESS) return "out of memory";
  return Draw(cairo.get());
}

std::string MapPainter::DrawPng(const MapRequest& request, std::vector<unsigned char>& png) {
  MapImage image;
  if (std::string problem = DrawImage(request, image); !problem.empty()) return problem;
  return EncodePng(image.get(), png, m_progress, PngUse::Shown) ? std::string() : "out of memory";
}
