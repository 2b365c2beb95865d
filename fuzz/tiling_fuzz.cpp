// Polylines and polygons of any numbers through tiles. The input chooses a grid and a tolerance, and then
// parts; a byte in front of each number tells how the bytes behind it are read. What comes back is a code,
// or pieces that lie in their tiles and hold every point; of a polygon's what lies inside it and no more.

#include <k7/foundation/error_string.h>
#include <k7/geometry/tile_join.h>
#include <k7/geometry/tiling.h>

#include "input.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

struct Parts {
  std::vector<K7LatLon> points;
  std::vector<int> sizes;
};

Parts TakeParts(Input& in) {
  Parts parts;
  for (int n = 1 + in.Below(4); n > 0; --n) {
    const int size = in.Below(14);
    parts.sizes.push_back(size);
    for (int i = 0; i < size; ++i) {
      const double lat = in.Number(90);
      parts.points.emplace_back(lat, in.Number(in.Below(6) ? 180 : 600));
    }
  }
  parts.points.emplace_back();  // never an empty array
  return parts;
}

double DistanceTo(const K7LatLon& a, const K7LatLon& b, double lat, double lon) {
  const double dy = b.Lat() - a.Lat(), dx = b.Lon() - a.Lon(), length = dx * dx + dy * dy;
  const double along = length > 0 ? ((lat - a.Lat()) * dy + (lon - a.Lon()) * dx) / length : 0;
  const double t = std::clamp(along, 0.0, 1.0);
  return std::hypot(a.Lat() + t * dy - lat, a.Lon() + t * dx - lon);
}

// Even-odd; `near` tells that the place is too near an edge to be told.
bool IsIn(const std::vector<K7LatLon>& ring, double lat, double lon, bool& near) {
  bool in = false;
  for (size_t i = 0; i < ring.size(); ++i) {
    const K7LatLon &a = ring[i], &b = ring[(i + 1) % ring.size()];
    near = near || DistanceTo(a, b, lat, lon) < 1e-6;
    if ((a.Lon() > lon) == (b.Lon() > lon)) continue;
    if (a.Lat() + (b.Lat() - a.Lat()) * (lon - a.Lon()) / (b.Lon() - a.Lon()) < lat) in = !in;
  }
  return in;
}

std::vector<K7LatLon> PointsOf(const K7TileString& piece) {
  std::vector<K7LatLon> points;
  double lat, lon;
  for (int i = 0; piece.GetPoint(i, lat, lon); ++i) points.emplace_back(lat, lon);
  return points;
}

int CheckPiece(const K7ShapeTile& tile, K7TileString& piece, Input& in) {
  int own = 0;
  for (int i = 0; i < piece.PointCount(); ++i) own += piece.IsOwnPoint(i);
  for (const K7LatLon& p : PointsOf(piece)) {
    Require(p.Lat() >= tile.South() - 1e-12 && p.Lat() <= tile.North() + 1.1e-8);
    Require(p.Lon() >= tile.West() - 1e-12 && p.Lon() <= tile.East() + 1.1e-8);
  }
  Require(piece.Rank() == 0);
  K7IntArray kept;
  Require(piece.Select(in.Number(1000), kept) == 0 && kept.Count() <= piece.PointCount());
  return own;
}

std::vector<K7LatLon> RingOf(const K7TileFeature& feature, int part) {
  std::vector<K7LatLon> ring;
  for (int i = feature.PartStart(part), end = i + feature.PartSize(part); i < end; ++i)
    ring.emplace_back(std::clamp(feature.Lat(i), -90.0, 90.0), std::clamp(feature.Lon(i), -180.0, 180.0));
  return ring;
}

