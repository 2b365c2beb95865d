// Meridians and parallels, with their labels and the ticks of the frame.
#pragma once

#include "layers/layer.h"

#include <k7/projection/map_features.h>

/// Parallels or meridians.
enum class LineKind { Parallel, Meridian };

/// The step, in degrees, that leaves 4 to 8 lines over a span of so many degrees, and the finer one of the
/// ticks between them. 0 for ticks when the lines themselves are more than a degree apart,
/// or a second.
struct GraticuleStep {
  double lines, ticks;
};
GraticuleStep StepFor(LineKind kind, double span);
/// What lies between neighbouring lines, in degrees; the west may lie beyond 180.
struct GraticuleCell {
  double south, west, height, width;
};
/// But for rounding.
bool IsMultiple(double degrees, double step);

class GraticuleLayer : public Layer {
 public:
  std::string Name() const override { return "graticule"; }
  ThemeItem Item() const override { return ThemeItem::Graticule; }
  void Prepare(const LayerContext& context) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  /// Those that the view shows, whole or in part; none when they are too many to tell apart.
  std::vector<GraticuleCell> Cells() const;
  /// Labels stand outside the window where a line meets its frame: meridians above and below it, parallels
  /// beside it, and the other kind on a side that the usual one does not meet, as near a pole. A line that
  /// meets no such side is labelled on the map.
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;

 private:
  struct Line {
    LineKind kind;
    double degrees;
  };
  // Where a line meets the frame: on which side (SIDES), how far along it.
  struct Crossing {
    int line;
    int side;
    double along;
  };
  struct Lettered;

  void AddLine(K7MapFeatures& features, std::vector<Line>& lines, LineKind kind, double degrees) const;
  void AddFamily(K7MapFeatures& features, std::vector<Line>& lines, LineKind kind, double step) const;
  void LabelSide(int side, LineKind kind, Lettered& lettered) const;
  void LabelOnMap(int line, Lettered& lettered) const;
  void AddTicks(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) const;
  std::string Text(const Line& line) const;

  double m_north = 0, m_south = 0, m_east = 0, m_west = 0;  // what the view shows
  GraticuleStep m_latStep{}, m_lonStep{};
  bool m_seesPole = false;
  bool m_converge = false;  // meridians meet at the poles
  std::vector<Line> m_lines;
  K7MapFeatures m_features;  // one a line
};
