// A picture of the world, or of a part of it, under the other layers.
#pragma once

#include "layers/layer.h"

#include <k7/raster/bitmap.h>

#include <memory>

/// What a picture shows, in degrees: rows of equal latitude and columns of equal longitude, equally far
/// apart. From `west` eastwards to `east`, across 180 degrees where it is not the larger.
struct UnderlayBounds {
  double west = -180, south = -90, east = 180, north = 90;
};

class UnderlayLayer : public Layer {
 public:
  /// Takes an image file of a kind that `K7Bitmap` reads; its transparent pixels show what lies below.
  explicit UnderlayLayer(std::string path, const UnderlayBounds& bounds = {});

  /// Empty, or what went wrong.
  std::string Load(Progress& progress);

  std::string Name() const override { return "underlay"; }
  ThemeItem Item() const override { return ThemeItem::Underlay; }
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;

 private:
  const K7Bitmap* LevelFor(const K7MapView& view);

  std::string m_path;
  UnderlayBounds m_bounds;
  double m_width;  // degrees of longitude
  // The picture, and each half as wide and high as the one before, as far as they were needed.
  std::vector<std::unique_ptr<K7Bitmap>> m_levels;
};
