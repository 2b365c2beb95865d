// What stands around and on the graticule: labels of its lines and ticks.
#include "layers/graticule_layer.h"

#include "layers/frame_sink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace {

constexpr double MINUTE = 1 / 60.0;
constexpr double TOLERANCE = 1e-9;

}  // namespace

// "N48°30'", and without a letter where there is no side to name.
std::string GraticuleLayer::Text(const Line& line) const {
  const bool parallel = line.kind == LineKind::Parallel;
  const double step = parallel ? m_latStep.lines : m_lonStep.lines;
  const double turned = std::remainder(line.degrees, 360);
  const double degrees = parallel ? line.degrees : std::fabs(turned) > 180 - TOLERANCE ? 180 : turned;
  if (std::fabs(degrees) < TOLERANCE) return "0°";
  if (!parallel && degrees == 180) return "180°";
  const bool whole = IsMultiple(step, 1);
  const bool minutes = IsMultiple(step, MINUTE);
  const char* const rest = whole ? "" : minutes ? "%02m'" : "%02m'%02s\"";
  K7String format, text;
  format.Format(parallel ? "%%H%%d%%x%s" : "%%H%%03d%%x%s", rest);
  if (parallel)
    K7LatLon(degrees, 0).FormatLat(format, text);
  else
    K7LatLon(0, degrees).FormatLon(format, text);
  return Utf8(text);
}

// What is being lettered: the lines as they meet the frame and lie on the map.
struct GraticuleLayer::Lettered {
  const K7MapView& view;
  double size;
  LabelPlan& plan;
  std::vector<Crossing> crossings;
  std::vector<std::vector<DevicePlace>> places;  // of each line, within the window
  std::vector<char> done;                        // lines that have a label, or gave way to their neighbours'
};

void GraticuleLayer::OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) {
  // Each piece of a picture would repeat them.
  if (context.IsPiece()) return;
  Lettered lettered{context.view, size, plan, {}, {}, std::vector<char>(m_lines.size(), 0)};
  FrameSink sink(context.view.Width(), context.view.Height());
  for (int i = 0; i < m_features.Count(); ++i) {
    sink.Clear();
    path.Outline(&sink, m_features, i);
    for (const FrameSink::Crossing& crossing : sink.Crossings())
      lettered.crossings.push_back({i, crossing.side, crossing.along});
    lettered.places.push_back(sink.Places());
  }
  const auto meets = [&](int side, LineKind kind) {
    return std::any_of(lettered.crossings.begin(), lettered.crossings.end(), [&](const Crossing& c) {
      return c.side == side && m_lines[static_cast<size_t>(c.line)].kind == kind;
    });
  };
  for (int side = 0; side < FRAME_SIDES; ++side) {
    const LineKind usual = IsUpright(side) ? LineKind::Parallel : LineKind::Meridian;
    const LineKind other = IsUpright(side) ? LineKind::Meridian : LineKind::Parallel;
    LabelSide(side, meets(side, usual) ? usual : other, lettered);
  }
  for (int i = 0; i < m_features.Count(); ++i)
    if (!lettered.done[static_cast<size_t>(i)]) LabelOnMap(i, lettered);
  AddTicks(context, path, size, plan);
}

namespace {

// Beside the chart there is room for minutes; seconds are written smaller.
void ShrinkToSheet(const LabelPlan& plan, Label& label) {
  static const double SMALLEST = 0.65, LESS = 0.96;
  const double least = label.lettering.size * SMALLEST;
  const auto sticksOut = [&] {
    const PixelBox box = plan.BoxOf(label);
    return box.left < plan.Sheet().left || box.right > plan.Sheet().right;
  };
  while (sticksOut() && label.lettering.size > least) label.lettering.size *= LESS;
}

}  // namespace

