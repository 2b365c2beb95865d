// Terrain drawn from its levels.

#include <k7/foundation/error_string.h>
#include <k7/projection/map_view.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_region.h>
#include <k7/terrain/terrain.h>

#include "terrain/ter_elev.h"

#include <algorithm>
#include <cmath>

using k7ter::CELL_DEGREES;

namespace {

// Posts that a tile of a ring has in a row, about, and source posts that it has in a column, at most. With
// fewer than the least, the posts around it would be many times its own.
constexpr double RING_POSTS = 1024, RING_SOURCE_POSTS = 2048, LEAST_RING_POSTS = 64;

double PixelsPerDegree(const K7MapView& view) { return 60 / view.NMPerPixel(); }

// All tiles that the view shows as one: post by post as they are in the files, or, where many would share a
// pixel, with a post a pixel.
template <class ForEachTile>
int DrawWhole(const ForEachTile& forEachTile, int resolution, K7Grfx* g, const K7MapView& view,
              const K7TerParams& params) {
  K7ChartRect bounds;
  forEachTile([&](K7TerTile* tile) { bounds.BoundingUnion(bounds, tile->GetChartRect()); });
  if (bounds.IsEmpty()) return 0;
  double rows = 0, columns = 0;
  if (resolution > 2 * PixelsPerDegree(view)) {
    const double width = bounds.East() - bounds.West() + (bounds.East() < bounds.West() ? 360 : 0);
    rows = std::ceil((bounds.North() - bounds.South()) * PixelsPerDegree(view));
    columns = std::ceil(width * PixelsPerDegree(view));
    if (!(std::max(rows, columns) <= INT16_MAX)) return K7_ERR_OUT_OF_RANGE;
  }
  K7TerTileEX whole;
  int code = whole.Init(bounds, static_cast<int>(rows), static_cast<int>(columns));
  forEachTile([&](K7TerTile* tile) {
    if (!code) code = whole.AddTileForMerge(tile);
  });
  if (!code) code = whole.MergeTiles();
  return code ? code : whole.Render(g, view, params);
}

// Band by band, each in tiles that are square on the ground and have a post a pixel, or the level's.
template <class ForEachTile>
int DrawRings(const ForEachTile& forEachTile, int resolution, K7Grfx* g, const K7MapView& view,
              const K7TerParams& params) {
  const double postsPerDegree = std::min<double>(resolution, PixelsPerDegree(view));
  const double wanted = std::max(postsPerDegree / RING_POSTS, resolution / RING_SOURCE_POSTS);
  const int bands = std::max(2, static_cast<int>(std::ceil(180 * wanted)));
  const double height = 180.0 / bands;
  const int posts = static_cast<int>(std::ceil(std::max(height * postsPerDegree, LEAST_RING_POSTS)));
  const K7ChartRect extent = view.GetExtent();
  int failure = 0;
  for (int band = 0; band < bands; ++band) {
    const double south = -90 + band * height;
    if (south > extent.North() || south + height < extent.South()) continue;
    K7TerRing ring;
    if (const int code = ring.Init(south, static_cast<float>(height), posts, posts)) return code;
    forEachTile([&](K7TerTile* tile) {
      if (const int added = ring.AddTile(tile); added < 0) failure = added;
    });
    for (int i = 0; i < ring.TileCount(); ++i) {
      K7TerTileEX* const tile = ring.Tile(i);
      if (tile->MergeCount() == 0 || !extent.AreaIn(tile->GetChartRect())) continue;
      int code = tile->MergeTiles();
      if (!code) code = tile->Render(g, view, params);
      tile->Free();
      if (!failure) failure = code;
    }
  }
  return failure;
}

}  // namespace

int K7TerLevel::Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const {
  if (!g) return K7_ERR_BAD_ARGUMENT;
  if (!view.IsSet()) return K7_ERR_NOT_INITIALIZED;
  const K7ChartRect extent = view.GetExtent();
  const auto forEachTile = [&](const auto& visit) {
    for (const K7TerRegion* const region : m_regions) {
      if (!region || !region->GetChartRect().AreaIn(extent)) continue;
      for (int row = 0; row < region->RowCount(); ++row)
        for (int column = 0; column < region->ColCount(); ++column) {
          K7TerTile* const tile = region->Tile(row, column);
          if (tile && tile->GetChartRect().AreaIn(extent)) visit(tile);
        }
    }
  };
  const int code = DrawWhole(forEachTile, m_resolution, g, view, params);
  return code == K7_ERR_OUT_OF_RANGE ? DrawRings(forEachTile, m_resolution, g, view, params) : code;
}

// Whether there is a tile for every place of an area, which may touch what it does not reach.
bool K7TerLevel::Covers(const K7ChartRect& area) const {
  for (int slot = 0; slot < BANDS * COLUMNS; ++slot) {
    const int south = slot / COLUMNS * CELL_DEGREES - 90, north = south + CELL_DEGREES;
    const int west = slot % COLUMNS * CELL_DEGREES - 180, east = west + CELL_DEGREES;
    if (!area.AreaIn(north, south, east, west)) continue;
    const K7TerRegion* const region = m_regions[slot];
    if (!region) return false;
    const K7ChartRect& bounds = region->GetChartRect();
    if ((bounds.North() < north && area.AreaIn(north, bounds.North(), east, west)) ||
        (bounds.South() > south && area.AreaIn(bounds.South(), south, east, west)) ||
        (bounds.East() < east && area.AreaIn(north, south, east, bounds.East())) ||
        (bounds.West() > west && area.AreaIn(north, south, bounds.West(), west)))
      return false;
    for (int row = 0; row < region->RowCount(); ++row)
      for (int column = 0; column < region->ColCount(); ++column) {
        const double tileSouth = bounds.South() + row * region->TileHeight();
        const double tileWest = bounds.West() + column * region->TileWidth();
        if (!region->Tile(row, column) && area.AreaIn(tileSouth + region->TileHeight(), tileSouth,
                                                      tileWest + region->TileWidth(), tileWest))
          return false;
      }
  }
  return true;
}

int K7Terrain::Render(K7Grfx*, const K7MapView&, const K7TerParams&) { return K7_ERR_NOT_IMPLEMENTED; }

int K7TerrainK7::Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) {
  if (!g) return K7_ERR_BAD_ARGUMENT;
  if (!view.IsSet()) return K7_ERR_NOT_INITIALIZED;
  const K7LockGuard lock(m_mutex);
  if (!m_isRead) {
    if (const int code = Read(m_directory)) return code;
  }
  const K7ChartRect extent = view.GetExtent();
  // The coarsest that has a post for every two pixels, else the finest.
  int finest = -1;
  for (int i = 0; i < LEVELS && !(finest >= 0 && RESOLUTIONS[finest] * 2 >= PixelsPerDegree(view)); ++i) {
    const K7TerLevel* const level = GetLevel(i);
    if (level && level->SpansRect(extent)) finest = i;
  }
  // What it lacks shows the coarser ones, which are drawn before it.
  int first = finest;
  while (first > 0 && !(GetLevel(first) && GetLevel(first)->Covers(extent))) --first;
  int failure = 0;
  for (int i = std::max(first, 0); i <= finest; ++i) {
    const K7TerLevel* const level = GetLevel(i);
    const int code = level ? level->Render(g, view, params) : 0;
    if (!failure) failure = code;
  }
  return failure;
}
