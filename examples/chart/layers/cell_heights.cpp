#include "layers/cell_heights.h"

#include <k7/navdata/obstacle.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int LEAST_RESOLUTION = 120;  // posts per degree: half a mile apart
constexpr double FEET_PER_METRE = 1 / 0.3048;
constexpr int UNCHARTED_OBSTACLES = 200;  // feet
constexpr double TOLERANCE = 1e-6;        // of a post's ground
constexpr double MOST_POSTS = 1 << 26;    // of a cell

double Turned(double lon) {
  const double turned = std::remainder(lon, 360);
  return turned == 180 ? -180 : turned;
}

K7ChartRect AreaOf(const GraticuleCell& cell, double margin) {
  const double north = std::min(cell.south + cell.height + margin, 90.0);
  const double south = std::max(cell.south - margin, -90.0);
  if (cell.width + 2 * margin >= 360) return {north, south, 180, -180};
  return {north, south, std::remainder(cell.west + cell.width + margin, 360), Turned(cell.west - margin)};
}

// What the posts of one resolution say of a cell.
class CellScan {
 public:
  CellScan(const GraticuleCell& cell, int resolution)
      : m_cell(cell),
        m_rows(1 + std::max(1, static_cast<int>(std::lround(cell.height * resolution)))),
        m_columns(1 + std::max(1, static_cast<int>(std::lround(cell.width * resolution)))),
        m_isKnown(static_cast<size_t>(m_rows) * static_cast<size_t>(m_columns)) {}

  void Take(const K7TerTile& tile) {
    const K7ChartRect& bounds = tile.GetChartRect();
    double width = bounds.East() - bounds.West();
    if (width <= 0) width += 360;
    const double rowStep = (bounds.North() - bounds.South()) / tile.RowCount();
    const double columnStep = width / tile.ColCount();
    const K7TerMeshHold hold(tile);
    // Headers are believed as they stand in the file.
    const bool isOnEarth = rowStep > 0 && bounds.South() > -100 && bounds.North() < 100 && width > 0 &&
                           width < 400 && std::fabs(bounds.West()) < 400;
    if (!hold.Rows() || !isOnEarth) return;
    // From the tile's western edge the cell lies to the east, the long way round, or begins west of it.
    const double east = m_cell.west - bounds.West() - 360 * std::floor((m_cell.west - bounds.West()) / 360);
    const double south = m_cell.south - bounds.South();
    for (const double west : {east, east - 360}) {
      const Span rows{south / rowStep, m_cell.height / rowStep, tile.RowCount()};
      const Span columns{west / columnStep, m_cell.width / columnStep, tile.ColCount()};
      Climb(hold.Rows(), rows, columns);
      Mark(hold.Rows(), rows, columns);
    }
  }

  bool IsWhole() const {
    return std::all_of(m_isKnown.begin(), m_isKnown.end(), [](char known) { return known != 0; });
  }
  /// In metres; their sum is the highest of all posts.
  double Height() const { return m_height; }
  double Error() const { return m_error; }

 private:
  // The cell along rows or columns of a tile, in those.
  struct Span {
    double from, length;
    int count;

    int First() const { return static_cast<int>(std::clamp(std::floor(from - TOLERANCE), 0.0, count * 1.0)); }
    int End() const {
      return static_cast<int>(std::clamp(std::floor(from + length + TOLERANCE) + 1, 0.0, count * 1.0));
    }
    // Of the place `share` of the way along the cell; below 0 where the tile does not reach.
    int At(double share) const {
      const double at = from + share * length;
      if (!(at >= -TOLERANCE && at <= count + TOLERANCE)) return -1;
      return std::clamp(static_cast<int>(at), 0, count - 1);
    }
  };

