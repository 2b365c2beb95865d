// K7TerRing: a band of latitudes, all around the earth, in tiles for drawing. K7TerRings: all bands of a
// level.
#pragma once

#include <k7/export.h>
#include <k7/foundation/mutex.h>
#include <k7/terrain/ter_tile_ex.h>

#include <cstdint>

/// A K7TerRing divides a band of latitudes into tiles that stay roughly square on the ground: beyond 55
/// degrees they grow wider. It owns its tiles, which are good until `Init` and `Clear`. Setting up and
/// finding are locked; what a tile allows, its class says.
class K7_API K7TerRing {
 public:
  /// More tiles no ring has.
  static constexpr int MAX_TILES = 1 << 16;

  K7TerRing() = default;
  K7TerRing(const K7TerRing&) = delete;
  K7TerRing& operator=(const K7TerRing&) = delete;
  ~K7TerRing();

  /// Makes the tiles of the band from `south` up, degrees, with `rows` and `columns` of posts each as
  /// `K7TerTileEX::Init` takes them. Tiles are `height` wide where the band's middle lies within 55 degrees
  /// of the equator; beyond, wider by 1 / cos of the middle's latitude, at most 10 times, and then as much
  /// more as makes their number divide 360, at least three. The first begins at longitude 0. Answers 0;
  /// K7_ERR_INVALID_DATA for a band outside the globe, without height, of more than MAX_TILES tiles or of
  /// posts that no tile can have; K7_ERR_MEMORY. Failed, the ring has no tiles.
  int Init(double south, float height, int rows, int columns);
  /// Drops the tiles.
  void Clear();

  double South() const { return m_south; }
  float Height() const { return m_height; }
  float GetTileWidth() const { return m_tileWidth; }
  /// Answers the tiles' width over the band's height.
  float GetLatScaleFactor() const { return m_scale; }
  int TileCount() const;
  /// Answers tile i, eastwards from longitude 0; null outside.
  K7TerTileEX* Tile(int i) const;
  /// Answers the tile with west <= lon < east; null when there is none, as for 180 exactly where a tile ends
  /// there, and for what is not a number.
  K7TerTileEX* GetTile(double lon) const;
  /// Adds a source to every tile that it shares ground with or lies so close to that it has posts of its
  /// surroundings. Answers the number of tiles, K7_ERR_BAD_ARGUMENT for null, or K7_ERR_MEMORY.
  int AddTile(K7TerTile* source);
  /// Draws the tiles that the view shows and that have grids. Answers 0 or the first failure.
  int Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const;

 private:
  K7TerTileEX* Find(double lon) const;
  int MakeTiles(int rows, int columns);
  void FreeTiles();

  double m_south = 0;
  float m_height = 0;
  float m_tileWidth = 0;
  float m_scale = 1;
  int32_t m_count = 0;
  K7TerTileEX** m_tiles = nullptr;
  mutable K7Mutex m_mutex;
};

/// The rings of a level: bands of one height from the south pole to the north pole. Setting up and finding
/// are locked; rings are good until `Init` and `Clear`.
class K7_API K7TerRings {
 public:
  K7TerRings() = default;
  K7TerRings(const K7TerRings&) = delete;
  K7TerRings& operator=(const K7TerRings&) = delete;
  ~K7TerRings();

  /// Makes rings of `height` degrees, 0.1 to 180, a whole number of which fills the globe. Answers as
  /// `K7TerRing::Init`; failed, there are none.
  int Init(float height, int rows, int columns);
  void Clear();
  int Count() const;
  /// Answers ring i from the south; null outside.
  K7TerRing* Ring(int i) const;
  /// Answers the first ring with south <= lat < south + height; null when there is none, as for 90.
  K7TerRing* GetTerRing(double lat) const;

 private:
  void FreeRings();

  float m_height = 0;
  int32_t m_count = 0;
  K7TerRing** m_rings = nullptr;
  mutable K7Mutex m_mutex;
};
