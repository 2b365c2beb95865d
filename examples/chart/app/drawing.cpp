#include "app/drawing.h"

#include "ink/style.h"
#include "sheet/page.h"

std::string DrawSheet(const LayerOptions& options, DataScale scale, const SheetOptions& sheet, int charts,
                      const std::function<std::string(cairo_t*, const LayerList&, Progress&)>& draw) {
  std::vector<LayerRequest> requests;
  if (std::string problem = FindLayers(options, scale, requests); !problem.empty()) return problem;
  // A step each for reading a layer, for drawing it in each chart, and for writing the picture.
  ProgressLine progress(static_cast<int>(requests.size()) * (1 + charts) + 1);
  std::vector<std::unique_ptr<ShapeLayer>> layers;
  LayerList drawn;
  for (const LayerRequest& request : requests) {
    layers.push_back(std::make_unique<ShapeLayer>(request.kind, request.path));
    if (std::string problem = layers.back()->Load(progress); !problem.empty()) return problem;
    drawn.push_back(layers.back().get());
  }

  PageFormat format{};
  PageFormatOf(sheet.output, format);
  Page page(format, sheet.width, sheet.height);
  if (!page.IsValid()) return "out of memory";
  SetColor(page.Cairo(), PAPER);
  cairo_paint(page.Cairo());
  if (std::string problem = draw(page.Cairo(), drawn, progress); !problem.empty()) return problem;
  return page.Save(sheet.output, progress);
}
