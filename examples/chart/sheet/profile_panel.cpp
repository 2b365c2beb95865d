#include "sheet/profile_panel.h"

#include "ink/pen.h"
#include "sheet/profile_axes.h"

#include <k7/foundation/string.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double ORDINARY_TEXT = 12;

// Places of lines about the plot, in letter sizes.
constexpr double TITLE = 2.2, FIRST_LINE = 3.8, SECOND_LINE = 5.2, FIX_LINE = 0.6;
constexpr double NOTE_LINE = 3.2;
constexpr double SMALL = 0.85;

// Ground stands out from the sky more than land from the sea.
Color GroundColor(const Theme& theme) {
  static const double INK = 0.2;
  const Color land = theme[ThemeItem::Land].fill, ink = theme[ThemeItem::Text].fill;
  const auto mixed = [](uint8_t a, uint8_t b) {
    return static_cast<uint8_t>(std::lround(a + (b - a) * INK));
  };
  return {mixed(land.red, ink.red), mixed(land.green, ink.green), mixed(land.blue, ink.blue), 255};
}

// No more points than pixels can show; the highest of each bunch stays.
std::vector<K7TerElevPoint> Thinned(const std::vector<K7TerElevPoint>& points, double pixels) {
  static const double EACH = 2;
  const size_t most = static_cast<size_t>(std::max(pixels, 1.0) * EACH);
  if (points.size() <= most) return points;
  std::vector<K7TerElevPoint> kept;
  for (size_t i = 0, begin = 0; i < most; ++i) {
    const size_t end = (i + 1) * points.size() / most;
    size_t best = begin;
    for (size_t j = begin + 1; j < end; ++j)
      if (HasElev(points[j]) && (!HasElev(points[best]) || points[j].elev > points[best].elev)) best = j;
    kept.push_back(points[best]);
    begin = end;
  }
  return kept;
}

class Panel {
 public:
  Panel(cairo_t* cairo, const PixelBox& box, double size, const Profile& profile, const Theme& theme)
      : m_cairo(cairo),
        m_box(box),
        m_size(size),
        m_scale(size / ORDINARY_TEXT),
        m_profile(profile),
        m_theme(theme),
        m_frame(FrameOf(box, size, profile)),
        m_points(Thinned(profile.points, m_frame.plot.right - m_frame.plot.left)),
        m_gaps(RunsOf(m_points, [](const K7TerElevPoint& point) { return !HasElev(point); })),
        m_plan(cairo, box) {}

  void Draw();

 private:
  double Width() const { return m_frame.plot.right - m_frame.plot.left; }
  double Height() const { return m_frame.plot.bottom - m_frame.plot.top; }
  double HeightOf(const K7TerElevPoint& point) const {
    return m_frame.Y(std::max<double>(point.elev, m_frame.bottom));
  }

  void FillStretch(double from, double to, double top, double bottom, const Color& color);
  void TraceGround(const PointRun& run);
  void DrawGround();
  void DrawGap(const PointRun& gap);
  void NameGaps();
  void DrawLow();
  void DrawFixes();
  void DrawAltitude();
  void DrawHighest();
  void DrawWords();
  void DrawNote();
  void WriteFirst(const std::vector<std::string>& texts, double x, double y, Lettering lettering);
  Lettering Small(Align align, ThemeItem item = ThemeItem::Text) const {
    return {.size = m_size * SMALL, .align = align, .item = item};
  }

  cairo_t* m_cairo;
  PixelBox m_box;
  double m_size, m_scale;
  const Profile& m_profile;
  const Theme& m_theme;
  ProfileFrame m_frame;
  std::vector<K7TerElevPoint> m_points;  // as many as show
  std::vector<PointRun> m_gaps;
  LabelPlan m_plan;
};

void Panel::FillStretch(double from, double to, double top, double bottom, const Color& color) {
  cairo_rectangle(m_cairo, m_frame.X(from), top, m_frame.X(to) - m_frame.X(from), bottom - top);
  SetColor(m_cairo, color);
  cairo_fill(m_cairo);
}

