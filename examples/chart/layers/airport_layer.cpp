#include "layers/airport_layer.h"

#include "layers/runway_strips.h"

#include <k7/navdata/airport.h>

#include <cmath>
#include <iterator>

namespace {

// What a chart shows, by nautical miles an ordinary pixel: the shortest of the longest runways, and how far
// apart symbols lie.
struct Shown {
  double toNM;
  int runwayFeet;
  double apart;
};
constexpr Shown SCALES[] = {{0.065, 0, 16},  {0.12, 0, 24},   {0.2, 1500, 28}, {0.35, 2500, 32},
                            {0.6, 3500, 38}, {1.2, 5000, 48}, {3, 7000, 60},   {INFINITY, 8500, 76}};
// Only large-scale charts have room for what few can land on.
constexpr double SEAPLANES_TO_NM = 0.12, OTHERS_TO_NM = 0.065;

// Lettering has more lines the larger the scale.
constexpr double NAMES_TO_NM = 0.12, FIGURES_TO_NM = 0.35, DIRECTIONS_TO_NM = 1.2;
// Shorter runways are shown without their airport's name.
constexpr int NAMED_FEET = 3000;

// By the longest runway's feet, pixels.
constexpr struct {
  int feet;
  double radius;
} RADII[] = {{8000, 5.2}, {5000, 4.6}, {3000, 4}, {0, 3.4}};
// Symbols with something written in them.
constexpr double WRITTEN_RADIUS = 4.8;
// Runways are drawn true to the ground when the longest is longer than a symbol of this many pixels.
constexpr double TRUE_FROM = 15;

// What can land there, and who may.
AirportSymbol SymbolOf(uint32_t flags) {
  if (flags & K7Airport::HELIPORT) return AirportSymbol::Heliport;
  if (flags & K7Airport::SEAPLANE_BASE) return AirportSymbol::Seaplane;
  if (flags & K7Airport::PRIVATE) return AirportSymbol::Private;
  return flags & K7Airport::TOWER ? AirportSymbol::Towered : AirportSymbol::Other;
}

bool IsForAll(AirportSymbol symbol) {
  return symbol == AirportSymbol::Towered || symbol == AirportSymbol::Other;
}

const Shown& ShownAt(double nm) {
  const auto* const row = std::find_if(std::begin(SCALES), std::end(SCALES) - 1,
                                       [&](const Shown& shown) { return nm <= shown.toNM; });
  return *row;
}

double ShownTo(AirportSymbol symbol) {
  return IsForAll(symbol) ? INFINITY : symbol == AirportSymbol::Seaplane ? SEAPLANES_TO_NM : OTHERS_TO_NM;
}

double Radius(const AirportPlace& airport) {
  if (!IsForAll(airport.symbol)) return WRITTEN_RADIUS;
  return std::find_if(std::begin(RADII), std::end(RADII) - 1,
                      [&](const auto& row) { return airport.longestRunway >= row.feet; })
      ->radius;
}

// Pixels about the airport within which its runways lie, before they are known.
double RunwaysReach(const LayerContext& context, const AirportPlace& airport) {
  static const double AROUND = 1.5;  // of the longest
  double north, east;
  if (!context.view.Scale(airport.lat, airport.lon, north, east)) return 0;
  const double longest = airport.longestRunway / (north * FEET_PER_NM);
  return longest < TRUE_FROM * context.scale ? 0 : AROUND * longest;
}

}  // namespace

void AirportLayer::Collect(const LayerContext& context) {
  const auto take = [&](const auto& record, uint32_t flags) {
    AirportPlace airport;
    if (!TakePlace(context, Item(), record, record.name, airport)) return;
    const Shown& shown = ShownAt(airport.nm);
    airport.symbol = SymbolOf(flags);
    airport.longestRunway = record.longestRunway * 100;
    if (airport.nm > ShownTo(airport.symbol) || airport.longestRunway < shown.runwayFeet) return;
    airport.elev = record.elev;
    airport.direction = NAN;
    airport.weight = record.longestRunway + (airport.symbol == AirportSymbol::Towered ? 0.5 : 0);
    airport.apart = shown.apart * context.scale;
    m_places.push_back(std::move(airport));
  };
  // About a piece of a picture: a symbol, or the longest of runways, and what lies too near to it.
  static const double BEYOND = 100, LONGEST_NM = 5;
  const K7ChartRect extent = PlacesIn(context, BEYOND + LONGEST_NM / NMPerOrdinaryPixel(context));
  const double nm = NMPerOrdinaryPixel(context);
  const int feet = ShownAt(nm).runwayFeet;
  VisitRecords<K7Airport>(
      feet > 0 ? m_data->AirportsByRunway(extent, feet) : m_data->AreaQuery(K7NAV_AIRPORT, extent),
      [&](const K7Airport& record) { take(record, record.flags); });
  if (nm <= OTHERS_TO_NM)
    VisitRecords<K7LowUseAirport>(m_data->AreaQuery(K7NAV_LOW_USE_AIRPORT, extent),
                                  [&](const K7LowUseAirport& record) { take(record, K7Airport::PRIVATE); });
  Spacing spacing(FARTHEST_APART * context.scale);
  KeepImportant(context, m_places, spacing, [&](const AirportPlace& airport) {
    return std::max(ReachOf(airport, BoxOf(context, airport)), RunwaysReach(context, airport));
  });
  for (AirportPlace& airport : m_places)
    if (airport.nm <= DIRECTIONS_TO_NM && IsForAll(airport.symbol)) FindRunways(context, airport);
}

