#include "layers/navaid_layer.h"

#include <k7/navdata/morse_code.h>
#include <k7/navdata/navaid.h>

#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

constexpr double RADIAN = std::numbers::pi / 180;

// Boxes with frequency and Morse code give way to the identifier at small scales.
struct Kind {
  const char* name;
  double weight;
  double toNM, boxToNM;  // where it shows, and its box: nautical miles an ordinary pixel
};

// By NavaidSymbol. Their range decides among equals.
constexpr Kind KINDS[] = {{"VOR", 5000, INFINITY, 0.45},    {"VOR-DME", 5000, INFINITY, 0.45},
                          {"VORTAC", 5000, INFINITY, 0.45}, {"TACAN", 3000, INFINITY, 0.3},
                          {"DME", 2000, 0.3, 0.2},          {"NDB", 1000, 0.4, 0.15}};
constexpr double NAMES_TO_NM = 0.15;

const Kind& RowOf(NavaidSymbol symbol) { return KINDS[static_cast<size_t>(symbol)]; }

// Pixels between navaids: more as they crowd.
double Apart(double nm) { return 14 + 45 * std::min(nm, 1.0); }

// A rose is so large on the ground, as far as it is legible and covers no neighbour.
constexpr double ROSE_NM = 10, SMALLEST_ROSE = 42, LARGEST_ROSE = 90;

// Pixels about a piece of a picture: a rose, the next one that it meets and what lies too near to that.
constexpr double BEYOND = 400;

bool MayHaveRose(const LayerContext& context, const NavaidPlace& navaid) {
  return !std::isnan(navaid.declination) &&
         context.theme[ThemeItem::CompassRoses].ShowsAt(navaid.nm / context.scale);
}

// What a distance part of an instrument landing system adds belongs to its runway.
bool IsEnroute(uint32_t flags) {
  return (flags & K7VHFNavaid::ILS) == 0 &&
         (flags & (K7VHFNavaid::VOR | K7VHFNavaid::DME | K7VHFNavaid::TACAN));
}

NavaidSymbol SymbolOf(uint32_t flags) {
  if (flags & K7VHFNavaid::VOR)
    return flags & K7VHFNavaid::TACAN ? NavaidSymbol::VORTAC
           : flags & K7VHFNavaid::DME ? NavaidSymbol::VORDME
                                      : NavaidSymbol::VOR;
  return flags & K7VHFNavaid::TACAN ? NavaidSymbol::TACAN : NavaidSymbol::DME;
}

// Degrees; those of a station that is set to true north are 0.
double DeclinationOf(const K7VHFNavaid& record) {
  if (record.declination == K7NavFix::TRUE_NORTH) return 0;
  return std::abs(record.declination) <= 1800 ? record.declination / 10.0 : NAN;
}

// With as many decimals as it has, and at least so many.
std::string Number(double value, size_t decimals) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  std::string number = text;
  const size_t least = number.size() - 2 + decimals;
  while (number.size() > least && number.back() == '0') number.pop_back();
  if (number.back() == '.') number.pop_back();
  return number;
}

// "116.8  " of "116.8 MHz": charts write no units.
std::string Figures(const std::string& freq) {
  return freq.empty() ? freq : freq.substr(0, freq.find(' ')) + "  ";
}

// Dots and dashes as they stand in a line of text, so far apart that dashes do not run together.
std::string Morse(const std::string& ident) {
  static const char HAIR_SPACE[] = "\u200A";
  K7String code;
  if (K7MorseCode::GetMorseCode(ident.c_str(), code) != 0) return {};
  std::string text;
  int blanks = 0;
  for (int i = 0; i < code.Len(); ++i) {
    const char c = code[i];
    blanks = c == ' ' ? blanks + 1 : 0;
    if (c == ' ')
      text += blanks == 1 ? HAIR_SPACE : " ";
    else
      text += c == static_cast<char>(K7MorseCode::MC_DOT) ? "•" : "–";
  }
  return text;
}

}  // namespace

