// K7TerRegion: one region file, a matrix of terrain tiles.
#pragma once

#include <k7/export.h>
#include <k7/foundation/mutex.h>
#include <k7/foundation/string.h>
#include <k7/projection/chart_rect.h>

#include <cstdint>

class K7Cache;
class K7File;
class K7TerLevel;
class K7TerTile;

/// A K7TerRegion is a region file in memory: its header and the headers of its tiles, in a matrix whose row 0
/// is the southern edge and whose column 0 the western one. It owns its tiles. Bounds are degrees; east below
/// west means across 180, and both sides of it are served.
///
/// Elevations may be asked for from any number of threads. Reading, writing and clearing are for one thread,
/// while no other uses the region.
class K7_API K7TerRegion {
 public:
  K7TerRegion() = default;
  K7TerRegion(const K7TerRegion&) = delete;
  K7TerRegion& operator=(const K7TerRegion&) = delete;
  ~K7TerRegion();

  /// \name Files
  /// @{
  /// Reads header and tile headers; grids are read when elevations are asked for. What the region held is
  /// dropped. Of tiles that fall into one cell the last counts.
  ///
  /// Answers 0; K7_ERR_BAD_ARGUMENT for null; K7_ERR_FILE_IO when the file does not open or ends within what
  /// its header promises; K7_ERR_INVALID_DATA for a matrix of less than no or more than MAX_CELLS cells, or a
  /// tile whose centre lies outside it (the tiles before it stay); K7_ERR_MEMORY.
  int Read(const char* path);
  /// Writes the 72 bytes of the header and the headers of all tiles in the matrix, row by row, at the file's
  /// position. Grids are written before, with `K7TerTile::Write`; offset and count of the tile table go out
  /// as they were set. Answers 0, K7_ERR_BAD_ARGUMENT for null, or K7_ERR_FILE_IO.
  int Write(K7File* file) const;
  /// @}

  /// \name Making
  /// @{
  /// Sets what the header says of the matrix and drops the tiles. Sizes are degrees.
  void Init(const K7ChartRect& bounds, int rows, int columns, double tileHeight, double tileWidth);
  /// Makes the matrix, without tiles; those of a former one are dropped. Answers 0, K7_ERR_INVALID_DATA
  /// (see `Read`) or K7_ERR_MEMORY.
  int AllocTilesMatrix();
  /// Puts the tile into the cell of a position and takes it over; the tile that stood there is deleted.
  /// Answers false, and leaves the tile to the caller, for null and a position outside.
  bool SetTile(double lat, double lon, K7TerTile* tile);
  /// Set where the tile headers stand in the file and how many there are.
  void SetTileTable(int offset, int count);
  /// The two leading words of the header, kept for whoever gives them a meaning.
  void SetWords(int32_t first, int32_t second);
  /// Drops tiles, matrix and path; the region is as new.
  void Clear();
  /// Drops the shaded-relief images of all tiles.
  void ClearSRTImages();
  /// @}

  /// \name Contents
  /// @{
  const K7ChartRect& GetChartRect() const { return m_bounds; }
  const char* Path() const { return m_path; }
  int RowCount() const { return m_rows; }
  int ColCount() const { return m_columns; }
  double TileHeight() const { return m_tileHeight; }
  double TileWidth() const { return m_tileWidth; }
  int TileTableOffset() const { return m_tableOffset; }
  /// Answers the number of tile headers that the file states; cells of the matrix may be empty.
  int TileCount() const { return m_tileCount; }
  int32_t FirstWord() const { return m_words[0]; }
  int32_t SecondWord() const { return m_words[1]; }
  /// Answers the matrix, `GetTiles()[row][column]`; null without one.
  K7TerTile*** GetTiles() const { return m_tiles; }
  /// Answers null for an empty cell, one outside, and without a matrix.
  K7TerTile* Tile(int row, int column) const;
  /// Answers the tile of a position; null for an empty cell and a position outside.
  K7TerTile* GetTile(double lat, double lon) const;
  /// @}

  /// Answers the elevation in feet. A position outside the bounds has 0, not K7_NO_ELEV: callers take sea
  /// there and look no further. K7_NO_ELEV stands for a position outside the matrix, an empty cell, and what
  /// `K7TerTile::GetElev` says so. An absent grid is read for a `level`, whose cache takes the tile; with
  /// null it is not read.
  int GetElev(double lat, double lon, K7TerLevel* level);

  /// The cells that a matrix may have: a region of 30 degrees in tiles of a fortieth of a degree, and more.
  static constexpr int MAX_CELLS = 1 << 21;

 private:
  friend class K7TerTile;
  friend class K7TerLevel;

  int CellCount() const { return m_tiles ? m_rows * m_columns : 0; }
  bool Crosses180() const;
  bool InBounds(double lat, double lon) const;
  bool FindCell(double lat, double lon, int& row, int& column) const;
  int TryElev(double lat, double lon, K7TerTile*& unread) const;
  int ReadHeader(K7File* file);
  int ReadTiles(K7File* file);
  int ReadTile(K7File* file);
  void FreeTiles();
  void LeaveCache(K7Cache& cache);

  int32_t m_words[2] = {0, 0};
  K7String m_path;
  int32_t m_rows = 0;
  int32_t m_columns = 0;
  double m_tileHeight = 0;
  double m_tileWidth = 0;
  K7ChartRect m_bounds;
  int32_t m_tableOffset = 72;
  int32_t m_tileCount = 0;
  K7TerTile*** m_tiles = nullptr;  // rows into the cells behind them, one block
  K7Mutex m_mutex;                 // reading, the matrix, and which grid a tile has
};
