// The areas of a set in tiles, so that a view looks only at those that it shows.
#pragma once

#include <k7/geometry/tile_join.h>
#include <k7/geometry/tiling.h>
#include <k7/projection/map_features.h>
#include <k7/projection/map_view.h>

#include <memory>
#include <utility>
#include <vector>

bool IsOnEarth(const K7ShpXY& p);
/// What a view shows and so many pixels about it.
K7ChartRect WidenedExtent(const K7MapView& view, double pixels);

class TiledAreas {
 public:
  TiledAreas();

  /// Cuts the area of record `number` into tiles. The shape must stay as it is. False without memory.
  bool Add(const K7ShpPoly& shape, int number);

  /// Makes ready what a view shows: the pieces of its tiles, without the points that depart by less than half
  /// a pixel, joined to one feature a record again. The next view that shows the same tiles as finely finds
  /// it ready. False without memory.
  bool Show(const K7MapView& view);
  const K7MapFeatures& Shown() const { return m_shown; }
  /// The record of a feature.
  int NumberOf(int feature) const { return m_numbers[static_cast<size_t>(feature)]; }

 private:
  struct Area : K7PolyPolygon {
    int number = 0;
    std::vector<K7LatLon> points;  // where those of the record are not all on the earth
  };
  struct Piece {
    K7LineString* string;
    int number;
    double tolerance;  // NM
  };
  struct ShownTile {
    K7PolygonTile* tile;
    double tolerance;
    bool operator==(const ShownTile&) const = default;
  };

  bool FindTiles(const K7MapView& view, std::vector<ShownTile>& tiles) const;
  bool Join(const std::vector<ShownTile>& tiles);

  K7PolygonTileMngr m_tiles;
  K7PolyPtMngr m_created;
  std::vector<std::unique_ptr<Area>> m_areas;
  std::vector<ShownTile> m_shownTiles;
  K7MapFeatures m_shown;
  std::vector<int> m_numbers;
  K7TileJoin m_join;
};
