// k7chart pick: what lies under pixels of a chart.

#include "app/arrange_layers.h"
#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/elevations.h"
#include "app/pixel_answer.h"
#include "app/progress_line.h"
#include "app_common/verb.h"
#include "sheet/page.h"

#include <k7/geodesy/magvar.h>
#include <k7/io/xml_elem.h>

#include <algorithm>
#include <cstdio>

namespace {

struct Pixel {
  double x, y;
};

struct AnswerOptions {
  bool asXML = false;
  K7XmlOutputType_t type = K7XML_DISPLAY;
};

constexpr OptionRow<AnswerOptions> ANSWER_OPTIONS[] = {
    {"--xml", nullptr, "answers one XML document in windows-1252, with what there is to read of each record",
     [](const char*, AnswerOptions& options) {
       options.asXML = true;
       return std::string();
     }},
    {"--full", nullptr, "with --xml: keys and all details of the records",
     [](const char*, AnswerOptions& options) {
       options.type = K7XML_FULL;
       return std::string();
     }},
};

class Pick : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddProjectionOptions(table, m_request);
    AddPlaceOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddSizeOptions(table, m_sheet);
    table.Add(ANSWER_OPTIONS, m_answer);
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
    if (m_answer.type == K7XML_FULL && !m_answer.asXML) return "--full needs --xml";
    if (std::string problem = WhyNoMagneticModel(m_layers.magnetic); !problem.empty()) return problem;
    Elevations terrain;
    if (const std::string folder = TerrainFolder(m_layers); !folder.empty())
      if (std::string problem = terrain.Open(folder); !problem.empty()) return problem;
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
    std::vector<PixelAnswer> answers;
    for (const Pixel& pixel : m_pixels) answers.push_back(Ask(chart, window, pixel, terrain));
    return m_answer.asXML ? PrintXML(answers) : Print(answers);
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

  PixelAnswer Ask(Chart& chart, const ChartWindow& window, const Pixel& pixel, Elevations& terrain) const {
    const double dx = pixel.x - window.x, dy = pixel.y - window.y;
    PixelAnswer answer = {.x = pixel.x, .y = pixel.y};
    double lat, lon;
    if (pixel.x < 0 || pixel.y < 0 || pixel.x > m_sheet.width || pixel.y > m_sheet.height) {
      answer.nothing = "outside the picture";
    } else if (dx < 0 || dy < 0 || dx > window.width || dy > window.height) {
      answer.nothing = "outside the chart's frame";
    } else if (!IsDrawn(*chart.View(), dx, dy, lat, lon)) {
      answer.nothing = "off the map";
    } else {
      answer.place = {lat, lon};
      answer.feet = terrain.Find(lat, lon, 0).feet;
      answer.variation = K7MagVar::GetMagVar()->Position(lat, lon, 0, 0, 0);
      answer.found = chart.Pick(dx, dy);
    }
    return answer;
  }

  static std::string Print(const std::vector<PixelAnswer>& answers) {
    for (const PixelAnswer& answer : answers) std::fputs(TextOf(answer).c_str(), stdout);
    return {};
  }

  std::string PrintXML(const std::vector<PixelAnswer>& answers) const {
    static const char* const AS_DECLARED = R"(version="1.0" encoding="windows-1252")";
    const K7XmlElem declaration("xml", nullptr, AS_DECLARED, K7XmlElem::DECLARATION);
    K7XmlElem root("Pick");
    for (const PixelAnswer& answer : answers) AddXML(answer, m_answer.type, root);
    K7String text;
    if (declaration.Write(text) != 0 || root.Write(text) != 0) return "out of memory";
    std::fputs(text, stdout);
    return {};
  }

  ChartRequest m_request;
  LayerOptions m_layers;
  SheetOptions m_sheet;
  AnswerOptions m_answer;
  std::vector<Pixel> m_pixels;
};

}  // namespace

std::unique_ptr<Verb> MakePick() { return std::make_unique<Pick>(); }
