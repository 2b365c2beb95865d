// k7chart gallery: all nine projections.

#include "sheet/gallery.h"

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/verb.h"

namespace {

class Gallery : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddSheetOptions(table, m_sheet);
  }

  std::string Run() override {
    const bool coarse = m_request.rangeNM == 0 || m_request.rangeNM > COARSE_FROM_NM;
    return DrawSheet(m_layers, coarse ? DataScale::Coarse : DataScale::Fine, m_sheet, GALLERY_CHARTS,
                     [&](cairo_t* cairo, const LayerList& layers, Progress& progress) {
                       return DrawGallery(cairo, m_request, m_sheet.width, m_sheet.height, layers, progress);
                     });
  }

 private:
  ChartRequest m_request;
  LayerOptions m_layers;
  SheetOptions m_sheet{.output = "gallery.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeGallery() { return std::make_unique<Gallery>(); }
