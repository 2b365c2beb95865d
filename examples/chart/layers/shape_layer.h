// A layer over one shapefile set: areas, lines and points.
#pragma once

#include "layers/layer.h"
#include "layers/tiled_areas.h"

#include <k7/geometry/shp_layer.h>
#include <k7/projection/map_features.h>

class ShapeLayer : public Layer {
 public:
  ShapeLayer(ThemeItem item, std::string path) : m_item(item), m_path(std::move(path)) {}

  /// Reads the whole set. Empty, or what went wrong.
  std::string Load(Progress& progress);
  const K7ShpLayer& Set() const { return m_set; }

  std::string Name() const override;
  ThemeItem Item() const override { return m_item; }
  void Prepare(const LayerContext& context) override;
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<Picked>& found) override;
  double DataScale() const override;

 private:
  struct Line {
    int record, feature;
  };

  void MakeReady(int record);
  bool IsLakeLine(int feature) const { return m_isLakeLine[static_cast<size_t>(feature)] != 0; }
  template <class Visit>
  void VisitAreas(const LayerContext& context, Visit visit);
  template <class Visit>
  void VisitPoints(const LayerContext& context, Visit visit) const;
  Picked Describe(int record);

  ThemeItem m_item;
  std::string m_path;
  K7ShpLayer m_set;
  std::vector<int> m_features;  // one a record: its number in m_lines, or where else it is
  TiledAreas m_areas;
  K7MapFeatures m_lines;           // and points
  std::vector<char> m_isLakeLine;  // one a feature of m_lines
  std::vector<Line> m_shown;       // what the view may show of m_lines
  std::vector<K7LatLon> m_points;  // of the record that is being made ready
  std::vector<int> m_sizes;
};
