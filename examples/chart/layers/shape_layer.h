// A layer over one shapefile set: areas, lines and points.
#pragma once

#include "layers/layer.h"
#include "layers/tiled_areas.h"

#include <k7/geometry/shp_file.h>
#include <k7/projection/map_features.h>

class ShapeLayer : public Layer {
 public:
  ShapeLayer(ThemeItem item, std::string path) : m_item(item), m_path(std::move(path)) {}

  /// Reads the whole set. Empty, or what went wrong.
  std::string Load(Progress& progress);

  std::string Name() const override;
  ThemeItem Item() const override { return m_item; }
  void DrawAreas(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void DrawLines(const LayerContext& context, K7MapPath& path, K7Grfx& g) override;
  void KeepSymbols(const LayerContext& context, LabelPlan& plan) override;
  void Pick(const LayerContext& context, K7MapPath& path, double dx, double dy,
            std::vector<std::string>& found) override;
  double DataScale() const override;

 private:
  // Reports how far the reading has come.
  class File : public K7ShpFile {
   public:
    K7ShpRecord* NextRecord() override;
    Progress* progress = nullptr;
  };

  bool AddFeature(const K7ShpObj& shape, int record, bool& hasPosition);
  bool IsLakeLine(int feature) const { return m_isLakeLine[static_cast<size_t>(feature)] != 0; }
  template <class Visit>
  void VisitAreas(const LayerContext& context, Visit visit);
  template <class Visit>
  void VisitPoints(const LayerContext& context, Visit visit) const;
  std::string Describe(int feature) const;

  ThemeItem m_item;
  std::string m_path;
  File m_file;
  K7MapFeatures m_features;  // one a record; those of areas are empty
  TiledAreas m_areas;
  std::vector<char> m_isLakeLine;
  std::vector<K7LatLon> m_points;  // of the record that is being added
  std::vector<int> m_sizes;
};
