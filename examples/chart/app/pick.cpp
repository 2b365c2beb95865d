// k7chart pick: what lies under pixels of a chart.

#include "app/arrange_layers.h"
#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/progress_line.h"
#include "app_common/verb.h"
#include "sheet/elevations.h"
#include "sheet/page.h"
#include "sheet/pixel_answer.h"

#include <k7/io/xml_elem.h>

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
    for (const Pixel& pixel : m_pixels) answers.push_back(Ask(chart, window, pixel, &terrain));
    return m_answer.asXML ? PrintXML(answers) : Print(answers);
  }

 private:
  PixelAnswer Ask(Chart& chart, const ChartWindow& window, const Pixel& pixel, K7Terrain* terrain) const {
    const double dx = pixel.x - window.x, dy = pixel.y - window.y;
    PixelAnswer answer;
    if (pixel.x < 0 || pixel.y < 0 || pixel.x > m_sheet.width || pixel.y > m_sheet.height)
      answer.nothing = "outside the picture";
    else if (dx < 0 || dy < 0 || dx > window.width || dy > window.height)
      answer.nothing = "outside the chart's frame";
    else
      answer = AskPixel(chart, dx, dy, terrain);
    answer.x = pixel.x;
    answer.y = pixel.y;
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
