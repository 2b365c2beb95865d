#include "ink/label_plan.h"

#include "ink/pen.h"

#include <algorithm>

namespace {

// Of the letter size: what stands above and below the baseline, and the room between neighbours.
constexpr double ASCENT = 0.76;
constexpr double DESCENT = 0.2;
constexpr double GAP = 0.12;

}  // namespace

double LabelPlan::Width(const std::string& text, const Lettering& lettering) const {
  return TextWidth(m_cairo, text, lettering.size, lettering.bold);
}

PixelBox LabelPlan::BoxOf(const Label& label) const {
  const Lettering& l = label.lettering;
  const double width = Width(label.text, l);
  const double left = label.x - (l.align == Align::Left ? 0 : l.align == Align::Centre ? width / 2 : width);
  const double gap = GAP * l.size;
  return {left - gap, label.y - ASCENT * l.size - gap, left + width + gap, label.y + DESCENT * l.size + gap};
}

bool LabelPlan::IsFree(const PixelBox& box) const {
  return m_sheet.Holds(box) && std::none_of(m_taken.begin(), m_taken.end(),
                                            [&](const PixelBox& taken) { return taken.Meets(box); });
}

bool LabelPlan::Offer(const Label& label) {
  const PixelBox box = BoxOf(label);
  if (!IsFree(box)) return false;
  m_taken.push_back(box);
  m_labels.push_back(label);
  return true;
}

void LabelPlan::Draw(const Theme& theme, double scale) const {
  for (const Tick& tick : m_ticks) {
    cairo_move_to(m_cairo, tick.x1, tick.y1);
    cairo_line_to(m_cairo, tick.x2, tick.y2);
  }
  Stroke(m_cairo, theme[ThemeItem::Neatline], scale);
  for (const Label& label : m_labels)
    WriteText(m_cairo, theme, label.text, label.x, label.y, label.lettering);
}