void Panel::TraceGround(const PointRun& run) {
  cairo_move_to(m_cairo, m_frame.X(run.from), HeightOf(m_points[run.first]));
  for (size_t i = run.first; i <= run.last; ++i)
    cairo_line_to(m_cairo, m_frame.X(m_points[i].distance), HeightOf(m_points[i]));
  cairo_line_to(m_cairo, m_frame.X(run.to), HeightOf(m_points[run.last]));
}

void Panel::DrawGround() {
  const double bottom = m_frame.plot.bottom, sea = m_frame.Y(0);
  for (const PointRun& run : RunsOf(m_points, HasElev)) {
    FillStretch(run.from, run.to, sea, bottom, m_theme[ThemeItem::Sea].fill);
    TraceGround(run);
    cairo_line_to(m_cairo, m_frame.X(run.to), bottom);
    cairo_line_to(m_cairo, m_frame.X(run.from), bottom);
    SetColor(m_cairo, GroundColor(m_theme));
    cairo_fill(m_cairo);
    TraceGround(run);
    ThemeEntry line = m_theme[ThemeItem::Neatline];
    line.width *= 1.3;
    Stroke(m_cairo, line, m_scale);
  }
  for (const PointRun& water : RunsOf(m_points, [](const auto& p) { return HasElev(p) && p.elev < 0; })) {
    cairo_move_to(m_cairo, m_frame.X(water.from), sea);
    cairo_line_to(m_cairo, m_frame.X(water.to), sea);
    Stroke(m_cairo, m_theme[ThemeItem::Lakes], m_scale);
  }
}

void Panel::DrawGap(const PointRun& gap) {
  const double left = m_frame.X(gap.from), right = m_frame.X(gap.to), step = 10 * m_scale;
  FillStretch(gap.from, gap.to, m_frame.plot.top, m_frame.plot.bottom, m_theme[ThemeItem::Paper].fill);
  cairo_save(m_cairo);
  cairo_rectangle(m_cairo, left, m_frame.plot.top, right - left, Height());
  cairo_clip(m_cairo);
  // All gaps share one hatching, whatever their edges.
  const double first = std::floor((left - m_frame.plot.left - Height()) / step) * step + m_frame.plot.left;
  for (double x = first; x < right; x += step) {
    cairo_move_to(m_cairo, x, m_frame.plot.bottom);
    cairo_line_to(m_cairo, x + Height(), m_frame.plot.top);
  }
  Stroke(m_cairo, m_theme[ThemeItem::Graticule], m_scale);
  cairo_restore(m_cairo);
}

void Panel::NameGaps() {
  Lettering letters = {.size = m_size, .align = Align::Centre, .halo = true};
  for (const PointRun& gap : m_gaps) {
    const PixelBox box = {m_frame.X(gap.from), m_frame.plot.top, m_frame.X(gap.to), m_frame.plot.bottom};
    const double middle = (box.top + box.bottom) / 2, x = (box.left + box.right) / 2;
    for (const double y : {middle, middle + 2 * m_size, middle - 2 * m_size})
      if (m_plan.OfferWithin(box, {"no data", x, y, letters})) break;
  }
}

// However short on the page, a warning shows.
void Panel::DrawLow() {
  const double least = m_frame.length / Width() * 3 * m_scale;
  for (const PointRun& low : LowRuns(m_profile)) {
    const double middle = (low.from + low.to) / 2, half = std::max(low.to - low.from, least) / 2;
    FillStretch(std::max(middle - half, 0.0), std::min(middle + half, m_frame.length), m_frame.plot.top,
                m_frame.plot.bottom, m_theme[ThemeItem::RestrictedAirspaces].fill);
  }
}

