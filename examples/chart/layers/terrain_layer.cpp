#include "layers/terrain_layer.h"

#include "layers/relief_picture.h"
#include "layers/view_posts.h"

#include <k7/projection/chart_rect.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double FEET_PER_METRE = 1 / 0.3048;
// Pixels over which relief fades where its data end.
constexpr double FADE = 18;
constexpr double ORDINARY_TEXT = 12;

// The lowest and the highest post in a view, in feet; the first above the second for none.
struct Heights {
  double low = INFINITY, high = -INFINITY;
};

Heights HeightsIn(const K7TerTileEX& tile, const K7MapView& view) {
  Heights found;
  const int16_t* const* const rows = tile.GetMesh();
  const K7ChartRect& bounds = tile.GetChartRect();
  const K7ChartRect extent = view.GetExtent();
  double width = bounds.East() - bounds.West();
  if (width <= 0) width += 360;
  for (int row = 0; rows && row < tile.RowCount(); ++row) {
    const double lat = bounds.South() + (row + 0.5) / tile.RowCount() * (bounds.North() - bounds.South());
    for (int column = 0; column < tile.ColCount(); ++column) {
      const double feet = rows[row][column] * FEET_PER_METRE;
      if (rows[row][column] == K7_NO_ELEV || (feet >= found.low && feet <= found.high)) continue;
      const double lon = std::remainder(bounds.West() + (column + 0.5) / tile.ColCount() * width, 360);
      double x, y;
      if (!extent.PtIn(lat, lon) || !view.ToDevice(lat, lon, x, y)) continue;
      if (x < 0 || y < 0 || x > view.Width() || y > view.Height()) continue;
      found.low = std::min(found.low, feet);
      found.high = std::max(found.high, feet);
    }
  }
  return found;
}

void Rectangle(K7Grfx& g, double left, double top, double right, double bottom) {
  g.MoveTo(left, top);
  g.LineTo(right, top);
  g.LineTo(right, bottom);
  g.LineTo(left, bottom);
  g.ClosePath();
}

// Fields of one width from left to right, the lowest first, a number at each limit between them.
LegendEntry TintBar(const LayerContext& context, const HeightTint* first, int count) {
  const double field = 3.2 * ORDINARY_TEXT * context.scale, high = 0.62 * ORDINARY_TEXT * context.scale;
  LegendEntry bar;
  bar.text = "ft";
  bar.room = (count - 0.25) * field;
  for (int i = 1; i < count; ++i) {
    K7String text;
    text.Format(std::abs(first[i].feet) >= 1000 ? "%d,%03d" : "%d",
                std::abs(first[i].feet) >= 1000 ? first[i].feet / 1000 : first[i].feet,
                std::abs(first[i].feet) % 1000);
    bar.marks.push_back(
        {std::string(text),
         (i - 0.25) * field,
         {.size = 0.75 * ORDINARY_TEXT * context.scale, .align = Align::Centre, .halo = true}});
  }
  const std::vector<HeightTint> tints(first, first + count);
  bar.draw = [tints, field, high, &theme = context.theme, scale = context.scale](K7Grfx& g, double x,
                                                                                 double y) {
    const double left = x - field / 4;
    for (size_t i = 0; i < tints.size(); ++i) {
      const double from = left + static_cast<double>(i) * field;
      UseFill(g, {.fill = tints[i].color});
      Rectangle(g, from, y - high, from + field, y + high);
      g.Fill();
    }
    UseLine(g, theme[ThemeItem::Neatline], 0.5 * scale);
    Rectangle(g, left, y - high, left + static_cast<double>(tints.size()) * field, y + high);
    g.Stroke();
  };
  return bar;
}

}  // namespace

void TerrainLayer::Prepare(const LayerContext& context) {
  m_shown.reset();
  m_isSeen = false;
  const ThemeEntry& look = context.theme[Item()];
  if (!look.ShowsAt(context.view.NMPerPixel())) return;
  int32_t metres[std::tuple_size_v<decltype(look.tints.rows)>];
  K7Color colors[std::size(metres)];
  for (size_t i = 0; i < std::size(metres); ++i) {
    const auto& [feet, color] = look.tints.rows[i];
    metres[i] = static_cast<int32_t>(std::lround(feet / FEET_PER_METRE));
    colors[i] = {color.red, color.green, color.blue, color.alpha};
  }
  m_params.ColorMap().Init(look.tints.count, metres, colors);
  // Gentle slopes of wide views would hardly show.
  m_params.m_exaggeration = std::clamp(context.view.NMPerPixel() * 12, 1.0, 8.0);
  m_params.m_deepDarkening = 0;
  m_shown = PostsFor(m_files, context.view, 2, 0);
}

void TerrainLayer::DrawAreas(const LayerContext& context, K7MapPath&, K7Grfx& g) {
  m_isSeen = m_shown && DrawFadingRelief(*m_shown, context.view, m_params, FADE * context.scale, g);
}

void TerrainLayer::AddToLegend(const LayerContext& context, std::vector<LegendEntry>& legend) const {
  if (!m_isSeen) return;
  const HeightTints& tints = context.theme[Item()].tints;
  const Heights heights = HeightsIn(*m_shown, context.view);
  int first = 0, last = tints.count - 1;
  while (first < last && tints.rows[static_cast<size_t>(first) + 1].feet <= heights.low) ++first;
  while (first < last && tints.rows[static_cast<size_t>(last)].feet > heights.high) --last;
  // One tint alone has no limit to write a number at.
  if (heights.low <= heights.high && first < last)
    legend.push_back(TintBar(context, tints.rows.data() + first, last - first + 1));
}
