// k7chart: draws charts of the real world with k7core. The page to read when writing a host: app/ reads what
// is wanted, layers/ sets a projection up on the graphics context of ink/ and turns positions into paths,
// sheet/ puts chart and page together.

#include "app/options.h"
#include "app/progress_line.h"
#include "ink/style.h"
#include "sheet/gallery.h"
#include "sheet/page.h"

#include <k7/io/io.h>

#include <cstdio>
#include <memory>

namespace {

int Fail(const std::string& problem) {
  std::fprintf(stderr, "k7chart: %s\n", problem.c_str());
  return 1;
}

std::string DrawPage(const Options& options) {
  std::vector<std::unique_ptr<ShapeLayer>> layers;
  std::vector<const ShapeLayer*> drawn;
  for (const LayerRequest& request : options.layers) {
    layers.push_back(std::make_unique<ShapeLayer>(request.kind, request.path));
    if (std::string problem = layers.back()->Load(); !problem.empty()) return problem;
    drawn.push_back(layers.back().get());
  }

  PageFormat format{};
  PageFormatOf(options.output, format);
  Page page(format, options.width, options.height);
  if (!page.IsValid()) return "out of memory";
  SetColor(page.Cairo(), PAPER);
  cairo_paint(page.Cairo());

  std::string problem;
  {
    ProgressLine progress(static_cast<int>(drawn.size()) * (options.gallery ? GALLERY_CHARTS : 1));
    if (options.gallery) {
      problem = DrawGallery(page.Cairo(), options.chart, options.width, options.height, drawn, progress);
    } else {
      const double size = std::max(9.0, std::min(options.width, options.height) / 80.0);
      WorldChart chart(options.chart, drawn, progress);
      problem = chart.Draw(page.Cairo(), {0, 0, options.width * 1.0, options.height * 1.0, size});
    }
  }
  return problem.empty() ? page.Save(options.output) : problem;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (const std::string problem = ParseOptions(argc, argv, options); !problem.empty()) return Fail(problem);
  if (options.help) {
    std::fputs(HelpText(), stdout);
    return 0;
  }
  const std::string problem = DrawPage(options);
  K7IO::Destroy();
  return problem.empty() ? 0 : Fail(problem);
}