// Ends first, within the plot; of those between them, the ones that there is room for.
void Panel::DrawFixes() {
  const std::vector<ProfileFix>& fixes = m_profile.fixes;
  ThemeEntry line = m_theme[ThemeItem::Route];
  line.width *= 0.4;
  line.dash = {4, 3};
  const auto name = [&](const ProfileFix& fix, Align align) {
    const double x = m_frame.X(fix.distance);
    m_plan.Offer({fix.ident,
                  x,
                  m_frame.plot.top - FIX_LINE * m_size,
                  {.size = m_size, .align = align, .bold = true, .item = ThemeItem::Route}});
    if (align != Align::Centre) return;
    cairo_move_to(m_cairo, x, m_frame.plot.top);
    cairo_line_to(m_cairo, x, m_frame.plot.bottom);
    Stroke(m_cairo, line, m_scale);
  };
  name(fixes.front(), Align::Left);
  name(fixes.back(), Align::Right);
  for (size_t i = 1; i + 1 < fixes.size(); ++i) name(fixes[i], Align::Centre);
}

void Panel::DrawAltitude() {
  if (!m_profile.altitude) return;
  const double y = m_frame.Y(*m_profile.altitude), half = m_size / 3;
  const auto stroke = [&](double from, double to, ThemeItem item) {
    ThemeEntry line = m_theme[item];
    line.width = m_theme[ThemeItem::Route].width;
    cairo_move_to(m_cairo, m_frame.X(from), y);
    cairo_line_to(m_cairo, m_frame.X(to), y);
    Stroke(m_cairo, line, m_scale);
  };
  stroke(0, m_frame.length, ThemeItem::Route);
  for (const PointRun& low : LowRuns(m_profile)) stroke(low.from, low.to, ThemeItem::RestrictedAirspaces);
  m_plan.Keep(PixelBox{m_frame.plot.left, y - half, m_frame.plot.right, y + half});
  Lettering letters = {.size = m_size, .bold = true, .halo = true, .item = ThemeItem::Route};
  const std::string text = std::to_string(*m_profile.altitude) + " ft";
  const double width = m_plan.Width(text, letters);
  for (const double share : {0.0, 1.0, 0.5, 0.25, 0.75})
    for (const double baseline : {y - 0.7 * m_size, y + 1.4 * m_size})
      if (m_plan.OfferWithin(
              m_frame.plot,
              {text, m_frame.plot.left + m_size / 2 + (Width() - width - m_size) * share, baseline, letters}))
        return;
}

void Panel::DrawHighest() {
  const K7TerElevPoint* const highest = HighestGround(m_profile.points);
  if (!highest) return;
  const double x = m_frame.X(highest->distance), y = HeightOf(*highest), half = 0.45 * m_size;
  cairo_move_to(m_cairo, x, y);
  cairo_line_to(m_cairo, x - half, y - 1.6 * half);
  cairo_line_to(m_cairo, x + half, y - 1.6 * half);
  cairo_close_path(m_cairo);
  SetColor(m_cairo, m_theme[ThemeItem::Text].fill);
  cairo_fill(m_cairo);
  m_plan.Keep(PixelBox{x - half, y - 1.6 * half, x + half, y});
  const Lettering letters = {.size = m_size, .bold = true, .halo = true};
  const std::string text = std::to_string(highest->elev) + " ft";
  const double width = m_plan.Width(text, letters);
  // Above it, beside it, and where the plot ends near it farther off.
  const Label places[] = {{text, x - width / 2, y - 1.2 * m_size, letters},
                          {text, x + m_size, y - 0.5 * m_size, letters},
                          {text, x - width - m_size, y - 0.5 * m_size, letters},
                          {text, x + m_size, y - 1.8 * m_size, letters},
                          {text, x - width - m_size, y - 1.8 * m_size, letters},
                          {text, x - width / 2, y + 1.6 * m_size, letters}};
  for (const Label& place : places)
    if (m_plan.OfferWithin(m_frame.plot, place)) return;
}