void NavaidLayer::Collect(const LayerContext& context) {
  const auto take = [&](NavaidPlace navaid, const auto& record) {
    const Kind& kind = RowOf(navaid.symbol);
    if (!TakePlace(context, Item(), record, record.name, navaid) || navaid.nm > kind.toNM) return;
    navaid.apart = Apart(navaid.nm) * context.scale;
    navaid.weight = kind.weight + std::min<double>(record.range, 999);
    m_places.push_back(std::move(navaid));
  };
  const K7ChartRect extent = PlacesIn(context, BEYOND);
  VisitRecords<K7VHFNavaid>(m_data->AreaQuery(K7NAV_VOR, extent), [&](const K7VHFNavaid& record) {
    if (!IsEnroute(record.flags)) return;
    NavaidPlace navaid;
    navaid.symbol = SymbolOf(record.flags);
    if (record.freq > 0) navaid.freq = Number(record.freq / 100.0, 1) + " MHz";
    navaid.declination = record.flags & K7VHFNavaid::VOR ? DeclinationOf(record) : NAN;
    take(std::move(navaid), record);
  });
  for (const K7NavType type : {K7NAV_ENROUTE_NDB, K7NAV_TERMINAL_NDB})
    VisitRecords<K7NDB>(m_data->AreaQuery(type, extent), [&](const K7NDB& record) {
      NavaidPlace navaid;
      navaid.symbol = NavaidSymbol::NDB;
      if (record.freq > 0) navaid.freq = Number(record.freq / 10.0, 0) + " kHz";
      navaid.declination = NAN;
      take(std::move(navaid), record);
    });
  Spacing spacing(FARTHEST_APART * context.scale);
  KeepImportant(context, m_places, spacing, [&](const NavaidPlace& navaid) {
    const double symbol = ReachOf(navaid, BoxOf(context, navaid));
    return MayHaveRose(context, navaid) ? std::max(symbol, LARGEST_ROSE * context.scale) : symbol;
  });
  FindRoses(context);
}

namespace {

// Degrees clockwise from up: square to north where a map keeps angles, as the meridians' eastern side lies
// where it does not. A step so small never reaches a seam but from a place on it.
double Eastward(const K7MapView& view, const NavPlace& place, double trueNorth) {
  static const double STEP = 1e-4;
  const double step = place.lon > 0 ? -STEP : STEP;
  double x, y;
  view.ToDevice(place.lat, place.lon + step, x, y);
  const double right = (x - place.dx) / step, down = (y - place.dy) / step;
  return std::hypot(x - place.dx, y - place.dy) > 0 ? std::atan2(right, -down) / RADIAN : trueNorth + 90;
}

// The rose of a place: as large as it is on the ground, within bounds, turned by the map's north there and
// the station's declination. False where the map has no scale, or lies so flat that no rose could be read.
bool ShapeRose(const LayerContext& context, const NavPlace& place, double declination, RoseShape& rose) {
  static const double FLATTEST = 0.4;
  const K7MapView& view = context.view;
  double north, east, trueNorth;
  if (!view.Scale(place.lat, place.lon, north, east) || !view.TrueNorth(place.lat, place.lon, trueNorth))
    return false;
  const double mean = std::sqrt(north * east);
  const double radius =
      std::clamp(ROSE_NM / mean, SMALLEST_ROSE * context.scale, LARGEST_ROSE * context.scale);
  const double eastward = Eastward(view, place, trueNorth);
  const double toNorth = radius * mean / north, toEast = radius * mean / east;
  const RoseShape ground = {toNorth * std::sin(trueNorth * RADIAN), -toNorth * std::cos(trueNorth * RADIAN),
                            toEast * std::sin(eastward * RADIAN), -toEast * std::cos(eastward * RADIAN)};
  rose = {ground.Right(declination), ground.Down(declination), ground.Right(declination + 90),
          ground.Down(declination + 90)};
  const double area = std::fabs(ground.northX * ground.eastY - ground.northY * ground.eastX);
  return area > FLATTEST * (toNorth * toNorth + toEast * toEast) / 2;
}

// Pixels from the middle to the farthest of a rose.
double Extent(const RoseShape& rose) {
  return std::max(std::hypot(rose.northX, rose.northY), std::hypot(rose.eastX, rose.eastY));
}

}  // namespace

