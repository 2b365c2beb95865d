#include "layers/tiled_areas.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double TILE_HEIGHT = 5;
// Finer than data for charts of the world: below this tolerance nothing is left out, and nothing ranked.
constexpr double LEAST_TOLERANCE = 0.25;
// What a view shows is widened by as many pixels, so that areas are closed outside its window.
constexpr double MARGIN = 8;

// Less than half a pixel where the tile is largest on the device; in powers of two, so that views of nearly
// one scale share their points.
double ToleranceIn(const K7ShapeTile& tile, const K7MapView& view) {
  double least = view.NMPerPixel();
  for (const double lat : {tile.South(), (tile.South() + tile.North()) / 2, tile.North()})
    for (const double lon : {tile.West(), (tile.West() + tile.East()) / 2, tile.East()}) {
      double north, east;
      if (view.Scale(lat, lon, north, east) && std::min(north, east) > 0)
        least = std::min({least, north, east});
    }
  const double tolerance = std::exp2(std::floor(std::log2(least * 0.4)));
  return tolerance < LEAST_TOLERANCE ? 0 : tolerance;
}

}  // namespace

bool IsOnEarth(const K7ShpXY& p) { return std::fabs(p.y) <= 90.0001 && std::fabs(p.x) <= 540; }

K7ChartRect WidenedExtent(const K7MapView& view, double pixels) {
  double north, south, east, west;
  if (!view.GetExtent(north, south, east, west)) return {};
  const double dLat = pixels * view.NMPerPixel() / 60;
  north = std::min(north + dLat, 90.0);
  south = std::max(south - dLat, -90.0);
  const double dLon = dLat / std::max(std::cos(std::max(north, -south) * std::acos(-1.0) / 180), 1e-3);
  if (east - west + 2 * dLon >= 360) return {north, south, 180, -180};
  return {north, south, std::remainder(east + dLon, 360), std::remainder(west - dLon, 360)};
}

TiledAreas::TiledAreas() : m_tiles(K7_TILE_POLYGONS) { m_tiles.Init(TILE_HEIGHT); }

bool TiledAreas::Add(const K7ShpPoly& shape, int number) {
  // Made ready without it.
  m_shownTiles.clear();
  m_shown.Clear();
  m_numbers.clear();
  m_areas.push_back(std::make_unique<Area>());
  Area& area = *m_areas.back();
  area.number = number;
  const K7ShpXY* xy = shape.Points();
  int err;
  if (std::all_of(xy, xy + shape.GetPointCount(),
                  [](const K7ShpXY& p) { return std::fabs(p.y) <= 90 && IsOnEarth(p); })) {
    err = area.SetShape(shape);
  } else {
    std::vector<int> sizes;
    for (int part = 0; part < shape.GetPolyCount(); xy += shape.GetPolySize(part++)) {
      const size_t before = area.points.size();
      for (int i = 0; i < shape.GetPolySize(part); ++i)
        if (IsOnEarth(xy[i])) area.points.emplace_back(std::clamp(xy[i].y, -90.0, 90.0), xy[i].x);
      sizes.push_back(static_cast<int>(area.points.size() - before));
    }
    err = area.SetPoints(area.points.data(), sizes.data(), static_cast<int>(sizes.size()));
  }
  if (err == 0) err = area.CutAtSeam();
  if (err == 0) err = m_tiles.TilizePolygon(&area, &m_created);
  return err == 0;
}

bool TiledAreas::FindTiles(const K7MapView& view, std::vector<ShownTile>& tiles) const {
  K7PtrArray found;
  if (m_tiles.GetTiles(WidenedExtent(view, MARGIN), found) != 0) return false;
  for (int i = 0; i < found.Count(); ++i) {
    auto* const tile = static_cast<K7PolygonTile*>(found[i]);
    tiles.push_back({tile, ToleranceIn(*tile, view)});
  }
  return true;
}

bool TiledAreas::Show(const K7MapView& view) {
  std::vector<ShownTile> tiles;
  if (!FindTiles(view, tiles)) return false;
  if (tiles == m_shownTiles) return true;
  m_shownTiles.clear();
  if (!Join(tiles)) return false;
  m_shownTiles = std::move(tiles);
  return true;
}

bool TiledAreas::Join(const std::vector<ShownTile>& tiles) {
  m_shown.Clear();
  m_numbers.clear();
  std::vector<Piece> pieces;
  for (const ShownTile& shown : tiles)
    for (int i = 0; i < shown.tile->PieceCount(); ++i) {
      K7LineString* const string = shown.tile->Piece(i);
      if (shown.tolerance > 0 && string->Rank() != 0) return false;
      pieces.push_back({string, static_cast<const Area*>(string->Feature())->number, shown.tolerance});
    }
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const Piece& a, const Piece& b) { return a.number < b.number; });
  for (size_t i = 0; i < pieces.size(); ++i) {
    if (m_join.Add(*pieces[i].string, pieces[i].tolerance) != 0) return false;
    if (i + 1 < pieces.size() && pieces[i + 1].number == pieces[i].number) continue;
    if (m_join.AddTo(m_shown, K7_MAP_AREA) < 0) return false;
    m_numbers.push_back(pieces[i].number);
  }
  return true;
}
