// k7chart draw: one chart.

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/verb.h"
#include "sheet/chart_sheet.h"

#include <algorithm>

namespace {

class Draw : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddProjectionOptions(table, m_request);
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddLookOptions(table, m_look);
    AddSheetOptions(table, m_sheet);
  }

  std::string Run() override {
    // Said before anything is read.
    const K7LatLon& c = m_request.center;
    const std::unique_ptr<K7Projection> projection(
        K7MapView::CreateProjection(m_request.type, c.Lat(), c.Lon(), m_request.rangeNM, nullptr));
    if (!projection) return "out of memory";
    if (std::string problem = SetParams(*projection, m_request.params); !problem.empty()) return problem;

    const double size = std::max(9.0, std::min(m_sheet.width, m_sheet.height) / 80.0);
    return DrawSheet(m_layers, Scale(), m_sheet, m_look, 1, [&](cairo_t* cairo, Chart& chart) {
      const ChartBox box = {0, 0, m_sheet.width * 1.0, m_sheet.height * 1.0, size};
      return DrawChart(cairo, box, m_request, m_look.theme, chart);
    });
  }

 private:
  const DataScale& Scale() const {
    // An eye that was placed by hand may be near the ground.
    static const double NEAR_NM = 1000;
    const bool placedEye = m_request.type == K7_PROJ_PERSPECTIVE && !m_request.params.empty();
    return ScaleFor(placedEye ? NEAR_NM : m_request.rangeNM);
  }

  ChartRequest m_request;
  LookOptions m_look;
  LayerOptions m_layers;
  SheetOptions m_sheet{.output = "chart.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeDraw() { return std::make_unique<Draw>(); }
