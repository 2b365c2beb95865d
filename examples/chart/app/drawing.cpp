#include "app/drawing.h"

#include "app/arrange_layers.h"
#include "app/progress_line.h"
#include "ink/pen.h"
#include "layers/earth_layer.h"
#include "layers/shape_layer.h"
#include "layers/underlay_layer.h"
#include "sheet/page.h"

#include <algorithm>

std::string LayerStack::Load(const LayerOptions& options, const DataScale& scale, bool graticule,
                             Progress& progress) {
  std::vector<LayerRequest> requests;
  if (std::string problem = FindLayers(options, scale, requests); !problem.empty()) return problem;
  m_layers.push_back(std::make_unique<EarthLayer>());
  // Meridians and parallels lie over the map and under what is flown by.
  for (const LayerRequest& request : requests) {
    if (graticule && request.item > ThemeItem::Graticule) LayGraticule();
    // Whose figures stand in the cells of a graticule that is not there.
    if (request.item == ThemeItem::Elevations && !graticule && options.names.empty()) continue;
    std::string problem;
    std::unique_ptr<Layer> layer = Make(request, options, progress, problem);
    if (!problem.empty()) return problem;
    m_layers.push_back(std::move(layer));
  }
  if (graticule) LayGraticule();
  return {};
}

void LayerStack::LayGraticule() {
  if (m_graticule) return;
  auto graticule = std::make_unique<GraticuleLayer>();
  m_graticule = graticule.get();
  m_layers.push_back(std::move(graticule));
}

std::unique_ptr<Layer> LayerStack::Make(const LayerRequest& request, const LayerOptions& options,
                                        Progress& progress, std::string& problem) {
  switch (SourceOf(request.item)) {
    case LayerSource::Terrain: {
      K7NavData* const obstacles = request.item == ThemeItem::Elevations && !options.nav.empty()
                                       ? m_nav.Store(options, problem)
                                       : nullptr;
      return problem.empty() ? m_terrain.Make(request.item, TerrainFolder(options), obstacles, m_graticule,
                                              progress, problem)
                             : nullptr;
    }
    case LayerSource::Magnetism:
    case LayerSource::Navigation:
      return m_nav.Make(request.item, options, problem);
    case LayerSource::Sets:
      break;
  }
  if (request.item == ThemeItem::Underlay) {
    auto underlay =
        std::make_unique<UnderlayLayer>(request.path, options.underlayBounds.value_or(UnderlayBounds()));
    problem = underlay->Load(progress);
    return underlay;
  }
  auto layer = std::make_unique<ShapeLayer>(request.item, request.path);
  problem = layer->Load(progress);
  return layer;
}

std::vector<Layer*> LayerStack::Layers() const {
  std::vector<Layer*> layers;
  for (const std::unique_ptr<Layer>& layer : m_layers) layers.push_back(layer.get());
  return layers;
}

ChartBox WholeSheet(const SheetOptions& sheet) {
  const double size = std::max(9.0, std::min(sheet.width, sheet.height) / 80.0);
  return {0, 0, sheet.width * 1.0, sheet.height * 1.0, size};
}

std::string DrawSheet(const LayerOptions& options, const DataScale& scale, const SheetOptions& sheet,
                      const LookOptions& look, int charts,
                      const std::function<std::string(cairo_t*, Chart&)>& draw, Layer* top) {
  ProgressLine progress;
  LayerStack stack;
  if (std::string problem = stack.Load(options, scale, look.graticule, progress); !problem.empty())
    return problem;
  PageFormat format{};
  PageFormatOf(sheet.output, format);
  Page page(format, sheet.width, sheet.height);
  if (!page.IsValid()) return "out of memory";
  SetColor(page.Cairo(), look.theme[ThemeItem::Paper].fill);
  cairo_paint(page.Cairo());
  // In each chart every layer is drawn twice, areas and lines; then the picture is written.
  std::vector<Layer*> layers = stack.Layers();
  if (top) layers.push_back(top);
  progress.Expect(2 * charts * static_cast<int>(layers.size()) + 1);
  Chart chart(layers, look.theme, progress);
  chart.UseLegend(look.legend);
  if (std::string problem = ArrangeLayers(options, chart.Layers()); !problem.empty()) return problem;
  if (!look.writeTo.empty())
    if (std::string problem = chart.SaveTheme(look.writeTo); !problem.empty()) return problem;
  if (std::string problem = draw(page.Cairo(), chart); !problem.empty()) return problem;
  return page.Save(sheet.output, progress);
}
