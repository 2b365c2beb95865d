// All lettering of one chart, so that no label covers another or a symbol.
#pragma once

#include "ink/pixel_box.h"
#include "ink/text.h"

#include <cairo.h>

#include <functional>
#include <string>
#include <vector>

/// A rectangle of pixels that lies aslant, as what is written along a line.
struct TurnedBox {
  TurnedBox(const PixelBox& upright);
  /// Turned about a point, by radians clockwise.
  TurnedBox(const PixelBox& upright, double x, double y, double turn);

  bool Meets(const TurnedBox& other) const;
  PixelBox Bounds() const;

  double x, y;                   ///< of its centre
  double halfLength, halfWidth;  ///< along and across
  double cos, sin;               ///< of the direction of its length
};

/// One line of text, its baseline at `y`.
struct Label {
  std::string text;
  double x, y;
  Lettering lettering;
  double turn = 0;     ///< radians clockwise about (x, y)
  bool boxed = false;  ///< in a frame, on the fill of the lettering's item
};

/// Who comes first is placed: callers offer what matters most first. Coordinates are pixels of the chart's
/// window, in which the sheet's room around it lies outside.
class LabelPlan {
 public:
  /// `sheet`: where labels may stand at all. Texts are measured on the context.
  LabelPlan(cairo_t* cairo, const PixelBox& sheet);

  double Width(const std::string& text, const Lettering& lettering) const;
  /// Of a label that is not turned.
  PixelBox BoxOf(const Label& label) const;
  TurnedBox PlaceOf(const Label& label) const;
  /// Wholly on the sheet and clear of all that is placed.
  bool IsFree(const TurnedBox& box) const;
  /// Places a label if it fits; says whether it has.
  bool Offer(const Label& label) { return OfferWithin(m_sheet, label); }
  /// Places it if it fits and lies within a part of the sheet, as what belongs on the map within the window.
  bool OfferWithin(const PixelBox& part, const Label& label);
  /// Keeps a place clear of labels, for a symbol.
  void Keep(const TurnedBox& box);
  /// Says that what stands at a point has this text beside it: nobody else need write it there.
  void SetNamed(const std::string& text, double x, double y) { m_named.push_back({text, x, y}); }
  bool IsNamed(const std::string& text, const PixelBox& place) const;
  void AddTick(double x1, double y1, double x2, double y2) { m_ticks.push_back({x1, y1, x2, y2}); }

  /// A short line at the frame.
  struct Tick {
    double x1, y1, x2, y2;
  };
  const std::vector<Tick>& Ticks() const { return m_ticks; }
  const PixelBox& Sheet() const { return m_sheet; }
  const std::vector<Label>& Labels() const { return m_labels; }
  /// How opaque a label is drawn, from 0 to 1.
  using Opacity = std::function<double(const Label& label, const TurnedBox& place)>;
  /// Without `opacity`, wholly.
  void Draw(const Theme& theme, double scale, const Opacity& opacity = {}) const {
    Draw(m_cairo, theme, scale, opacity);
  }
  /// On another context than the one that measured.
  void Draw(cairo_t* cairo, const Theme& theme, double scale, const Opacity& opacity) const;

 private:
  struct Named {
    std::string text;
    double x, y;
  };
  struct CellRange {
    int left, top, right, bottom;
  };
  size_t CellAt(int column, int row) const {
    return static_cast<size_t>(row) * static_cast<size_t>(m_columns) + static_cast<size_t>(column);
  }
  CellRange CellsOf(const PixelBox& bounds) const;
  void DrawLabel(cairo_t* cairo, const Theme& theme, const Label& label, double scale) const;
  void DrawBox(cairo_t* cairo, const Theme& theme, const Label& label, double scale) const;

  cairo_t* m_cairo;
  PixelBox m_sheet;
  int m_columns, m_rows;
  std::vector<TurnedBox> m_taken;
  std::vector<std::vector<int>> m_cells;  // what is taken of each square of the sheet
  std::vector<Label> m_labels;
  std::vector<Named> m_named;
  std::vector<Tick> m_ticks;
};
