#include "layers/earth_layer.h"

void EarthLayer::DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  const K7MapView& view = context.view;
  // What a tilted eye sees beside the earth is sky; a map that ends leaves the sheet.
  UseFill(g, context.theme[view.IsTilted() ? ThemeItem::Sky : ThemeItem::Paper]);
  g.MoveTo(0, 0);
  g.LineTo(view.Width(), 0);
  g.LineTo(view.Width(), view.Height());
  g.LineTo(0, view.Height());
  g.ClosePath();
  g.Fill();
  UseFill(g, context.theme[ThemeItem::Sea]);
  if (path.WholeMap(&g) > 0) g.Fill();
}

void EarthLayer::DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) {
  UseLine(g, context.theme[ThemeItem::Limb], context.scale);
  if (path.WholeMap(&g) > 0) g.Stroke();
}
