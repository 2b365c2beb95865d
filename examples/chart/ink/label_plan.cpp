#include "ink/label_plan.h"

#include "ink/pen.h"

#include <algorithm>
#include <cmath>

namespace {

// Of the letter size: what stands above and below the baseline, and the room between neighbours.
constexpr double ASCENT = 0.76;
constexpr double DESCENT = 0.2;
constexpr double GAP = 0.12;

constexpr double CELL = 64;  // pixels

// How far a box reaches from its centre along a direction.
double Reach(const TurnedBox& box, double cos, double sin) {
  return box.halfLength * std::fabs(box.cos * cos + box.sin * sin) +
         box.halfWidth * std::fabs(box.cos * sin - box.sin * cos);
}

}  // namespace

TurnedBox::TurnedBox(const PixelBox& upright) : TurnedBox(upright, 0, 0, 0) {}

TurnedBox::TurnedBox(const PixelBox& upright, double aboutX, double aboutY, double turn)
    : halfLength((upright.right - upright.left) / 2),
      halfWidth((upright.bottom - upright.top) / 2),
      cos(std::cos(turn)),
      sin(std::sin(turn)) {
  const double dx = (upright.left + upright.right) / 2 - aboutX;
  const double dy = (upright.top + upright.bottom) / 2 - aboutY;
  x = aboutX + dx * cos - dy * sin;
  y = aboutY + dx * sin + dy * cos;
}

// Two rectangles are apart if a side of either separates them.
bool TurnedBox::Meets(const TurnedBox& other) const {
  const double dx = other.x - x, dy = other.y - y;
  for (const TurnedBox* box : {this, &other})
    for (const auto& [ux, uy] : {std::pair{box->cos, box->sin}, std::pair{-box->sin, box->cos}})
      if (std::fabs(dx * ux + dy * uy) >= Reach(*this, ux, uy) + Reach(other, ux, uy)) return false;
  return true;
}

PixelBox TurnedBox::Bounds() const {
  const double across = Reach(*this, 1, 0), down = Reach(*this, 0, 1);
  return {x - across, y - down, x + across, y + down};
}

LabelPlan::LabelPlan(cairo_t* cairo, const PixelBox& sheet)
    : m_cairo(cairo),
      m_sheet(sheet),
      m_columns(1 + static_cast<int>((sheet.right - sheet.left) / CELL)),
      m_rows(1 + static_cast<int>((sheet.bottom - sheet.top) / CELL)),
      m_cells(static_cast<size_t>(m_columns) * static_cast<size_t>(m_rows)) {}

double LabelPlan::Width(const std::string& text, const Lettering& lettering) const {
  return TextWidth(m_cairo, text, lettering.size, lettering.bold);
}

PixelBox LabelPlan::BoxOf(const Label& label) const {
  const Lettering& l = label.lettering;
  const double width = Width(label.text, l);
  const double left = label.x - (l.align == Align::Left ? 0 : l.align == Align::Centre ? width / 2 : width);
  const double gap = GAP * l.size * (label.boxed ? 2 : 1);
  return {left - gap, label.y - ASCENT * l.size - gap, left + width + gap, label.y + DESCENT * l.size + gap};
}

TurnedBox LabelPlan::PlaceOf(const Label& label) const {
  return {BoxOf(label), label.x, label.y, label.turn};
}

LabelPlan::CellRange LabelPlan::CellsOf(const PixelBox& bounds) const {
  const auto cell = [](double pixels, int count) {
    return static_cast<int>(std::clamp(pixels / CELL, 0.0, count - 1.0));
  };
  return {cell(bounds.left - m_sheet.left, m_columns), cell(bounds.top - m_sheet.top, m_rows),
          cell(bounds.right - m_sheet.left, m_columns), cell(bounds.bottom - m_sheet.top, m_rows)};
}

bool LabelPlan::IsFree(const TurnedBox& box) const {
  const PixelBox bounds = box.Bounds();
  if (!m_sheet.Holds(bounds)) return false;
  const CellRange range = CellsOf(bounds);
  for (int row = range.top; row <= range.bottom; ++row)
    for (int column = range.left; column <= range.right; ++column)
      for (const int taken : m_cells[CellAt(column, row)])
        if (m_taken[static_cast<size_t>(taken)].Meets(box)) return false;
  return true;
}

void LabelPlan::Keep(const TurnedBox& box) {
  const PixelBox bounds = box.Bounds();
  if (!m_sheet.Meets(bounds)) return;
  const CellRange range = CellsOf(bounds);
  for (int row = range.top; row <= range.bottom; ++row)
    for (int column = range.left; column <= range.right; ++column)
      m_cells[CellAt(column, row)].push_back(static_cast<int>(m_taken.size()));
  m_taken.push_back(box);
}

bool LabelPlan::OfferWithin(const PixelBox& part, const Label& label) {
  const TurnedBox box = PlaceOf(label);
  if (!part.Holds(box.Bounds()) || !IsFree(box)) return false;
  Keep(box);
  m_labels.push_back(label);
  return true;
}

bool LabelPlan::IsNamed(const std::string& text, const PixelBox& place) const {
  return std::any_of(m_named.begin(), m_named.end(), [&](const Named& named) {
    return named.text == text && place.Holds({named.x, named.y, named.x, named.y});
  });
}

void LabelPlan::DrawBox(cairo_t* cairo, const Theme& theme, const Label& label, double scale) const {
  const ThemeEntry& entry = theme[label.lettering.item];
  const PixelBox box = BoxOf(label);
  cairo_rectangle(cairo, box.left, box.top, box.right - box.left, box.bottom - box.top);
  SetColor(cairo, entry.fill);
  cairo_fill_preserve(cairo);
  Stroke(cairo, entry, 0.8 * scale);
}

void LabelPlan::DrawLabel(cairo_t* cairo, const Theme& theme, const Label& label, double scale) const {
  cairo_save(cairo);
  cairo_translate(cairo, label.x, label.y);
  cairo_rotate(cairo, label.turn);
  cairo_translate(cairo, -label.x, -label.y);
  if (label.boxed) DrawBox(cairo, theme, label, scale);
  WriteText(cairo, theme, label.text, label.x, label.y, label.lettering);
  cairo_restore(cairo);
}

void LabelPlan::Draw(cairo_t* cairo, const Theme& theme, double scale, const Opacity& opacity) const {
  for (const Tick& tick : m_ticks) {
    cairo_move_to(cairo, tick.x1, tick.y1);
    cairo_line_to(cairo, tick.x2, tick.y2);
  }
  Stroke(cairo, theme[ThemeItem::Neatline], scale);
  for (const Label& label : m_labels) {
    const double shown = opacity ? opacity(label, PlaceOf(label)) : 1;
    if (shown >= 1) {
      DrawLabel(cairo, theme, label, scale);
      continue;
    }
    // Letters and halo fade as one.
    const PixelBox bounds = PlaceOf(label).Bounds();
    cairo_save(cairo);
    cairo_rectangle(cairo, bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top);
    cairo_clip(cairo);
    cairo_push_group(cairo);
    DrawLabel(cairo, theme, label, scale);
    cairo_pop_group_to_source(cairo);
    cairo_paint_with_alpha(cairo, shown);
    cairo_restore(cairo);
  }
}
