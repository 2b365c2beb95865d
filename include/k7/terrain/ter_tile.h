// K7TerTile: one grid of terrain elevations. K7TerMeshHold: keeps a tile's grid in memory.
#pragma once

#include <k7/export.h>
#include <k7/foundation/cache.h>
#include <k7/projection/chart_rect.h>

#include <atomic>
#include <cstdint>

class K7File;
class K7Grfx;
class K7MapView;
class K7TerMesh;
class K7TerParams;
class K7TerRegion;
enum K7TerMeshKind : int;
struct K7TerGrid;

/// Stands in grids for a post without data, and is what a lookup answers that finds no elevation.
inline constexpr int K7_NO_ELEV = -5000;

/// A K7TerTile is the header of a tile and, once it was read, its grid of elevations: whole metres, row 0 the
/// southernmost, column 0 the westernmost. Bounds are degrees; east below west means across 180.
///
/// Elevations may be asked for from any number of threads while others read, evict or free the grid of a
/// tile that stands in a region. Everything else is for one thread at a time. A tile must have left its
/// cache when it is destroyed.
class K7_API K7TerTile : public K7CacheObj {
 public:
  K7TerTile() = default;
  /// Makes a tile for writing, without a grid. `rows` and `columns` lie within 1 ... 32767.
  K7TerTile(const K7ChartRect& bounds, int rows, int columns);
  K7TerTile(const K7TerTile&) = delete;
  K7TerTile& operator=(const K7TerTile&) = delete;
  virtual ~K7TerTile();

  /// \name Header
  /// @{
  const K7ChartRect& GetChartRect() const { return m_bounds; }
  int RowCount() const { return m_rows; }
  int ColCount() const { return m_columns; }
  /// Answer where the compressed grid stands in the region's file, and its bytes there.
  int GetOffset() const { return m_offset; }
  int GetCompSize() const { return m_compSize; }
  void SetOffset(int offset) { m_offset = offset; }
  /// Answers what the tile counts for in a cache: (rows x columns + 24) x 3, INT32_MAX at most.
  int Size() const;

  /// Read and write the 44 bytes of the header at the file's position. Answer 0, K7_ERR_BAD_ARGUMENT for
  /// null, or K7_ERR_FILE_IO. Reading drops the grid, and believes everything: what follows from a header is
  /// checked where it is used.
  int ReadHeader(K7File* file);
  int WriteHeader(K7File* file) const;
  /// @}

  /// \name Grid
  /// @{
  /// Reads and inflates the grid, from an open file or from that of the region, which it opens and closes.
  /// A former grid is replaced on success only.
  ///
  /// Answers 0; K7_ERR_BAD_ARGUMENT for null, a tile without a region or a file that does not open;
  /// K7_ERR_OUT_OF_RANGE (open file) or K7_ERR_INVALID_DATA (own file) for a compressed size below 1;
  /// K7_ERR_FILE_IO for a negative offset or when the file ends before the data do; K7_ERR_INVALID_DATA for
  /// a stream that is damaged or does not make exactly rows x columns posts; K7_ERR_MEMORY.
  int Read(K7File* file);
  int Read();
  /// Compresses the grid, writes it at the file's position and keeps the compressed size. The caller sets
  /// the offset. Answers 0, K7_ERR_BAD_ARGUMENT for a null file or a tile without a grid, K7_ERR_INVALID_DATA
  /// for a failed compression, K7_ERR_FILE_IO or K7_ERR_MEMORY.
  int Write(K7File* file);
  /// Makes a grid without data to fill through `GetMesh`. Answers 0, K7_ERR_INVALID_DATA for rows or columns
  /// below 1, or K7_ERR_MEMORY.
  int AllocMesh();
  /// Answers the rows of the grid, `GetMesh()[row][column]`; null while it is absent. They are good until
  /// the grid is freed or evicted; while other threads look up, ask a `K7TerMeshHold` instead.
  int16_t** GetMesh() const;
  /// Free the grid. The header stays, and a later lookup may read the grid again.
  void Clear();
  void Free() { Clear(); }
  /// @}

  /// Answers the elevation of the post whose cell holds the position, in feet when `inFeet` is 1, else in
  /// metres. A cell spans a row's share of the height and a column's share of the width; the north and the
  /// east edge belong to the last ones. With `readIfNeeded` an absent grid is read; one that failed is not
  /// tried again for a second. K7_NO_ELEV stands for
  /// positions outside, posts without data and everything that fails. Feet are trunc(m x 3.2808399 + 0.5),
  /// also below zero: -10 m is -32 ft.
  int GetElev(double lat, double lon, bool readIfNeeded, uint8_t inFeet);
  /// Answers whether the tile shares longitudes with `rect`, of which an end must lie in the tile; latitudes
  /// are not compared. False for null.
  bool Overlaps(const K7ChartRect* rect) const;

