#include "layers/graticule.h"

#include "ink/style.h"

#include <k7/geodesy/constants.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double STEPS[] = {1 / 60.0, 2 / 60.0, 5 / 60.0, 10 / 60.0, 15 / 60.0, 20 / 60.0, 0.5,
                            1,        2,        5,        10,        15,        30};
// Lines that the shorter side of the window should show.
constexpr double WANTED_LINES = 6;

double StepFor(double degrees) {
  for (const double step : STEPS)
    if (step >= degrees) return step;
  return STEPS[std::size(STEPS) - 1];
}

// A degree of longitude at the centre, as a share of one of latitude: not every flat map has the globe's.
double Convergence(const View& view) {
  static const double SPAN = 0.01;
  const GeoPoint centre = view.Centre();
  if (view.IsTilted()) return std::cos(centre.lat * K7_DEG_TO_RAD);
  const DevicePoint a = view.ToDevice(GeoPoint{centre.lat, centre.lon - SPAN / 2});
  const DevicePoint b = view.ToDevice(GeoPoint{centre.lat, centre.lon + SPAN / 2});
  return std::hypot(a.x / a.w - b.x / b.w, a.y / a.w - b.y / b.w) * view.NMPerPixel() / (60 * SPAN);
}

}  // namespace

// One side of the window: where it starts, which way it runs, and how labels stand beside it.
struct Graticule::Side {
  double x, y, dx, dy;
  int length;
  double labelX, labelY;
  Align align;
};

Graticule::Graticule(const View& view) : m_view(view), m_extent(view.Extent()) {
  const double shorter = std::min(view.Grfx().Width(), view.Grfx().Height());
  // A tilted eye sees to the horizon: the lines there are what its picture is divided by.
  const double across =
      view.IsTilted() ? 2 * view.Cap().radius * K7_RAD_TO_DEG : shorter * view.NMPerPixel() / 60;
  const double degrees = std::min(across, m_extent.north - m_extent.south);
  m_latStep = StepFor(degrees / WANTED_LINES);
  // Where meridians converge, fewer of them keep the same distance; about a pole it is at the frame that they
  // do.
  const double atFrame = std::min(std::sin(degrees / 2 * K7_DEG_TO_RAD), 0.1);
  m_lonStep = StepFor(degrees / WANTED_LINES / std::max(Convergence(view), atFrame));
}

void Graticule::DrawLines(double scale) const {
  const GeoPath path(m_view);
  const double south = std::floor(m_extent.south / m_latStep) * m_latStep;
  for (double lat = south; lat <= m_extent.north + 1e-9; lat += m_latStep)
    if (std::fabs(lat) < 90 - 1e-9) path.AddLine({{lat, m_extent.west}, {lat, m_extent.east}});
  const double west = std::floor(m_extent.west / m_lonStep) * m_lonStep;
  const double east = std::min(m_extent.east, west + 360 - m_lonStep / 2);
  for (double lon = west; lon <= east + 1e-9; lon += m_lonStep) DrawMeridian(lon);
  Stroke(m_view.Grfx().Cairo(), GRATICULE_LINE, scale);
}

// Only four meridians run into the poles, so that these stay legible.
void Graticule::DrawMeridian(double lon) const {
  const bool whole = std::fabs(std::remainder(lon, 90)) < 1e-9;
  const double cap = whole ? 90 : 90 - m_latStep;
  const double south = std::max(m_extent.south, -cap);
  const double north = std::min(m_extent.north, cap);
  if (south < north) GeoPath(m_view).AddLine({{south, lon}, {north, lon}});
}

std::vector<Graticule::Crossing> Graticule::Crossings(const Side& side, Kind kind) const {
  std::vector<Crossing> crossings;
  const double step = kind == Kind::Parallel ? m_latStep : m_lonStep;
  bool known = false;
  double last = 0;
  for (int i = 0; i <= side.length; ++i) {
    GeoPoint point;
    if (!m_view.FromDevice(side.x + side.dx * i, side.y + side.dy * i, point)) {
      known = false;
      continue;
    }
    double value = kind == Kind::Parallel ? point.lat : point.lon;
    if (known && kind == Kind::Meridian) value = last + std::remainder(value - last, 360);
    const double line = std::floor(std::max(last, value) / step) * step;
    if (known && line > std::min(last, value) && std::fabs(value - last) < step)
      crossings.push_back({i - 1 + (line - last) / (value - last), line});
    known = true;
    last = value;
  }
  return crossings;
}

std::string Graticule::Label(Kind kind, double value) const {
  const bool wholeDegrees =
      std::fabs(std::remainder(kind == Kind::Parallel ? m_latStep : m_lonStep, 1)) < 1e-9;
  K7String text;
  if (kind == Kind::Parallel) {
    K7LatLon(value, 0).FormatLat(wholeDegrees ? "%H%d%x" : "%H%d%x%02m'", text);
  } else {
    double lon = std::remainder(value, 360);
    if (std::fabs(lon + 180) < 1e-9) lon = 180;
    K7LatLon(0, lon).FormatLon(wholeDegrees ? "%H%03d%x" : "%H%03d%x%02m'", text);
  }
  return Utf8(text);
}

