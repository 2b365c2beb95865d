// K7TerLevel: the region files of one resolution.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/foundation/mutex.h>
#include <k7/terrain/ter_ring.h>

#include <cstdint>

class K7Cache;
class K7ChartRect;
class K7Grfx;
class K7MapView;
class K7String;
class K7TerRegion;
class K7TerTile;

/// A K7TerLevel has the world's terrain in one resolution: a slot for each cell of 30 by 30 degrees, in bands
/// from the south pole, in a band from 180 degrees eastwards. Cells without a file are empty. It owns its
/// regions.
///
/// Elevations may be asked for from any number of threads. Reading and clearing are for one, while no other
/// uses the level.
class K7_API K7TerLevel {
 public:
  static constexpr int BANDS = 6;
  static constexpr int COLUMNS = 12;

  /// Takes the posts per degree, and the cache for grids that lookups read, which must outlive the level,
  /// with the lock that guards it (locks copy as the same lock). Without a cache grids stay until the level
  /// is cleared.
  explicit K7TerLevel(int resolution, K7Cache* cache = nullptr, const K7Mutex& cacheMutex = K7Mutex());
  K7TerLevel(const K7TerLevel&) = delete;
  K7TerLevel& operator=(const K7TerLevel&) = delete;
  ~K7TerLevel();

  int Resolution() const { return m_resolution; }
  int MaxResolution() const { return m_maxResolution; }
  /// Sets the limit, in posts per degree, above which `Read` reads nothing; none for 0 and below.
  void SetMaxResolution(int limit) { m_maxResolution = limit; }

  /// \name Files
  /// @{
  /// Reads the headers of all region files. A directory, which ends in its separator, goes before those
  /// behind it. What the level held is dropped; a file that cannot be read leaves its cell empty. Answers 0,
  /// K7_ERR_OUT_OF_RANGE for a level above the limit, or K7_ERR_MEMORY.
  int Read(const K7StrArray& directories);
  /// Finds the file of the cell with this south-west corner, such as "1200_N30W090.ter", in the first
  /// directory that has it. Answers false, with `path` empty, when none does.
  bool findTerFile(const K7StrArray& directories, int south, int west, K7String& path) const;
  void Clear();
  /// @}

  /// \name Contents
  /// @{
  /// Answers null for an empty cell and outside.
  K7TerRegion* Region(int band, int column) const;
  /// Answers null for a position whose cell is empty. Latitude 90 and longitude 180 lie in no cell.
  K7TerRegion* RegionAt(double lat, double lon) const;
  /// Answers whether a region shares a point with `rect`.
  bool SpansRect(const K7ChartRect& rect) const;
  /// Answers the elevation in feet, as `K7TerRegion::GetElev`, reading what it needs; K7_NO_ELEV where the
  /// level has no region.
  int GetElev(double lat, double lon);
  /// @}

  /// \name Caching and drawing
  /// @{
  /// Enters a tile into the level's cache as the newest, which evicts others to make room: before its grid
  /// is read, so that the cache keeps its size. Answers whether it is cached now; false without a cache, for
  /// null and for a tile larger than the cache.
  bool AddToCache(K7TerTile* tile);
  /// Drops the shaded-relief images of all tiles.
  void ClearSRTImages();
  /// Draws what the view shows of the level: all its tiles there as one, so that no edge of theirs shows,
  /// with the files' posts or a post a pixel; where those are more than a K7TerTileEX can have, as on maps of
  /// the world, in rings of tiles. That reads every tile that is shown: take a level for the scale. Answers 0
  /// (also for nothing to draw); K7_ERR_BAD_ARGUMENT for null; K7_ERR_NOT_INITIALIZED for a view that is not
  /// set; the first failure of `K7TerTileEX::MergeTiles` and its `Render`.
  int Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const;
  /// Answers the rings of the level; there are none until `K7TerRings::Init`, and again after `Clear`.
  K7TerRings& Rings() { return m_rings; }
  /// Answers the ring of a latitude, as `K7TerRings::GetTerRing`.
  K7TerRing* GetTerRing(double lat) const { return m_rings.GetTerRing(lat); }
  /// @}

 private:
  friend class K7TerRegion;
  friend class K7TerrainK7;

  bool Covers(const K7ChartRect& area) const;
  K7TerRegion* FindRegion(double lat, double lon) const;
  int TryElev(double lat, double lon, K7TerTile*& unread) const;
  int ReadElev(K7TerTile& tile, double lat, double lon);

  int32_t m_resolution;
  int32_t m_maxResolution = 0;
  K7TerRegion* m_regions[BANDS * COLUMNS] = {};
  K7Mutex m_mutex;
  K7Cache* m_cache;
  K7Mutex m_cacheMutex;
  K7TerRings m_rings;
};