// Roses that would run into a more important one are left out. Those on the edge of a piece come first, and
// give way to any such on an edge, whether that has one or not: its neighbours are to find the same.
void NavaidLayer::FindRoses(const LayerContext& context) {
  std::vector<const NavaidPlace*> onEdge, taken;
  const auto meetsAny = [](const NavaidPlace& navaid, const std::vector<const NavaidPlace*>& others) {
    return std::any_of(others.begin(), others.end(), [&](const NavaidPlace* other) {
      return std::hypot(other->dx - navaid.dx, other->dy - navaid.dy) <
             Extent(other->rose) + Extent(navaid.rose);
    });
  };
  for (const bool edge : {true, false})
    for (NavaidPlace& navaid : m_places) {
      if (navaid.onEdge != edge || !MayHaveRose(context, navaid) ||
          !ShapeRose(context, navaid, navaid.declination, navaid.rose))
        continue;
      navaid.hasRose = !meetsAny(navaid, edge ? onEdge : taken);
      if (edge) onEdge.push_back(&navaid);
      if (navaid.hasRose) taken.push_back(&navaid);
    }
}

void NavaidLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  SymbolPen roses(g, context.theme[ThemeItem::CompassRoses], context.scale, context.theme.Symbols());
  for (const NavaidPlace& navaid : m_places)
    if (navaid.hasRose) roses.Rose(navaid.dx, navaid.dy, navaid.rose);
  PlaceLayer::DrawLines(context, path, g);
}

void NavaidLayer::DrawSymbol(const NavaidPlace& navaid, SymbolPen& pen) const {
  pen.Navaid(navaid.symbol, navaid.dx, navaid.dy);
}

// The name, and below it a box with frequency, identifier and Morse code; where there is no room for it, the
// identifier. Airways turn at navaids: they stand without one too.
bool NavaidLayer::OfferLabel(const LayerContext& context, const NavaidPlace& navaid, double size,
                             LabelPlan& plan) const {
  const PixelBox symbol = SymbolBox(context, navaid, SymbolRadius(navaid.key.NavType()) + 1);
  Label box = {Figures(navaid.freq) + navaid.ident + "  " + Morse(navaid.ident),
               0,
               0,
               {.size = size * 0.68, .item = Item()}};
  box.boxed = true;
  const Label name = {navaid.name, 0, 0, {.size = size * 0.66, .halo = true, .item = Item()}};
  const Label ident = {navaid.ident, 0, 0, {.size = size * 0.72, .bold = true, .halo = true, .item = Item()}};
  if (navaid.nm <= NAMES_TO_NM && !navaid.name.empty() && OfferBeside(context, symbol, {name, box}, plan))
    return true;
  if (navaid.nm > RowOf(navaid.symbol).boxToNM || !OfferBeside(context, symbol, {box}, plan))
    OfferBeside(context, symbol, {ident}, plan);
  return true;
}

void NavaidLayer::OfferDetails(const LayerContext& context, double size, LabelPlan& plan) {
  for (const NavaidPlace& navaid : m_places)
    if (navaid.hasRose) OfferFigures(context, navaid, size, plan);
}

// Tens of degrees, outside the ring and turned with it.
void NavaidLayer::OfferFigures(const LayerContext& context, const NavaidPlace& navaid, double size,
                               LabelPlan& plan) const {
  const PixelBox window = context.Part();
  const Lettering lettering = {
      .size = size * 0.64, .align = Align::Centre, .halo = true, .item = ThemeItem::CompassRoses};
  for (int figure = 0; figure < 36; figure += 3) {
    const double x = navaid.rose.Right(figure * 10), y = navaid.rose.Down(figure * 10);
    const double share = 1 + lettering.size * 0.25 / std::hypot(x, y);
    Label label = {std::to_string(figure), navaid.dx + x * share, navaid.dy + y * share, lettering};
    label.turn = std::atan2(x, -y);
    plan.OfferWithin(window, label);
  }
}

std::string NavaidLayer::KindOf(const NavaidPlace& navaid) const { return RowOf(navaid.symbol).name; }

std::string NavaidLayer::Details(const NavaidPlace& navaid) const {
  return navaid.freq.empty() ? "" : ", " + navaid.freq;
}