int Graticule::LabelSide(const Side& side, Kind kind, double size) const {
  cairo_t* const cairo = m_view.Grfx().Cairo();
  const double step = kind == Kind::Parallel ? m_latStep : m_lonStep;
  const std::vector<Crossing> crossings = Crossings(side, kind);
  // Every line has its label, or every second, third or sixth, so that they neither touch nor come at odd
  // intervals.
  static const int INTERVALS[] = {1, 2, 3, 6};
  for (const int interval : INTERVALS) {
    const bool last = interval == INTERVALS[std::size(INTERVALS) - 1];
    std::vector<Crossing> labelled;
    bool touch = false;
    double free = -1e9;
    for (const Crossing& crossing : crossings) {
      if (std::fabs(std::remainder(crossing.value, step * interval)) > 1e-6) continue;
      // Labels of upright sides stand one above the other.
      const double half =
          side.dx == 0 ? size * 0.7 : TextWidth(cairo, Label(kind, crossing.value), size) / 2 + size * 0.3;
      const bool touches = crossing.along - half < free;
      touch = touch || touches;
      if (touches) continue;
      free = crossing.along + half;
      labelled.push_back(crossing);
    }
    if (touch && !last) continue;
    for (const Crossing& crossing : labelled)
      WriteText(cairo, Label(kind, crossing.value), side.x + side.dx * crossing.along + side.labelX,
                side.y + side.dy * crossing.along + side.labelY, size, side.align);
    return static_cast<int>(labelled.size());
  }
  return 0;
}

void Graticule::DrawLabels(double size) const {
  const int width = m_view.Grfx().Width();
  const int height = m_view.Grfx().Height();
  const double gap = size * 0.9;
  const Side horizontal[] = {
      {0, 0, 1, 0, width, 0, -gap, Align::Centre},
      {0, height * 1.0, 1, 0, width, 0, gap + size * 0.75, Align::Centre},
  };
  const Side vertical[] = {
      {0, 0, 0, 1, height, -gap, size * 0.35, Align::Right},
      {width * 1.0, 0, 0, 1, height, gap, size * 0.35, Align::Left},
  };
  bool parallels = false;
  bool meridians = false;
  // A side that the usual lines do not meet, as near a pole, shows the others.
  for (const Side& side : horizontal) {
    if (LabelSide(side, Kind::Meridian, size) > 0)
      meridians = true;
    else
      parallels |= LabelSide(side, Kind::Parallel, size) > 0;
  }
  for (const Side& side : vertical) {
    if (LabelSide(side, Kind::Parallel, size) > 0)
      parallels = true;
    else
      meridians |= LabelSide(side, Kind::Meridian, size) > 0;
  }
  LabelMap(!parallels, !meridians, size);
}

void Graticule::LabelMap(bool parallels, bool meridians, double size) const {
  cairo_t* const cairo = m_view.Grfx().Cairo();
  const GeoPoint centre = m_view.Centre();
  const double meridian = std::round(centre.lon / m_lonStep) * m_lonStep;
  // Not too near a pole, where meridians leave no room between them.
  const double nearest = std::trunc(centre.lat / m_latStep) * m_latStep;
  const double parallel = std::copysign(std::min(std::fabs(nearest), 60.0), nearest);

  std::vector<DevicePoint> placed;
  const auto place = [&](Kind kind, GeoPoint point) {
    DevicePoint at;
    if (!m_view.Shows(point, at)) return;
    const std::string text = Label(kind, kind == Kind::Parallel ? point.lat : point.lon);
    const double width = TextWidth(cairo, text, size) + size * 0.4;
    GeoPoint end;
    if (at.x + width > m_view.Grfx().Width() || !m_view.FromDevice(at.x + width, at.y - size, end)) return;
    for (const DevicePoint& other : placed)
      if (std::fabs(other.x - at.x) < width && std::fabs(other.y - at.y) < size * 1.2) return;
    placed.push_back(at);
    WriteText(cairo, text, at.x + size * 0.3, at.y - size * 0.3, size, Align::Left, false, true);
  };
  for (double lat = -90 + m_latStep; parallels && lat < 90 - 1e-9; lat += m_latStep)
    place(Kind::Parallel, {lat, meridian});
  for (double lon = -180; meridians && lon < 180; lon += m_lonStep) place(Kind::Meridian, {parallel, lon});
}

std::string Utf8(const char* latin1) {
  std::string out;
  for (; *latin1; ++latin1) {
    const unsigned char c = static_cast<unsigned char>(*latin1);
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}
