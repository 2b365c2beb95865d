// The highest terrain and the highest obstacle of graticule cells.
#pragma once

#include "layers/graticule_layer.h"
#include "layers/terrain_files.h"

#include <k7/navdata/nav_data.h>

#include <array>
#include <map>
#include <optional>

/// Feet, and by how many the ground may be higher than that.
struct TerrainHeight {
  int feet, error;
};

/// Feet by which a source may be wrong where it says something.
inline constexpr int SOURCE_ERROR = 100;

/// The highest that a cell's posts let its ground be, rounded up. A post speaks for all ground that is nearer
/// to it than to others, so those beside the cell count too. The posts are the finest that cover the whole
/// cell, and finer ones where there are some. None where any of its ground is unknown: a height that leaves
/// something out is too low. Posts farther than half a mile apart are means that know nothing of summits, and
/// do not count.
///
/// A summit may stand between posts: as ground falls from one to the next it may have risen half way towards
/// it. The error of a post is SOURCE_ERROR and half of what ground drops by from it, along its row and along
/// its column.
std::optional<TerrainHeight> HighestTerrain(const TerrainFiles& files, const GraticuleCell& cell);

/// The figure of a cell in feet, rounded up to hundreds, as the Federal Aviation Administration's
/// "Aeronautical Chart Users' Guide" has it under Maximum Elevation Figures (MEF). Both terrain and obstacle
/// have added to them by how much their source may be wrong, which is 100 ft, or for contours wide apart half
/// their interval; terrain moreover 200 ft for trees and for obstacles too low to be charted.
int MaximumElevationFigure(const TerrainHeight& terrain, std::optional<int> obstacleFeet);

/// Figures of cells, each found once.
class CellHeights {
 public:
  /// `store`, which may be null, has the obstacles. Both stay the caller's.
  CellHeights(const TerrainFiles& files, K7NavData* store) : m_files(files), m_store(store) {}

  /// Feet. None where the terrain is not known, and on open water without obstacles.
  std::optional<int> Figure(const GraticuleCell& cell);
  /// Whether there is any obstacle in the data: without one the figures are those of the ground alone, and
  /// whoever reads them must know it.
  bool KnowsObstacles() const;

 private:
  std::optional<int> Find(const GraticuleCell& cell) const;

  const TerrainFiles& m_files;
  K7NavData* m_store;
  std::map<std::array<long, 4>, std::optional<int>> m_found;  // by seconds of arc
};
