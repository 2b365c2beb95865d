// A layer of the chart: one shapefile set and the way it is drawn.
#pragma once

#include "ink/progress.h"
#include "ink/style.h"
#include "layers/geo_path.h"

#include <k7/geometry/shp_file.h>

#include <memory>
#include <string>

class ShapeLayer {
 public:
  ShapeLayer(LayerKind kind, std::string path) : m_kind(kind), m_path(std::move(path)) {}

  /// Reads the whole set. Empty, or what went wrong.
  std::string Load(Progress& progress);
  /// `scale` widens lines and points on larger sheets.
  void Draw(const View& view, double scale, Progress& progress) const;
  const std::string& Path() const { return m_path; }

 private:
  bool HasPosition();
  void DrawAreas(const View& view, double scale, Progress& progress) const;
  void DrawLines(const View& view, double scale) const;
  void DrawPoints(const View& view, double scale) const;

  // Reports how far the reading has come.
  class File : public K7ShpFile {
   public:
    K7ShpRecord* NextRecord() override;
    Progress* progress = nullptr;
  };

  LayerKind m_kind;
  std::string m_path;
  // The readers' hooks are not const: shapes answer through the file.
  mutable File m_file;
};