  const K7TerRegion* Region() const { return m_region; }

  /// \name Caching
  /// @{
  int CacheSize() const override { return Size(); }
  void FreeContents() override { Clear(); }
  /// Answers true unless the grid served a lookup since this was last asked: of tiles of one age, those in
  /// use stay.
  bool CanFree() const override;
  /// @}

  /// \name Drawing
  /// Of the tile alone. A K7TerTileEX knows the posts around it, and so meets its neighbours without a seam.
  /// Grids that are absent are read, for the call alone, by all but `SmoothMesh`.
  /// @{
  /// Answers whether there is a grid.
  virtual bool ValidMesh() const { return GetMesh() != nullptr; }
  virtual void FreeMesh() { Clear(); }
  /// Takes the noise out of the grid: each post becomes the mean of it and its neighbours with the weights
  /// 1 2 1 in both directions, those of the edges along them only. A grid that is freed and read again is as
  /// in the file. Answers 0, K7_ERR_NOT_INITIALIZED without a grid, or K7_ERR_MEMORY.
  virtual int SmoothMesh();
  /// Makes the shaded picture from what there is; see `GenShadedRelief`.
  virtual int Generate(const K7TerParams* params);
  /// Makes the shaded picture, a pixel a post or `width` by `height` pixels, as `K7TerRelief::Image` does. It
  /// stays until `ClearSRTImage` and counts in no cache. Answers 0; K7_ERR_BAD_ARGUMENT for null, sizes below
  /// 1 and more than 2^24 pixels; what `K7TerRelief::Init` answers; K7_ERR_MEMORY. Failed, the former picture
  /// stays.
  int GenShadedRelief(const K7TerParams* params);
  int GenShadedRelief(const K7TerParams* params, int width, int height);
  /// Answers the picture, rows from the north, 0xAARRGGBB; null when there is none.
  const uint32_t* SRTImage() const { return m_image; }
  int SRTWidth() const { return m_imageWidth; }
  int SRTHeight() const { return m_imageHeight; }
  void ClearSRTImage();
  /// Makes triangles, as `K7TerMesh::Create` does.
  int CreateMesh(K7TerMesh& mesh, K7TerMeshKind kind, double exaggeration) const;
  /// Draws the tile where the view shows it. Answers what `K7TerRelief::Init` and its `Render` do.
  int Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const;
  /// @}

  /// Bits per pixel of textures, the setting "TerrainTextureBitDepth"; 0 when it was never read. Set while
  /// nothing draws.
  static int32_t m_textureBitDepth;

 protected:
  /// Sets what the constructor takes, of a tile without a grid.
  void SetHeader(const K7ChartRect& bounds, int rows, int columns);

 private:
  friend class K7TerRegion;
  friend class K7TerMeshHold;
  friend class K7TerrainK7;

  int ReadGrid(K7File* file, K7TerGrid*& grid) const;
  int ReadGrid(K7TerGrid*& grid) const;
  int TryElev(double lat, double lon, bool inFeet) const;
  bool IsResting() const;
  int ReadElev(double lat, double lon, bool inFeet);
  void Publish(K7TerGrid* grid);

  K7ChartRect m_bounds;
  int32_t m_offset = 0;
  int32_t m_compSize = 0;
  int16_t m_rows = 0;
  int16_t m_columns = 0;
  mutable std::atomic<bool> m_isUsed{false};  // by a lookup, since CanFree was last asked
  std::atomic<int64_t> m_restUntil{0};        // no lookup reads before then, after one that failed
  std::atomic<K7TerGrid*> m_grid{nullptr};
  K7TerRegion* m_region = nullptr;
  uint32_t* m_image = nullptr;
  int m_imageWidth = 0;
  int m_imageHeight = 0;
};

/// A K7TerMeshHold has the rows of a tile's grid for as long as it lives, whatever other threads read, evict
/// or free meanwhile. A tile of a region whose grid is absent is read for this hold alone and stays as it
/// is. The tile itself must stay. Held grids do not count in a cache: hold few, and not for long.
class K7_API K7TerMeshHold {
 public:
  explicit K7TerMeshHold(const K7TerTile& tile);
  K7TerMeshHold(const K7TerMeshHold&) = delete;
  K7TerMeshHold& operator=(const K7TerMeshHold&) = delete;
  ~K7TerMeshHold();

  /// Answers `Rows()[row][column]` in metres; null when the grid cannot be had.
  const int16_t* const* Rows() const;

 private:
  K7TerGrid* m_grid = nullptr;
};
