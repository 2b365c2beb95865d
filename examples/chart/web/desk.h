// All that one thread has to answer with. Files are opened when they are first wanted.
#pragma once

#include "route/airway_graph.h"
#include "web/map_painter.h"
#include "web/tile_cache.h"

class Desk {
 public:
  /// The data stay the caller's and must outlive the desk; so do the tiles that all desks share, if any.
  explicit Desk(const MapData& data, TileCache* tiles = nullptr)
      : m_data(data), m_tiles(tiles), m_painter(data) {}

  const MapData& Data() const { return m_data; }
  TileCache* Tiles() { return m_tiles; }
  MapPainter& Painter() { return m_painter; }
  /// Null without navigation data; `problem` in words when they cannot be read.
  NavStore* Store(std::string& problem);
  /// The airways of the store. Null as above.
  const AirwayGraph* Airways(std::string& problem);

 private:
  const MapData& m_data;
  TileCache* const m_tiles;
  MapPainter m_painter;
  std::unique_ptr<NavStore> m_store;
  std::unique_ptr<AirwayGraph> m_airways;
};
