// The ground of every chart: what is no map, the sea, and the edge of the map.
#pragma once

#include "layers/layer.h"

class EarthLayer : public Layer {
 public:
  std::string Name() const override { return "sea"; }
  ThemeItem Item() const override { return ThemeItem::Sea; }
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
};
