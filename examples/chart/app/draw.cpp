// k7chart draw: one chart.

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app_common/save_file.h"
#include "app_common/verb.h"
#include "sheet/georeference.h"
#include "sheet/page.h"

#include <filesystem>

namespace {

struct PlaceFiles {
  bool wanted = false;
};

constexpr OptionRow<PlaceFiles> PLACE_FILES[] = {
    {"--georeference", nullptr,
     "writes beside a PNG where it lies, for geographic programs: a world file (.pgw), the map's system "
     "(.prj) and "
     "both for GDAL (.png.aux.xml)",
     [](const char*, PlaceFiles& files) {
       files.wanted = true;
       return std::string();
     }},
};

std::string SaveText(const std::filesystem::path& path, const std::string& text) {
  const std::string problem = SaveFile(path.string(), {text.begin(), text.end()});
  return problem.empty() ? problem : "cannot write " + Quoted(path.string()) + ": " + problem;
}

std::string SavePlace(const std::string& output, const Georeference& place) {
  std::filesystem::path path = output;
  if (std::string problem = SaveText(output + ".aux.xml", SidecarOf(place)); !problem.empty()) return problem;
  if (std::string problem = SaveText(path.replace_extension(".pgw"), WorldFileOf(place)); !problem.empty())
    return problem;
  return SaveText(path.replace_extension(".prj"), place.system + "\n");
}

class Draw : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddProjectionOptions(table, m_request);
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddLookOptions(table, m_look);
    AddSheetOptions(table, m_sheet);
    table.Add(PLACE_FILES, m_place);
  }

  std::string Run() override {
    // Said before anything is read.
    const K7LatLon& c = m_request.center;
    const std::unique_ptr<K7Projection> projection(
        K7MapView::CreateProjection(m_request.type, c.Lat(), c.Lon(), m_request.rangeNM, nullptr));
    if (!projection) return "out of memory";
    if (std::string problem = SetParams(*projection, m_request.params); !problem.empty()) return problem;

    if (std::string problem = WhyNoPlace(); !problem.empty()) return problem;
    std::optional<Georeference> place;
    std::string problem =
        DrawSheet(m_layers, DataScaleOf(m_request), m_sheet, m_look, 1, [&](cairo_t* cairo, Chart& chart) {
          const ChartBox box = WholeSheet(m_sheet);
          std::string failed = DrawChart(cairo, box, m_request, m_look.theme, chart);
          const ChartWindow window = WindowOf(box);
          if (failed.empty() && m_place.wanted) place = GeoreferenceOf(*chart.View(), window.x, window.y);
          return failed;
        });
    if (!problem.empty() || !m_place.wanted) return problem;
    return place ? SavePlace(m_sheet.output, *place)
                 : "the chart was drawn, but its map has no system that geographic programs know: no world "
                   "file";
  }

 private:
  std::string WhyNoPlace() const {
    PageFormat format{};
    PageFormatOf(m_sheet.output, format);
    if (!m_place.wanted) return {};
    if (m_request.type == K7_PROJ_PERSPECTIVE)
      return "--georeference: the general perspective has no system that geographic programs know";
    if (format != PageFormat::PNG || IsDevice(m_sheet.output))
      return "--georeference is for PNG files: the program writes no position into SVG and PDF";
    return {};
  }

  ChartRequest m_request;
  LookOptions m_look;
  LayerOptions m_layers;
  SheetOptions m_sheet{.output = "chart.png"};
  PlaceFiles m_place;
};

}  // namespace

std::unique_ptr<Verb> MakeDraw() { return std::make_unique<Draw>(); }
