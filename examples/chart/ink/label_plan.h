// All lettering of one chart, so that no label covers another or a symbol.
#pragma once

#include "ink/text.h"

#include <cairo.h>

#include <string>
#include <vector>

/// A rectangle of pixels.
struct PixelBox {
  double left, top, right, bottom;

  bool Meets(const PixelBox& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
  bool Holds(const PixelBox& other) const {
    return left <= other.left && top <= other.top && right >= other.right && bottom >= other.bottom;
  }
};

/// One line of text, its baseline at `y`.
struct Label {
  std::string text;
  double x, y;
  Lettering lettering;
};

/// Who comes first is placed: callers offer what matters most first. Coordinates are pixels of the chart's
/// window, in which the sheet's room around it lies outside.
class LabelPlan {
 public:
  /// `sheet`: where labels may stand at all.
  LabelPlan(cairo_t* cairo, const PixelBox& sheet) : m_cairo(cairo), m_sheet(sheet) {}

  double Width(const std::string& text, const Lettering& lettering) const;
  PixelBox BoxOf(const Label& label) const;
  /// Wholly on the sheet and clear of all that is placed.
  bool IsFree(const PixelBox& box) const;
  /// Places a label if it fits; says whether it has.
  bool Offer(const Label& label);
  /// Keeps a place clear of labels, for a symbol.
  void Keep(const PixelBox& box) { m_taken.push_back(box); }
  /// A short line at the frame.
  void AddTick(double x1, double y1, double x2, double y2) { m_ticks.push_back({x1, y1, x2, y2}); }

  const PixelBox& Sheet() const { return m_sheet; }
  const std::vector<Label>& Labels() const { return m_labels; }
  void Draw(const Theme& theme, double scale) const;

 private:
  struct Tick {
    double x1, y1, x2, y2;
  };
  cairo_t* m_cairo;
  PixelBox m_sheet;
  std::vector<PixelBox> m_taken;
  std::vector<Label> m_labels;
  std::vector<Tick> m_ticks;
};
