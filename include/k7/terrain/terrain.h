// K7Terrain: where elevations come from. K7TerrainK7: from region files.
#pragma once

#include <k7/export.h>
#include <k7/foundation/cache.h>
#include <k7/foundation/mutex.h>
#include <k7/foundation/string.h>
#include <k7/geodesy/latlon.h>

#include <atomic>
#include <cstdint>

class K7Array;
class K7Grfx;
class K7MapView;
class K7TerLevel;
class K7TerParams;

/// One point of a profile.
struct K7TerElevPoint {
  double lat;
  double lon;
  double distance;  ///< from the start, nautical miles
  int32_t elev;     ///< feet; K7_NO_ELEV where there is none
  int32_t unused;   ///< 0
};

/// A K7Terrain answers elevations. Hosts with data of their own derive from it.
class K7_API K7Terrain {
 public:
  virtual ~K7Terrain();

  /// Opens the terrain of a directory. Answers 0 or a code.
  virtual int Read(const char* directory) = 0;
  virtual void Clear() = 0;
  /// Answers feet, K7_NO_ELEV where there is none. `resolution` is what the caller needs, in arc-seconds
  /// between posts.
  virtual int GetElev(double lat, double lon, double resolution) = 0;

  /// Fills `profile`, an array of K7TerElevPoint, with the elevations along the shorter great circle between
  /// two positions, both ends included. The points lie evenly, at most `spacing` nautical miles apart; 0
  /// takes the distance of posts that lie `resolution` apart. Equal positions are one point.
  ///
  /// Answers the number of points; K7_ERR_BAD_ARGUMENT for an array of another width, or for numbers that
  /// are not finite or below 0 (a spacing and a resolution of 0 included); K7_ERR_OUT_OF_RANGE for more than
  /// MAX_PROFILE points; K7_ERR_INVALID_DATA between antipodes, which every great circle joins;
  /// K7_ERR_MEMORY. The array is empty then.
  int GetElevUnderLine(const K7LatLon& from, const K7LatLon& to, double resolution, double spacing,
                       K7Array& profile);
  static constexpr int MAX_PROFILE = 1 << 20;

  /// \name Drawing
  /// Here nothing is drawn.
  /// @{
  /// Draws what the view shows of the terrain. Answers 0 or a code; here K7_ERR_NOT_IMPLEMENTED.
  virtual int Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params);
  virtual void ClearSRTImages();
  /// @}

 protected:
  K7Terrain() = default;
  K7Terrain(const K7Terrain&) = default;
  K7Terrain& operator=(const K7Terrain&) = default;
};

/// The terrain of the process: seven levels of region files and a cache for the grids of their tiles.
///
///     K7TerrainK7* terrain = K7TerrainK7::Inst();
///     if (terrain && terrain->Read("/usr/share/terrain/") == 0)
///       int feet = terrain->GetElev(48.7767, -121.8144, 3);
///
/// `GetElev`, `Clear`, `ClearCache` and `Read` may be called from any number of threads at once. A lookup
/// whose grid is in memory takes no lock. Grids are read, and evicted, by one thread at a time.
///
/// A region file that is cut or replaced meanwhile gives K7_NO_ELEV, or the posts of the new file where its
/// tiles stand in the same places; `Read` takes in the new headers.
class K7_API K7TerrainK7 : public K7Terrain {
 public:
  static constexpr int LEVELS = 7;
  /// The posts per degree of a level, from 12 to 10800; `index` from 0, the coarsest.
  static int LevelResolution(int index) { return RESOLUTIONS[index]; }

  /// Answers the instance, made on first use; null only without memory.
  static K7TerrainK7* Inst();
  /// Deletes the instance, while no other thread uses it.
  static void Destroy();

  /// \name Files
  /// @{
  /// Takes in the settings "TerrainCacheSize" (MiB, at most 100), "TerrainTextureBitDepth" and
  /// "TerrainResolutionLimit" (arc-seconds; below 1: none) of `K7Options` where they are set, then the
  /// headers of all region files of the directory. It replaces what was there. A level that fails is left
  /// out. The directory's last separator may be missing.
  ///
  /// Answers 0; K7_ERR_BAD_ARGUMENT for null and the empty text, with nothing changed; K7_ERR_MEMORY with no
  /// level left.
  int Read(const char* directory) override;
  /// Names the directory that the first lookup reads. Answers 0 or K7_ERR_MEMORY.
  int SetDirectory(const char* directory);
  /// Drops all levels and grids. Lookups then answer K7_NO_ELEV, until `Read` or `SetDirectory`.
  void Clear() override;
  /// @}

  /// \name Elevations
  /// @{
  /// Asks the level of `GetLevelIndex`, then each coarser one, until one has an elevation. Where a region's
  /// header claims less than its cell of 30 degrees, the rest of the cell has 0, as sea, and coarser levels
  /// are not asked.
  int GetElev(double lat, double lon, double resolution) override;
  /// Answers the level for so many arc-seconds between posts: 6 below 1, 5 below 3, 4 below 10, 3 below 30,
  /// 2 below 100, 1 below 300, else 0.
  static int GetLevelIndex(double resolution);
  /// @}

  /// Draws what the view shows, shaded and in the colours of `params`, by `K7TerLevel::Render`: of the
  /// coarsest level that has a post for every two pixels, else the finest that has a region there, and below
  /// it, where tiles are missing, of coarser ones. Grids are read for the call and not kept in the cache.
  /// Lookups of grids in memory go on meanwhile, others wait. Answers 0 (also for nothing to draw);
  /// K7_ERR_BAD_ARGUMENT for null; K7_ERR_NOT_INITIALIZED for a view that is not set; what `Read` answers
  /// when nothing was read; the first failure of a level.
  int Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) override;
  /// Answers a level for drawing, good until the levels are dropped or read; null outside and for a level
  /// that was not read.
  K7TerLevel* GetLevel(int index);

  /// \name Limits
  /// @{
  /// Sets the finest resolution that `Read` reads, in arc-seconds; none below 1. Levels that were read stay.
  /// Answers 0.
  int SetResolutionLimit(int arcSeconds);
  /// Answers the limit in posts per degree; -1: none.
  int ResolutionLimit();
  /// Answers 6 without a limit, else the coarsest existing level that reaches it, else the finest existing
  /// one; -1 without levels.
  int LimitLevelIndex();
  /// @}

  /// \name Cache
  /// Its size counts 3 bytes a post of 2, which covers rows and headers. A tile larger than the whole cache
  /// is read for each lookup anew: give such files more room.
  /// @{
  /// Answers the cache, to look at while no other thread looks up.
  K7Cache& GetCache() { return m_cache; }
  /// Frees all cached grids.
  void ClearCache();
  void ClearSRTImages() override;
  /// @}

 protected:
  K7TerrainK7();
  K7TerrainK7(const K7TerrainK7&) = delete;
  K7TerrainK7& operator=(const K7TerrainK7&) = delete;
  ~K7TerrainK7() override;

 private:
  struct Levels;

  int ReadLevels(const char* directory);
  void ReadOptions();
  void DropLevels();
  int FindElev(int index, double lat, double lon);
  int ReadElev(int index, double lat, double lon);

  static constexpr int RESOLUTIONS[LEVELS] = {12, 40, 120, 400, 1200, 3600, 10800};

  std::atomic<Levels*> m_levels{nullptr};
  int32_t m_cacheSize = 32;  // MiB
  int32_t m_resolutionLimit = -1;
  K7Cache m_cache;
  K7Mutex m_mutex;
  bool m_isRead = false;
  K7String m_directory;

  static std::atomic<K7TerrainK7*> m_inst;
};
