// k7chart airport: the diagram of an airport.

#include "app/chart_options.h"
#include "app/nav_source.h"
#include "app/progress_line.h"
#include "app/sheet_options.h"
#include "app_common/shared_data.h"
#include "app_common/verb.h"
#include "ink/pen.h"
#include "layers/aerodrome_layer.h"
#include "layers/graticule_layer.h"
#include "layers/nav_places.h"
#include "layers/runway_layer.h"
#include "sheet/airport_sheet.h"
#include "sheet/page.h"

#include <k7/navdata/airport.h>
#include <k7/navdata/comm.h>
#include "store/text_1252.h"

#include <cstring>
#include <filesystem>

namespace {

struct DiagramOptions {
  std::string ident;
  std::string aerodrome;  // folder, "none", or empty: the sample's
  std::string nav;
};

constexpr OptionRow<DiagramOptions> DIAGRAM_OPTIONS[] = {
    {"--aerodrome", "FOLDER",
     "aerodrome mapping sets, as ksea_runway.shp or taxiway.shp, whose records are the airport's by their "
     "IDARPT (default: those of the sample, which have KSEA); none draws the runways of the navigation data "
     "alone, as where there are no sets of the airport",
     [](const char* text, DiagramOptions& options) {
       options.aerodrome = text;
       return std::string();
     }},
};

// What a record says of an airport, whoever may use it.
template <class Record>
void TakeFacts(const Record& record, AirportFacts& facts) {
  facts.ident = Utf8Of1252({record.ident, strnlen(record.ident, sizeof record.ident)});
  if (const char* const name = record.name) facts.name = Utf8Of1252(name);
  facts.place = {K7NavData::FixPt2DecDeg(record.lat), K7NavData::FixPt2DecDeg(record.lon)};
  if (record.elev >= K7NavFix::LOWEST_ELEV) facts.elev = record.elev;
  if (record.magVar < K7NavFix::TRUE_NORTH) facts.variation = record.magVar / 10.0;
}

class AirportVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(DIAGRAM_OPTIONS, m_options);
    AddNavOption(table, m_options.nav);
    AddLookOptions(table, m_look);
    AddSheetOptions(table, m_sheet);
  }

  std::string TakeArgument(const std::string& argument) override {
    if (argument.empty()) return "an identifier has letters";
    if (!m_options.ident.empty()) return "a diagram shows one airport, not " + Quoted(argument) + " as well";
    m_options.ident = argument;
    return {};
  }

  std::string Run() override {
    if (m_options.ident.empty()) return "a diagram needs an airport, as KSEA";
    NavStore store;
    if (std::string problem = WhyNoStore(m_options.nav, store); !problem.empty()) return problem;
    AirportFacts facts;
    K7NavKey key;
    bool isWater = false;
    if (std::string problem = Find(store, facts, key, isWater); !problem.empty()) return problem;
    AerodromeLayer aerodrome;
    if (std::string problem = LoadSets(facts.ident, aerodrome); !problem.empty()) return problem;
    std::vector<RunwayStrip> strips = RunwaysOf(store, key);
    if (aerodrome.IsEmpty() && strips.empty())
      return "nothing is known of " + facts.ident + " but its place: no runways, no aerodrome sets";
    aerodrome.Complete(strips);
    TakeFrequencies(store, key, facts);
    facts.source =
        aerodrome.IsEmpty() ? "runways of the navigation data alone" : "aerodrome sets and navigation data";
    const K7ChartRect extent = ExtentOf(facts, aerodrome, strips);
    const auto areas = aerodrome.Has(K7_SHAPE_RUNWAY) ? RunwayLayer::Areas::None
                       : isWater                      ? RunwayLayer::Areas::Water
                                                      : RunwayLayer::Areas::Paved;
    RunwayLayer runways(std::move(strips), areas);
    return Draw(facts, extent, aerodrome, runways);
  }

 private:
  std::string Find(NavStore& store, AirportFacts& facts, K7NavKey& key, bool& isWater) const {
    const char* const ident = m_options.ident.c_str();
    VisitRecords<K7LowUseAirport>(store.IdentQuery(K7NAV_LOW_USE_AIRPORT, ident),
                                  [&](const K7LowUseAirport& record) {
                                    TakeFacts(record, facts);
                                    key = record.key;
                                  });
    VisitRecords<K7Airport>(store.IdentQuery(K7NAV_AIRPORT, ident), [&](const K7Airport& record) {
      TakeFacts(record, facts);
      key = record.key;
      isWater = (record.flags & K7Airport::SEAPLANE_BASE) != 0;
    });
    if (!facts.ident.empty()) return {};
    std::string similar;
    VisitRecords<K7Airport>(store.SimilarIdentQuery(K7NAV_AIRPORT, ident, 3), [&](const K7Airport& record) {
      similar += (similar.empty() ? "; spelled like it are " : ", ") + std::string(record.ident);
    });
    return "there is no airport " + Quoted(m_options.ident) + similar;
  }

  std::string LoadSets(const std::string& ident, AerodromeLayer& aerodrome) const {
    if (m_options.aerodrome == "none") return {};
    if (!m_options.aerodrome.empty()) return aerodrome.Load(m_options.aerodrome, ident);
    const std::string sample = SharedData("sample") + "/aerodrome";
    std::error_code error;
    return std::filesystem::is_directory(sample, error) ? aerodrome.Load(sample, ident) : std::string();
  }

  static void TakeFrequencies(NavStore& store, const K7NavKey& key, AirportFacts& facts) {
    static constexpr int16_t WANTED[] = {K7AirportComm::ATIS,      K7AirportComm::AWOS,
                                         K7AirportComm::CLEARANCE, K7AirportComm::GROUND,
                                         K7AirportComm::TOWER,     K7AirportComm::UNICOM};
    for (const int16_t type : WANTED)
      VisitRecords<K7AirportComm>(store.AirportComms(key), [&](const K7AirportComm& comm) {
        K7String text;
        if (comm.commType != type ||
            K7EnrouteComm::FormatCommFrequency(comm.freq, comm.commInfo, 0, text, false) != 0)
          return;
        facts.frequencies.push_back(std::string(K7AirportComm::TypeString(type)) + " " + std::string(text));
      });
  }

  // Sets may reach farther than any airport does.
  static K7ChartRect ExtentOf(const AirportFacts& facts, const AerodromeLayer& aerodrome,
                              const std::vector<RunwayStrip>& strips) {
    static const double FARTHEST_NM = 10;
    K7ChartRect extent;
    const auto include = [&](const K7LatLon& at) {
      if (facts.place.Distance(at) <= FARTHEST_NM) extent.Include(at.Lat(), at.Lon());
    };
    include(facts.place);
    for (const RunwayStrip& strip : strips)
      for (const RunwayEnd& end : strip.ends) include(end.at);
    const K7ChartRect bounds = aerodrome.Bounds();
    if (bounds.IsEmpty()) return extent;
    include({bounds.North(), bounds.West()});
    include({bounds.South(), bounds.East()});
    return extent;
  }

  std::string Draw(const AirportFacts& facts, const K7ChartRect& extent, AerodromeLayer& aerodrome,
                   RunwayLayer& runways) const {
    PageFormat format{};
    PageFormatOf(m_sheet.output, format);
    Page page(format, m_sheet.width, m_sheet.height);
    if (!page.IsValid()) return "out of memory";
    SetColor(page.Cairo(), m_look.theme[ThemeItem::Paper].fill);
    cairo_paint(page.Cairo());
    GraticuleLayer graticule;
    std::vector<Layer*> layers = {&aerodrome, &runways};
    if (m_look.graticule) layers.insert(layers.begin(), &graticule);
    ProgressLine progress;
    progress.Expect(2 * static_cast<int>(layers.size()) + 1);
    Chart chart(layers, m_look.theme, progress);
    chart.UseLegend(m_look.legend);
    const ChartBox box = AirportBox(m_sheet.width, m_sheet.height);
    // Keeps angles everywhere on the globe, poles included.
    ChartRequest request{.type = K7_PROJ_STEREOGRAPHIC, .params = {}};
    FitRequest(extent, box, request);
    std::string problem = DrawAirportSheet(page.Cairo(), box, facts, request, m_look.theme, chart);
    return problem.empty() ? page.Save(m_sheet.output, progress) : problem;
  }

  DiagramOptions m_options;
  LookOptions m_look;
  SheetOptions m_sheet{.width = 1200, .height = 1500, .output = "airport.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeAirport() { return std::make_unique<AirportVerb>(); }