void GraticuleLayer::LabelSide(int side, LineKind kind, Lettered& lettered) const {
  std::vector<Crossing> crossings;
  for (const Crossing& crossing : lettered.crossings)
    if (crossing.side == side && m_lines[static_cast<size_t>(crossing.line)].kind == kind)
      crossings.push_back(crossing);
  std::sort(crossings.begin(), crossings.end(),
            [](const Crossing& a, const Crossing& b) { return a.along < b.along; });
  const double step = kind == LineKind::Parallel ? m_latStep.lines : m_lonStep.lines;
  const auto labelAt = [&](const Crossing& crossing) {
    const FramePlace place =
        OutsideFrame(side, crossing.along, lettered.view.Width(), lettered.view.Height());
    const double gap = lettered.size * 0.9;
    Label label = {Text(m_lines[static_cast<size_t>(crossing.line)]),
                   place.x + place.outX * gap,
                   place.y,
                   {.size = lettered.size,
                    .align = place.outX < 0   ? Align::Right
                             : place.outX > 0 ? Align::Left
                                              : Align::Centre}};
    if (IsUpright(side)) ShrinkToSheet(lettered.plan, label);
    label.y += place.outY > 0   ? gap + lettered.size * 0.75
               : place.outY < 0 ? -gap
                                : label.lettering.size * 0.35;
    return label;
  };
  // Every line has its label, or every second, third or sixth, so that they neither touch nor come at odd
  // intervals.
  static const int INTERVALS[] = {1, 2, 3, 6};
  const auto isAt = [&](const Crossing& crossing, int interval) {
    return IsMultiple(m_lines[static_cast<size_t>(crossing.line)].degrees, step * interval);
  };
  const auto touch = [&](int interval) {
    double free = -INFINITY;
    for (const Crossing& crossing : crossings) {
      if (!isAt(crossing, interval)) continue;
      const PixelBox box = lettered.plan.BoxOf(labelAt(crossing));
      if ((IsUpright(side) ? box.top : box.left) < free) return true;
      free = IsUpright(side) ? box.bottom : box.right;
    }
    return false;
  };
  const auto* const fitting = std::find_if_not(std::begin(INTERVALS), std::end(INTERVALS), touch);
  // A tilted view's lines crowd towards its horizon: there the round ones come first, and others where there
  // is room.
  const bool crowded = lettered.view.IsTilted() || fitting == std::end(INTERVALS);
  for (const int interval : {6, 3, 2, 1}) {
    if (!crowded && interval != *fitting) continue;
    for (const Crossing& crossing : crossings) {
      char& done = lettered.done[static_cast<size_t>(crossing.line)];
      // Lines between labelled ones need no label of their own.
      if (!isAt(crossing, interval))
        done = done || !crowded;
      else if (lettered.plan.Offer(labelAt(crossing)))
        done = 1;
    }
  }
}

// On the line itself, as near to the middle of the picture as there is room: parallels above one another,
// meridians side by side.
void GraticuleLayer::LabelOnMap(int line, Lettered& lettered) const {
  const Line& l = m_lines[static_cast<size_t>(line)];
  std::vector<DevicePlace> places = lettered.places[static_cast<size_t>(line)];
  const double middleX = lettered.view.Width() / 2.0, middleY = lettered.view.Height() / 2.0;
  const bool parallel = l.kind == LineKind::Parallel;
  const auto off = [&](const DevicePlace& p) {
    return parallel ? std::fabs(p.x - middleX) - (p.y < middleY ? 1 : 0) : std::fabs(p.y - middleY);
  };
  std::stable_sort(places.begin(), places.end(),
                   [&](const DevicePlace& a, const DevicePlace& b) { return off(a) < off(b); });
  const double inset = lettered.size * 0.3;
  const PixelBox window = {0, 0, lettered.view.Width() * 1.0, lettered.view.Height() * 1.0};
  const auto onMap = [&](double x, double y) {
    double lat, lon;
    return lettered.view.FromDevice(x, y, lat, lon);
  };
  // To the right of the line, or where the map ends there, to its left.
  for (const Align align : {Align::Left, Align::Right})
    for (const DevicePlace& place : places) {
      const double x = align == Align::Left ? place.x + inset : place.x - inset;
      const Label label = {
          Text(l), x, place.y - inset, {.size = lettered.size, .align = align, .halo = true}};
      const PixelBox box = lettered.plan.BoxOf(label);
      if (window.Holds(box) && onMap(box.right, box.top) && onMap(box.right, box.bottom) &&
          onMap(box.left, box.top) && onMap(box.left, box.bottom) && lettered.plan.Offer(label))
        return;
    }
}

namespace {

// Those that lie no closer than `apart` to another: towards a horizon ticks would run into a bar.
std::vector<double> Distinct(std::vector<double> places, double apart) {
  std::sort(places.begin(), places.end());
  std::vector<double> distinct;
  for (size_t i = 0; i < places.size(); ++i)
    if ((i == 0 || places[i] - places[i - 1] >= apart) &&
        (i + 1 == places.size() || places[i + 1] - places[i] >= apart))
      distinct.push_back(places[i]);
  return distinct;
}

}  // namespace

// Between the lines of a large-scale chart the frame is divided further.
void GraticuleLayer::AddTicks(const LayerContext& context, K7MapPath& path, double size,
                              LabelPlan& plan) const {
  const double length = size * 0.35;
  for (const LineKind kind : {LineKind::Parallel, LineKind::Meridian}) {
    const GraticuleStep& step = kind == LineKind::Parallel ? m_latStep : m_lonStep;
    if (step.ticks == 0) continue;
    K7MapFeatures features;
    std::vector<Line> lines;
    AddFamily(features, lines, kind, step.ticks);
    FrameSink sink(context.view.Width(), context.view.Height());
    for (int i = 0; i < features.Count(); ++i) path.Outline(&sink, features, i);
    std::array<std::vector<double>, FRAME_SIDES> sides;
    for (const FrameSink::Crossing& crossing : sink.Crossings())
      if (IsUpright(crossing.side) == (kind == LineKind::Parallel))
        sides[static_cast<size_t>(crossing.side)].push_back(crossing.along);
    for (int side = 0; side < FRAME_SIDES; ++side)
      for (const double along : Distinct(sides[static_cast<size_t>(side)], length)) {
        const FramePlace p = OutsideFrame(side, along, context.view.Width(), context.view.Height());
        plan.AddTick(p.x, p.y, p.x + p.outX * length, p.y + p.outY * length);
      }
  }
}