void CheckInside(const K7PolyPolygon& polygon, K7PolygonTileMngr& tiles, double lat, double lon) {
  if (!(std::fabs(lat) <= 90 && std::fabs(lon) <= 180)) return;
  bool in = false, tiled = false, near = false;
  for (int part = 0; part < polygon.PartCount(); ++part)
    if (IsIn(RingOf(polygon, part), lat, lon, near)) in = !in;
  const int row = tiles.GetTileRow(lat), col = tiles.GetTileCol(lon, row);
  near = near || lat - tiles.GetTileLat(row) < 1e-6 || lon - tiles.GetTileLon(col, row) < 1e-6;
  const auto* const tile = static_cast<K7PolygonTile*>(tiles.GetTile(row, col, false));
  for (int i = 0; tile && i < tile->PieceCount(); ++i)
    if (IsIn(PointsOf(*tile->Piece(i)), lat, lon, near)) tiled = !tiled;
  Require(near || in == tiled);
}

void Rejoin(const K7PtrArray& tiles, bool areas) {
  K7TileJoin join;
  for (int i = 0; i < tiles.Count(); i += 1 + i % 3) {
    const auto* const area = areas ? static_cast<K7PolygonTile*>(tiles[i]) : nullptr;
    const auto* const line = areas ? nullptr : static_cast<K7PolylineTile*>(tiles[i]);
    for (int k = 0; k < (area ? area->PieceCount() : line->PieceCount()); ++k)
      Require(join.Add(area ? static_cast<K7TileString&>(*area->Piece(k)) : *line->Piece(k), k % 2 * 100.0) ==
              0);
  }
  K7MapFeatures features;
  Require(join.AddTo(features, areas ? K7_MAP_AREA : K7_MAP_LINES) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  const bool areas = in.Below(2), cut = in.Below(2);
  const double heights[] = {10, 30, 45, 60, 90, 180, 7.5, in.Number(180)};
  const double height = heights[in.Below(8)], width = in.Below(2) ? 0 : in.Number(360);
  const double tolerance = in.Below(4) ? 0 : in.Number(2000);
  if (std::fabs(height) < 2 || (width != 0 && std::fabs(width) < 2)) return 0;  // a matter of time only
  K7PolygonTileMngr tiles(areas ? K7_TILE_POLYGONS : K7_TILE_POLYLINES);
  if (tiles.Init(height, width, tolerance) != 0) return 0;
  const Parts parts = TakeParts(in);
  K7PolyPtMngr points;
  K7PolyPolygon polygon;
  K7Polyline line;
  K7TileFeature& feature = areas ? static_cast<K7TileFeature&>(polygon) : line;
  Require(feature.SetPoints(parts.points.data(), parts.sizes.data(), static_cast<int>(parts.sizes.size())) ==
          0);
  if (cut && (areas ? polygon.CutAtSeam() : line.CutAtSeam()) != 0) return 0;
  if ((areas ? tiles.TilizePolygon(&polygon, &points) : tiles.TilizePolyline(&line, &points)) != 0) return 0;
  int own = 0, all = 0;
  for (int part = 0; part < feature.PartCount(); ++part) {
    const int last = feature.PartStart(part) + feature.PartSize(part) - 1, first = feature.PartStart(part);
    const bool repeats = areas && last > first && feature.Lat(first) == feature.Lat(last) &&
                         feature.Lon(first) == feature.Lon(last);
    all += feature.PartSize(part) - repeats;
  }
  K7PtrArray found;
  Require(tiles.GetTiles(K7ChartRect(90, -90, 180, -180), found) == 0);
  for (int i = 0; i < found.Count(); ++i) {
    if (areas) {
      auto* const tile = static_cast<K7PolygonTile*>(found[i]);
      for (int k = 0; k < tile->PieceCount(); ++k) own += CheckPiece(*tile, *tile->Piece(k), in);
    } else {
      auto* const tile = static_cast<K7PolylineTile*>(found[i]);
      for (int k = 0; k < tile->PieceCount(); ++k) own += CheckPiece(*tile, *tile->Piece(k), in);
    }
  }
  Require(tolerance != 0 ? own <= all : own == all);
  Rejoin(found, areas);
  for (int probe = 0; areas && tolerance == 0 && probe < 20; ++probe)
    CheckInside(polygon, tiles, -88.3 + 9.1 * probe, std::remainder(probe * 77.7 + in.Number(180), 360));
  return 0;
}
