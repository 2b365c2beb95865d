// k7chart route: a way over the airways, as a table and on a chart about it.

#include "app/chart_options.h"
#include "app/drawing.h"
#include "app/level_text.h"
#include "app/trip_options.h"
#include "app/trip_sources.h"
#include "app_common/verb.h"
#include "layers/route_frame.h"
#include "layers/route_layer.h"
#include "route/airway_graph.h"
#include "sheet/page.h"
#include "sheet/trip_sheet.h"
#include "sheet/way_ground.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr double MOST_DIRECT_NM = 1000;

std::string SetDirect(const char* text, RouteRequest& request) {
  if (ReadNumber(text, request.directNM) && request.directNM >= 0 && request.directNM <= MOST_DIRECT_NM)
    return {};
  return "a direct leg is 0 to 1000 nautical miles long, not " + Quoted(text);
}

std::string SetLevel(const char* text, RouteRequest& request) {
  int feet = 0;
  if (std::string problem = ReadLevel(text, feet); !problem.empty()) return problem;
  request.feet = feet;
  return {};
}

constexpr OptionRow<RouteRequest> ROUTE_OPTIONS[] = {
    {"--direct", "NM",
     "nautical miles that the direct leg to the airways may have, and that from them, 0 to 1000 (default 25)",
     SetDirect},
    {"--level", "LEVEL",
     "a cruise level, as FL350 or 12000 feet: only airways that are flown at it are taken, by the minimum "
     "and "
     "maximum altitudes that the data have for each direction; where they have none, low airways end and "
     "high "
     "ones begin at FL180. Without it any airway is",
     SetLevel},
};

struct DimOption {
  double percent = 0;
};
constexpr OptionRow<DimOption> DIM_OPTIONS[] = {
    {"--dim", "PERCENT", "how much of what lies off the route is taken away, 0 (default) to 100",
     [](const char* text, DimOption& dim) {
       const bool isRead = ReadNumber(text, dim.percent) && dim.percent >= 0 && dim.percent <= 100;
       return isRead ? std::string() : "the chart is dimmed by 0 to 100 percent, not " + Quoted(text);
     }},
};

struct TableOption {
  bool only = false;
};
constexpr OptionRow<TableOption> TABLE_OPTIONS[] = {
    {"--table", nullptr, "prints the table and draws no chart",
     [](const char*, TableOption& table) {
       table.only = true;
       return std::string();
     }},
};

class RouteVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(ROUTE_OPTIONS, m_route);
    table.Add(DIM_OPTIONS, m_dim);
    table.Add(TABLE_OPTIONS, m_table);
    AddTripOptions(table, m_trip);
    AddProjectionOptions(table, m_request);
    AddLayerOptions(table, m_layers);
    AddDataOptions(table, m_layers);
    AddLookOptions(table, m_look);
    AddSheetOptions(table, m_sheet);
  }

  std::string TakeArgument(const std::string& argument) override {
    if (argument.empty()) return "an identifier or a position has letters or figures";
    std::string& end = m_route.from.empty() ? m_route.from : m_route.to;
    if (!end.empty()) return Verb::TakeArgument(argument);
    end = argument;
    return {};
  }

  std::string Run() override {
    if (m_route.to.empty())
      return "a route needs two ends, identifiers or positions, as KSEA \"48.7 -121.8\"";
    if (std::string problem = WhyNoSheet(); !problem.empty()) return problem;
    Route route;
    if (std::string problem = Find(route); !problem.empty()) return problem;
    std::fputs(RouteTable(route).c_str(), stdout);
    if (m_table.only) return {};
    return IsTrip() ? DrawTrip(route) : Draw(route);
  }

 private:
  // What pilots print has pages.
  bool IsTrip() const {
    PageFormat format{};
    return !m_trip.oneChart && PageFormatOf(m_sheet.output, format) && format == PageFormat::PDF;
  }

  std::string WhyNoSheet() const {
    if (m_table.only) return {};
    if (!IsTrip())
      return m_trip.given ? std::string(m_trip.given) + " is for trip sheets: '--output FILE.pdf' writes one"
                          : std::string();
    // Strips are cut by their scale, which others do not have all over them.
    if ((m_request.type != K7_PROJ_LAMBERT && m_request.type != K7_PROJ_STEREOGRAPHIC) ||
        !m_request.params.empty())
      return "the strips of a trip sheet are lambert or stereographic, without --param; --one-chart draws "
             "any";
    return {};
  }

  std::string Find(Route& route) {
    NavStore store;
    if (std::string problem = WhyNoStore(m_layers.nav, store); !problem.empty()) return problem;
    if (std::string problem = WhyNoMagneticModel(m_layers.magnetic); !problem.empty()) return problem;
    AirwayGraph graph;
    if (!graph.Read(store)) return "cannot read the airways of " + Quoted(m_layers.nav);
    m_sources = SourcesOf(store);
    return FindRoute(store, graph, m_route, route);
  }

  std::string Draw(const Route& route) {
    const ChartBox box = WholeSheet(m_sheet);
    const ChartWindow window = WindowOf(box);
    FrameRoute(route, window.width, window.height, m_request);
    K7String miles;
    miles.Format("   %.0f NM", route.distance);
    m_request.title = EndsText(route) + std::string(miles);
    RouteLayer layer(route);
    return DrawSheet(
        m_layers, DataScaleOf(m_request), m_sheet, m_look, 1,
        [&](cairo_t* cairo, Chart& chart) {
          chart.SetOffRouteAlpha(static_cast<unsigned char>(std::lround(255 * (1 - m_dim.percent / 100))));
          return DrawChart(cairo, box, m_request, m_look.theme, chart);
        },
        &layer);
  }

  std::string TakeTerrain(Trip& trip) const {
    const std::string folder = TerrainFolder(m_layers);
    if (folder.empty()) return {};
    Elevations terrain;
    std::string problem = terrain.Open(folder);
    if (problem.empty()) problem = MeasureGround(terrain, 0, trip.profile);
    if (problem.empty())
      trip.sources.push_back("Terrain: posts " + std::string(K7FmtString("%.9g", terrain.PostSpacing(0))) +
                             " arc-seconds apart at the finest; what rises between them is not known.");
    return problem;
  }

  std::string DrawTrip(const Route& route) {
    Trip trip{route, m_trip.knots, ProfileOf(route, m_route.feet), m_sources};
    if (std::string problem = TakeTerrain(trip); !problem.empty()) return problem;
    const double scale = m_trip.scale > 0 ? m_trip.scale : UsualScale(route, *m_trip.paper, m_trip.trackUp);
    const StripFrame frame = FrameOnPaper(*m_trip.paper, scale, m_trip.trackUp);
    const std::vector<RouteStrip> strips = CutStrips(route, frame);
    if (strips.empty())
      return "the route takes more than " + std::to_string(MOST_STRIPS) + " strips at that scale";
    m_sheet.width = m_trip.paper->width;
    m_sheet.height = m_trip.paper->height;
    m_request.rangeNM = frame.width;
    const StripPages pages{route, strips, frame, scale, m_request};
    RouteLayer layer(route);
    return DrawSheet(
        m_layers, DataScaleOf(m_request), m_sheet, m_look, static_cast<int>(strips.size()),
        [&](cairo_t* cairo, Chart& chart) {
          return DrawTripSheet(cairo, *m_trip.paper, m_look.theme, trip, pages, chart);
        },
        &layer);
  }

  RouteRequest m_route;
  DimOption m_dim;
  TableOption m_table;
  TripOptions m_trip;
  std::vector<std::string> m_sources;
  ChartRequest m_request;
  LookOptions m_look;
  LayerOptions m_layers;
  SheetOptions m_sheet{.output = "route.png"};
};

}  // namespace

std::unique_ptr<Verb> MakeRoute() { return std::make_unique<RouteVerb>(); }