// The longest that has room.
void Panel::WriteFirst(const std::vector<std::string>& texts, double x, double y, Lettering lettering) {
  for (const std::string& text : texts)
    if (!text.empty() && m_plan.Offer({text, x, y, lettering})) return;
}

void Panel::DrawWords() {
  const double left = m_frame.plot.left, top = m_box.top;
  const std::string miles(K7FmtString("   %.1f NM", m_frame.length));
  const std::vector<ProfileFix>& fixes = m_profile.fixes;
  const std::string ends = fixes.front().ident + " - " + fixes.back().ident;
  WriteFirst({WayText(m_profile) + miles, ends + miles, ends}, left, top + TITLE * m_size,
             {.size = m_size * 1.25, .bold = true});
  const std::string highest = HighestText(m_profile);
  const std::string gaps = GapText(m_profile);
  const size_t brief = std::min(highest.find(','), highest.find(" ("));
  WriteFirst({gaps.empty() ? "" : highest + "   " + gaps, highest, highest.substr(0, brief)}, left,
             top + FIRST_LINE * m_size, Small(Align::Left));
  const std::string clearance = ClearanceText(m_profile);
  const bool warns = clearance.starts_with("WARNING");
  Lettering letters = Small(Align::Left, warns ? ThemeItem::RestrictedAirspaces : ThemeItem::Text);
  letters.bold = warns;
  WriteFirst(
      {clearance, clearance.substr(0, clearance.find(" at ")), clearance.substr(0, clearance.find(':'))},
      left, top + SECOND_LINE * m_size, letters);
}

// What the picture must not be taken for.
void Panel::DrawNote() {
  static const double FEET_PER_NM = 1852 / 0.3048, NOTABLE = 1.1;
  const double times = Height() / (m_frame.top - m_frame.bottom) / (Width() / (m_frame.length * FEET_PER_NM));
  std::string heights;
  if (times > NOTABLE)
    heights =
        "heights exaggerated " + std::string(K7FmtString(times < 10 ? "%.1f" : "%.0f", times)) + " times";
  const double x = m_frame.plot.left, y = m_frame.plot.bottom + NOTE_LINE * m_size;
  const std::string rule = "clearance: 1000 ft over the ground, 2000 ft over ground above 5000 ft";
  const std::vector<std::string> rules = {rule + "; no obstacles   " + heights, rule,
                                          "clearance 1000/2000 ft"};
  WriteFirst(m_profile.altitude ? rules : std::vector{heights}, x, y, Small(Align::Left));
}

void Panel::Draw() {
  FillStretch(0, m_frame.length, m_frame.plot.top, m_frame.plot.bottom, m_theme[ThemeItem::Sky].fill);
  DrawWords();
  DrawNote();
  DrawAxes(m_cairo, m_frame, m_size, m_theme, m_plan);
  DrawGround();
  DrawLow();
  for (const PointRun& gap : m_gaps) DrawGap(gap);
  DrawFixes();
  DrawAltitude();
  DrawHighest();
  NameGaps();
  cairo_rectangle(m_cairo, m_frame.plot.left, m_frame.plot.top, Width(), Height());
  Stroke(m_cairo, m_theme[ThemeItem::Neatline], m_scale);
  m_plan.Draw(m_theme, m_scale);
}

}  // namespace

double ProfileTextSize(double width, double height) {
  return std::max(9.0, std::min(width / 110, height / 46));
}

void DrawProfile(cairo_t* cairo, const PixelBox& box, double textSize, const Profile& profile,
                 const Theme& theme) {
  static const double LEAST_PIXELS = 16;
  if (!(textSize > 0) || !(profile.Length() > 0)) return;
  const PixelBox plot = FrameOf(box, textSize, profile).plot;
  if (!(plot.right - plot.left >= LEAST_PIXELS && plot.bottom - plot.top >= LEAST_PIXELS)) return;
  Panel(cairo, box, textSize, profile, theme).Draw();
}
