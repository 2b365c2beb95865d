// Airspaces: their boundaries with bands inside, as kind and class have them, their names and limits.
#pragma once

#include "layers/device_line.h"
#include "layers/layer.h"

#include <k7/navdata/airspace.h>
#include <k7/projection/map_features.h>

class K7NavData;

class AirspaceLayer : public Layer {
 public:
  /// The store stays the caller's and open.
  explicit AirspaceLayer(K7NavData* data) : m_data(data) {}

  std::string Name() const override { return "airspaces"; }
  ThemeItem Item() const override { return ThemeItem::Airspaces; }
  void Prepare(const LayerContext& context) override;
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void OfferLabels(const LayerContext& context, K7MapPath& path, double size, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;

 private:
  struct Airspace {
    ThemeItem look;
    std::string name, limits;
    K7NavKey key;
    bool thin;  // a class that leaves pilots the most freedom
    int feature = -1;
    std::vector<DeviceLine> outline;  // empty for one too small to show
    PixelBox bounds{};                // of what the window shows of it
  };

  void Take(K7NavType type, const K7ChartRect& area);
  int AddFeature(const K7NavKey& airspace);
  void Lay(K7MapPath& path, const K7MapView& view, Airspace& airspace);
  bool OfferName(const LayerContext& context, const Airspace& airspace, double letters,
                 LabelPlan& plan) const;

  K7NavData* m_data;
  std::vector<Airspace> m_airspaces;
  K7MapFeatures m_features;  // one an airspace
};
