// k7chart draw: one chart.

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app_common/verb.h"

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

    return DrawSheet(m_layers, DataScaleOf(m_request), m_sheet, m_look, 1, [&](cairo_t* cairo, Chart& chart) {
      return DrawChart(cairo, WholeSheet(m_sheet), m_request, m_look.theme, chart);
    });
  }

 private:
  ChartRequest m_request;
  LookOptions m_look;
  LayerOptions m_layers;
  SheetOptions m_sheet{.output = "chart.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeDraw() { return std::make_unique<Draw>(); }