  void Climb(const int16_t* const* posts, const Span& rows, const Span& columns) {
    for (int row = rows.First(); row < rows.End(); ++row)
      for (int column = columns.First(); column < columns.End(); ++column)
        if (const int post = posts[row][column]; post != K7_NO_ELEV) {
          const auto drop = [&](int r, int c) {
            const bool isThere = r >= 0 && r < rows.count && c >= 0 && c < columns.count;
            return isThere && posts[r][c] != K7_NO_ELEV ? post - posts[r][c] : 0;
          };
          const int drops = std::max({0, drop(row, column - 1), drop(row, column + 1)}) +
                            std::max({0, drop(row - 1, column), drop(row + 1, column)});
          // The steps of the sea's bottom make no land.
          const double error = post > 0 ? drops / 2.0 : 0;
          if (post + error <= m_height + m_error) continue;
          m_height = post;
          m_error = error;
        }
  }

  // Places stand as close as posts, those on the cell's edges included.
  void Mark(const int16_t* const* posts, const Span& rows, const Span& columns) {
    std::vector<int> columnOf(static_cast<size_t>(m_columns));
    for (size_t i = 0; i < columnOf.size(); ++i)
      columnOf[i] = columns.At(static_cast<double>(i) / (m_columns - 1.0));
    for (int k = 0; k < m_rows; ++k) {
      const int row = rows.At(k / (m_rows - 1.0));
      if (row < 0) continue;
      char* const known = m_isKnown.data() + static_cast<ptrdiff_t>(k) * m_columns;
      for (size_t i = 0; i < columnOf.size(); ++i)
        if (columnOf[i] >= 0 && posts[row][columnOf[i]] != K7_NO_ELEV) known[i] = 1;
    }
  }

  const GraticuleCell m_cell;
  int m_rows, m_columns;
  std::vector<char> m_isKnown;
  double m_height = K7_NO_ELEV, m_error = 0;
};

}  // namespace

std::optional<TerrainHeight> HighestTerrain(const TerrainFiles& files, const GraticuleCell& cell) {
  const auto feet = [](double metres) { return static_cast<int>(std::ceil(metres * FEET_PER_METRE - 1e-9)); };
  TerrainHeight highest{4 * K7_NO_ELEV, 0};
  for (const int resolution : files.Resolutions()) {
    if (resolution < LEAST_RESOLUTION) break;
    if (cell.height * resolution * cell.width * resolution > MOST_POSTS) continue;
    CellScan scan(cell, resolution);
    for (const K7TerTile* const tile : files.TilesIn(resolution, AreaOf(cell, 1.0 / resolution)))
      scan.Take(*tile);
    const TerrainHeight found{feet(scan.Height()), feet(scan.Error()) + SOURCE_ERROR};
    if (found.feet + found.error > highest.feet + highest.error) highest = found;
    if (scan.IsWhole()) return highest;
  }
  return {};
}

int MaximumElevationFigure(const TerrainHeight& terrain, std::optional<int> obstacleFeet) {
  int feet = terrain.feet + terrain.error + UNCHARTED_OBSTACLES;
  if (obstacleFeet) feet = std::max(feet, *obstacleFeet + SOURCE_ERROR);
  return static_cast<int>(std::ceil(feet / 100.0)) * 100;
}

std::optional<int> CellHeights::Figure(const GraticuleCell& cell) {
  const auto seconds = [](double degrees) { return std::lround(degrees * 3600); };
  const std::array<long, 4> key = {seconds(cell.south), seconds(Turned(cell.west)), seconds(cell.height),
                                   seconds(cell.width)};
  const auto found = m_found.find(key);
  return found != m_found.end() ? found->second : m_found[key] = Find(cell);
}

std::optional<int> CellHeights::Find(const GraticuleCell& cell) const {
  const std::optional<TerrainHeight> terrain = HighestTerrain(m_files, cell);
  if (!terrain) return {};
  std::optional<int> obstacle;
  if (const K7NavRec* const highest = m_store ? m_store->HighestObstacle(AreaOf(cell, 0)) : nullptr)
    obstacle = static_cast<const K7Obstacle*>(highest)->elev;
  if (terrain->feet <= 0 && !obstacle) return {};
  return MaximumElevationFigure(*terrain, obstacle);
}

bool CellHeights::KnowsObstacles() const {
  return m_store && m_store->HighestObstacle(K7ChartRect(90, -90, 180, -180));
}
