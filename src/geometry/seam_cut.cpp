// Features that run across 180 degrees are cut there: each part is rolled out onto a plane on which
// longitudes run on, and cut into tiles of a whole turn.

#include <k7/foundation/error_string.h>
#include <k7/geometry/tiling.h>

#include "foundation/append.h"
#include "foundation/buffer.h"
#include "geometry/tile_grid.h"
#include "projection/seam.h"

#include <algorithm>
#include <cmath>

namespace {

static_assert(std::is_trivially_copyable_v<K7LatLon>);

// Longitudes that wind on further than that are no feature of a chart.
constexpr double MAX_LON = 180 + 360 * 16;

bool RunsAcross(const K7TileFeature& feature, int part, bool ring) {
  const int start = feature.PartStart(part), count = feature.PartSize(part);
  for (int i = 0; i < count; ++i) {
    const double lon = feature.Lon(start + i);
    if (std::fabs(lon) > 180 + SAME_PLACE) return true;
    const int next = i + 1 < count ? i + 1 : ring ? 0 : i;
    if (std::fabs(feature.Lon(start + next) - lon) > 180) return true;
  }
  return false;
}

// Rolls a part out. A ring that comes back a turn further on runs around a pole and is closed over it.
// False for coordinates off the earth.
bool RollOut(const K7TileFeature& feature, int part, bool ring, Buffer<K7LatLon>& out) {
  const int start = feature.PartStart(part), count = feature.PartSize(part);
  double sum = 0, before = count > 0 ? feature.Lon(start) : 0;
  const double first = before;
  for (int i = 0; count > 0 && i < count + ring; ++i) {
    const int at = start + i % count;
    const double lat = K7TileGrid::ClampLat(feature.Lat(at));
    const double lon = CarriedOn(before, feature.Lon(at));
    if (!(std::fabs(lat) <= 90 && std::fabs(lon) <= MAX_LON)) return false;
    out.Add({lat, lon});
    before = lon;
    sum += lat;
  }
  if (!ring) return true;
  const double turn = before - first;
  if (std::fabs(turn) < SAME_PLACE) return true;
  const double pole = std::copysign(90.0, sum);
  // In steps of less than half a turn on the plane as well, whatever reads them.
  for (int step = 0; step <= 4; ++step) out.Add({pole, first + turn * (4 - step) / 4});
  return true;
}

double Width(const Buffer<K7LatLon>& plane) {
  const auto byLon = [](const K7LatLon& a, const K7LatLon& b) { return a.Lon() < b.Lon(); };
  const auto [west, east] = std::minmax_element(plane.Data(), plane.Data() + plane.Count(), byLon);
  return plane.Count() > 0 ? east->Lon() - west->Lon() : 0;
}

}  // namespace

// Appends the pieces of a rolled out part, each back where it belongs.
int K7TileFeature::CutPlane(const K7LatLon* points, int count, bool ring, K7IntArray& starts, K7Array& cut) {
  double least = points[0].Lon(), most = least;
  for (int i = 1; i < count; ++i) {
    least = std::min(least, points[i].Lon());
    most = std::max(most, points[i].Lon());
  }
  const double first = std::floor((least + 180) / 360), last = std::floor((most + 180) / 360);
  K7PolygonTileMngr turns(ring ? K7_TILE_POLYGONS : K7_TILE_POLYLINES);
  K7PolyPtMngr created;
  K7Polyline line;
  K7PolyPolygon polygon;
  int err = turns.MakeGrid(first * 360 - 180, static_cast<int>(last - first) + 1);
  if (err == 0) err = ring ? polygon.SetPoints(points, &count, 1) : line.SetPoints(points, &count, 1);
  if (err == 0) err = ring ? turns.TilizePolygon(&polygon, &created) : turns.TilizePolyline(&line, &created);
  for (int col = 0; col < turns.ColCount(0) && err == 0; ++col) {
    K7ShapeTile* const tile = turns.GetTile(0, col, false);
    const int pieces = !tile  ? 0
                       : ring ? static_cast<K7PolygonTile*>(tile)->PieceCount()
                              : static_cast<K7PolylineTile*>(tile)->PieceCount();
    const double shift = (first + col) * 360;
    for (int i = 0; i < pieces && err == 0; ++i) {
      const K7TileString* piece = nullptr;
      if (ring)
        piece = static_cast<K7PolygonTile*>(tile)->Piece(i);
      else
        piece = static_cast<K7PolylineTile*>(tile)->Piece(i);
      err = AppendInt(starts, cut.Count());
      for (int k = 0; k < piece->PointCount() && err == 0; ++k) {
        const int index = piece->Indexes()[k], made = index - count;
        const double lat = made < 0 ? points[index].Lat() : created.Lat(made);
        const double lon = made < 0 ? points[index].Lon() : created.Lon(made);
        const K7LatLon back(lat, std::clamp(lon - shift, -180.0, 180.0));
        err = Append(cut, &back);
      }
    }
  }
  return err;
}

int K7TileFeature::CopyPart(int part, K7IntArray& starts, K7Array& cut) const {
  int err = AppendInt(starts, cut.Count());
  for (int i = PartStart(part), end = i + PartSize(part); i < end && err == 0; ++i) {
    const K7LatLon point(Lat(i), Lon(i));
    err = Append(cut, &point);
  }
  return err;
}

int K7TileFeature::CutAtSeam(bool rings) {
  bool any = false;
  for (int part = 0; part < PartCount() && !any; ++part) any = RunsAcross(*this, part, rings);
  if (!any) return 0;
  Buffer<K7LatLon> plane;
  K7Array cut(sizeof(K7LatLon), 256);
  K7IntArray starts;
  for (int part = 0; part < PartCount(); ++part) {
    plane.Clear();
    bool across = RunsAcross(*this, part, rings);
    if (across && !RollOut(*this, part, rings, plane)) return K7_ERR_INVALID_DATA;
    if (plane.Failed()) return K7_ERR_MEMORY;
    // A band around the world runs along 180 and does not cross it.
    across = across && !(rings && Width(plane) < SAME_PLACE);
    const int err =
        across ? CutPlane(plane.Data(), plane.Count(), rings, starts, cut) : CopyPart(part, starts, cut);
    if (err != 0) return err;
  }
  return TakeOver(cut, starts);
}
