// Elevation grids in the formats in which they are published.
#pragma once

#include "grid/grid_axis.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A part of a grid. Row 0 is the southernmost, column 0 the westernmost.
struct GridWindow {
  int row = 0;
  int col = 0;
  int rows = 0;
  int cols = 0;
};

/// A grid on the disk. Opening one reads no more than where its posts stand, save for formats that do not say
/// it in advance.
class ElevGrid {
 public:
  virtual ~ElevGrid() = default;
  ElevGrid(const ElevGrid&) = delete;
  ElevGrid& operator=(const ElevGrid&) = delete;

  const std::string& Path() const { return m_path; }
  const GridAxis& Lats() const { return m_lats; }
  const GridAxis& Lons() const { return m_lons; }
  /// Metres of a window within the grid, row after row, NaN where there is no elevation. Empty, or what went
  /// wrong, in one line.
  virtual std::string Read(const GridWindow& window, std::vector<float>& metres) = 0;
  /// Gives back what reading has kept in memory.
  virtual void Release() {}

 protected:
  explicit ElevGrid(std::string path) : m_path(std::move(path)) {}
  /// Empty, or what is wrong with where the posts are said to stand.
  std::string SetAxes(GridAxis lats, GridAxis lons);

 private:
  std::string m_path;
  GridAxis m_lats;
  GridAxis m_lons;
};

/// Opens a grid by what its name ends in. Empty, or what is wrong, in one line.
std::string OpenGrid(const std::string& path, std::unique_ptr<ElevGrid>& grid);
/// A name that `OpenGrid` knows the format of.
bool IsGridName(const std::string& path);

/// Stands in 16-bit grids, and in what is made of them, where there is no elevation, whether they say so or
/// not.
inline constexpr int VOID_POST = -32768;
/// Metres that 16 bits hold; false for what is not a number.
inline bool IsPost(double metres) { return metres >= VOID_POST && metres <= 32767; }

/// Elevations of a whole grid, of formats that cannot be read in parts.
class LoadedPosts {
 public:
  /// Row 0 is the southernmost.
  void Set(std::vector<float> metres, int cols);
  bool IsEmpty() const { return m_metres.empty(); }
  void Read(const GridWindow& window, std::vector<float>& metres) const;
  void Clear() { m_metres = std::vector<float>(); }

 private:
  std::vector<float> m_metres;
  size_t m_cols = 0;
};
