// A layer over one shapefile set: areas, lines and points.
#pragma once

#include "layers/layer.h"
#include "layers/tiled_areas.h"

#include <k7/geometry/shp_layer.h>

class ShapeLayer : public Layer {
 public:
  ShapeLayer(ThemeItem item, std::string path) : m_item(item), m_path(std::move(path)) {}

  /// Reads the whole set. Empty, or what went wrong.
  std::string Load(Progress& progress);

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
  bool TakeAreas(bool& hasPosition);
  bool TakeLines(bool& hasPosition);
  bool IsLakeLine(int record) const {
    return !m_isLakeLine.empty() && m_isLakeLine[static_cast<size_t>(record)] != 0;
  }
  template <class Visit>
  void VisitAreas(const LayerContext& context, Visit visit);
  template <class Visit>
  void VisitPoints(const LayerContext& context, Visit visit);
  Picked Describe(int record);

  ThemeItem m_item;
  std::string m_path;
  K7ShpLayer m_set;
  TiledAreas m_areas;
  bool m_hasLines = false;         // or points
  std::vector<int> m_shown;        // records of lines and points that the view may show
  std::vector<char> m_isLakeLine;  // of rivers, one a record
};