void AirportLayer::FindRunways(const LayerContext& context, AirportPlace& airport) const {
  const std::vector<RunwayStrip> runways = RunwaysOf(*m_data, airport.key);
  const auto longest =
      std::max_element(runways.begin(), runways.end(),
                       [](const RunwayStrip& a, const RunwayStrip& b) { return a.length < b.length; });
  double north, east, trueNorth;
  const K7MapView& view = context.view;
  if (longest == runways.end() || !view.Scale(airport.lat, airport.lon, north, east) ||
      !view.TrueNorth(airport.lat, airport.lon, trueNorth))
    return;
  airport.direction = trueNorth + longest->course;
  const double pixelFeet = north * FEET_PER_NM;
  if (longest->length / pixelFeet < TRUE_FROM * context.scale) return;
  for (const RunwayStrip& runway : runways) {
    // Ends beyond the window have their places too, behind a horizon not.
    RunwayLine line{airport.dx, airport.dy, airport.dx, airport.dy, runway.width / pixelFeet};
    view.ToDevice(runway.ends[0].at.Lat(), runway.ends[0].at.Lon(), line.x1, line.y1);
    view.ToDevice(runway.ends[1].at.Lat(), runway.ends[1].at.Lon(), line.x2, line.y2);
    airport.runways.push_back(line);
  }
}

PixelBox AirportLayer::BoxOf(const LayerContext& context, const AirportPlace& airport) const {
  const double edge = 1.5 * context.scale;
  if (airport.runways.empty()) return SymbolBox(context, airport, Radius(airport) + 1.5);
  PixelBox box = BoxAbout(airport.dx, airport.dy, 0);
  for (const RunwayLine& r : airport.runways) {
    box.left = std::min({box.left, r.x1, r.x2});
    box.right = std::max({box.right, r.x1, r.x2});
    box.top = std::min({box.top, r.y1, r.y2});
    box.bottom = std::max({box.bottom, r.y1, r.y2});
  }
  return {box.left - 2 * edge, box.top - 2 * edge, box.right + 2 * edge, box.bottom + 2 * edge};
}

void AirportLayer::DrawSymbol(const AirportPlace& airport, SymbolPen& pen) const {
  pen.Airport(airport.symbol, airport.dx, airport.dy, Radius(airport), airport.direction);
}

void AirportLayer::Draw(const AirportPlace& airport, SymbolPen& pen) const {
  if (airport.runways.empty())
    DrawSymbol(airport, pen);
  else
    pen.Runways(airport.runways, airport.symbol == AirportSymbol::Towered);
}

// As on printed charts: the elevation, and behind it the longest runway in hundreds of feet.
bool AirportLayer::OfferLabel(const LayerContext& context, const AirportPlace& airport, double size,
                              LabelPlan& plan) const {
  const Lettering small = {.size = size * 0.68, .halo = true, .item = LookOf(airport)};
  const Label ident = {
      airport.ident, 0, 0, {.size = size * 0.78, .bold = true, .halo = true, .item = LookOf(airport)}};
  std::vector<Label> lines = {ident};
  if (airport.nm <= NAMES_TO_NM && airport.longestRunway >= NAMED_FEET && !airport.name.empty())
    lines.push_back({airport.name, 0, 0, small});
  std::string figures;
  if (airport.elev >= K7NavFix::LOWEST_ELEV) figures = std::to_string(airport.elev);
  if (airport.longestRunway > 0) figures += "  L " + std::to_string(airport.longestRunway / 100);
  if (airport.nm <= FIGURES_TO_NM && IsForAll(airport.symbol) && !figures.empty())
    lines.push_back({figures, 0, 0, small});
  const PixelBox box = BoxOf(context, airport);
  for (; !lines.empty(); lines.pop_back())
    if (OfferBeside(context, box, lines, plan)) return true;
  return false;
}

std::string AirportLayer::KindOf(const AirportPlace& airport) const {
  static const char* const NAMES[] = {"airport", "airport", "heliport", "seaplane base", "private airport"};
  return NAMES[static_cast<size_t>(airport.symbol)];
}

std::string AirportLayer::LegendText(const AirportPlace& airport) const {
  return KindOf(airport) + (airport.symbol == AirportSymbol::Towered ? " with tower" : "");
}

std::string AirportLayer::Details(const AirportPlace& airport) const {
  std::string text;
  if (airport.elev >= K7NavFix::LOWEST_ELEV) text += ", " + std::to_string(airport.elev) + " ft";
  if (airport.longestRunway > 0) text += ", longest runway " + std::to_string(airport.longestRunway) + " ft";
  return text;
}
