// k7chart pick: what lies under pixels of a chart.

#include "app/arrange_layers.h"
#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/progress_line.h"
#include "app_common/position_text.h"
#include "app_common/verb.h"
#include "sheet/page.h"

#include <algorithm>
#include <cstdio>

namespace {

struct Pixel {
  double x, y;
};

class Pick : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddProjectionOptions(table, m_request);
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddSizeOptions(table, m_sheet);
  }

  std::string TakeArgument(const std::string& argument) override {
    const size_t comma = argument.find(',');
    Pixel pixel{};
    if (comma == std::string::npos || !ReadNumber(argument.substr(0, comma).c_str(), pixel.x) ||
        !ReadNumber(argument.c_str() + comma + 1, pixel.y))
      return "a pixel is X,Y from the top left corner of the picture, not " + Quoted(argument);
    m_pixels.push_back(pixel);
    return {};
  }

  std::string Run() override {
    if (m_pixels.empty()) return "pick needs at least one pixel, as 812,440";
    ProgressLine progress;
    LayerStack stack;
    if (std::string problem = stack.Load(m_layers, DataScaleOf(m_request), true, progress); !problem.empty())
      return problem;
    const ChartBox box = WholeSheet(m_sheet);
    const ChartWindow window = WindowOf(box);
    const Theme theme;
    Chart chart(stack.Layers(), theme, progress);
    if (std::string problem = ArrangeLayers(m_layers, chart.Layers()); !problem.empty()) return problem;
    if (std::string problem = chart.Show(m_request, window.width, window.height, LineScale(box));
        !problem.empty())
      return problem;
    // As they would stand in the picture: what has no room is not there to be picked.
    const Page measure(PageFormat::PNG, 1, 1);
    PlanLabels(measure.Cairo(), box, chart);
    for (const Pixel& pixel : m_pixels) Print(chart, window, pixel);
    return {};
  }

 private:
  // Projections have positions beyond what is drawn of them, as about a Lambert chart's far pole.
  static bool IsDrawn(const K7MapView& view, double dx, double dy, double& lat, double& lon) {
    static const double INSIDE = 1e-4;  // the frame itself is not lost to rounding
    const double x = std::clamp(dx, INSIDE, view.Width() - INSIDE);
    const double y = std::clamp(dy, INSIDE, view.Height() - INSIDE);
    double againX, againY;
    return view.FromDevice(x, y, lat, lon) && view.ToDevice(lat, lon, againX, againY) &&
           view.FromDevice(dx, dy, lat, lon);
  }

  void Print(Chart& chart, const ChartWindow& window, const Pixel& pixel) const {
    const double dx = pixel.x - window.x, dy = pixel.y - window.y;
    std::printf("%g,%g  ", pixel.x, pixel.y);
    double lat, lon;
    if (pixel.x < 0 || pixel.y < 0 || pixel.x > m_sheet.width || pixel.y > m_sheet.height) {
      std::puts("outside the picture");
    } else if (dx < 0 || dy < 0 || dx > window.width || dy > window.height) {
      std::puts("outside the chart's frame");
    } else if (!IsDrawn(*chart.View(), dx, dy, lat, lon)) {
      std::puts("off the map");
    } else {
      std::puts(PositionText({lat, lon}).c_str());
      for (const std::string& found : chart.Pick(dx, dy)) std::printf("    %s\n", found.c_str());
    }
  }

  ChartRequest m_request;
  LayerOptions m_layers;
  SheetOptions m_sheet;
  std::vector<Pixel> m_pixels;
};

}  // namespace

std::unique_ptr<Verb> MakePick() { return std::make_unique<Pick>(); }
