// k7chart draw: one chart.

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/verb.h"
#include "sheet/projection_params.h"

#include <algorithm>

namespace {

class Draw : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddProjectionOptions(table, m_request);
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddSheetOptions(table, m_sheet);
  }

  std::string Run() override {
    // Said before anything is read.
    const std::unique_ptr<K7Projection> projection =
        MakeProjection(m_request.type, m_request.centre.lat, m_request.centre.lon, m_request.rangeNM);
    if (!projection) return "out of memory";
    if (std::string problem = SetParams(*projection, m_request.params); !problem.empty()) return problem;

    const double size = std::max(9.0, std::min(m_sheet.width, m_sheet.height) / 80.0);
    return DrawSheet(m_layers, Scale(), m_sheet, 1,
                     [&](cairo_t* cairo, const LayerList& layers, Progress& progress) {
                       WorldChart chart(m_request, layers, progress);
                       return chart.Draw(cairo, {0, 0, m_sheet.width * 1.0, m_sheet.height * 1.0, size});
                     });
  }

 private:
  DataScale Scale() const {
    // An eye that was placed by hand may be near the ground.
    const bool placedEye = m_request.type == K7_PROJ_PERSPECTIVE && !m_request.params.empty();
    const bool world = m_request.rangeNM == 0 && !placedEye;
    return world || m_request.rangeNM > COARSE_FROM_NM ? DataScale::Coarse : DataScale::Fine;
  }

  ChartRequest m_request;
  LayerOptions m_layers;
  SheetOptions m_sheet{.output = "chart.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeDraw() { return std::make_unique<Draw>(); }
