// k7chart gallery: all nine projections.

#include "sheet/gallery.h"

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app_common/verb.h"

namespace {

class Gallery : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddLookOptions(table, m_look);
    AddSheetOptions(table, m_sheet);
  }

  std::string Run() override {
    return DrawSheet(m_layers, ScaleFor(m_request.rangeNM), m_sheet, m_look, GALLERY_CHARTS,
                     [&](cairo_t* cairo, Chart& chart) {
                       return DrawGallery(cairo, m_request, m_sheet.width, m_sheet.height, m_look.theme,
                                          chart);
                     });
  }

 private:
  ChartRequest m_request;
  LookOptions m_look;
  LayerOptions m_layers;
  SheetOptions m_sheet{.smallest = 450, .output = "gallery.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeGallery() { return std::make_unique<Gallery>(); }
