#include <k7/terrain/ter_ring.h>

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/projection/map_view.h>

#include "terrain/tile_posts.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

// Beyond this latitude meridians draw together so much that tiles grow wider.
constexpr double SQUARE_UP_TO = 55;
constexpr double LEAST_COS = 0.1;  // at most 10 times as wide
constexpr float TURN = 360;
// What bands of a height in single precision miss the pole by.
constexpr double SLACK = 1e-4;

// Widths beyond SQUARE_UP_TO: what divides the turn, at least three.
float WideTile(double middle, float height) {
  const double scale = 1 / std::max(std::cos(middle * K7_DEG_TO_RAD), LEAST_COS);
  int count = static_cast<int>(360 / (scale * static_cast<double>(height)));
  while (count >= 1 && 360 % count != 0) --count;
  return TURN / static_cast<float>(std::max(count, 3));
}

double Wrapped(double lon) { return lon > 180 ? lon - 360 : lon; }

// Whether a source has posts on a tile or within a spacing of it.
bool Touches(const K7TerTileEX& tile, const K7TerTile& source) {
  PostGrid to{}, from{};
  GridOf(tile, to);
  if (!BoundsOf(source.GetChartRect(), from)) return false;
  const double row = to.RowStep(), col = to.ColStep();
  if (from.south > to.north + row || from.north < to.south - row) return false;
  const double east = to.EastOf(from.west);
  return (east <= to.width + col && east + from.width >= -col) || east - 360 + from.width >= -col;
}

}  // namespace

K7TerRing::~K7TerRing() { FreeTiles(); }

void K7TerRing::FreeTiles() {
  for (int i = 0; i < m_count; ++i) delete m_tiles[i];
  delete[] m_tiles;
  m_tiles = nullptr;
  m_count = 0;
}

void K7TerRing::Clear() {
  const K7LockGuard lock(m_mutex);
  FreeTiles();
}

int K7TerRing::Init(double south, float height, int rows, int columns) {
  const K7LockGuard lock(m_mutex);
  FreeTiles();
  const double north = south + static_cast<double>(height);
  if (!(south >= -90 && height > 0 && north <= 90 + SLACK)) return K7_ERR_INVALID_DATA;
  if (static_cast<double>(height) * MAX_TILES < 360) return K7_ERR_INVALID_DATA;
  m_south = south;
  m_height = height;
  const double middle = std::abs(south + static_cast<double>(height) / 2);
  m_tileWidth = middle > SQUARE_UP_TO ? WideTile(middle, height) : height;
  m_scale = m_tileWidth / height;
  const int code = MakeTiles(rows, columns);
  if (code) FreeTiles();
  return code;
}

int K7TerRing::MakeTiles(int rows, int columns) {
  // In single precision a turn is a whole number of tiles whenever it is meant to be one.
  const auto count = static_cast<int>(TURN / m_tileWidth);
  m_tiles = new (std::nothrow) K7TerTileEX*[static_cast<size_t>(count)];
  if (!m_tiles) return K7_ERR_MEMORY;
  const double north = std::min(m_south + static_cast<double>(m_height), 90.0);
  double west = 0;
  for (int i = 0; i < count; ++i) {
    const double end = west + static_cast<double>(m_tileWidth);
    const double east = end >= 180 ? end - 360 : end;
    m_tiles[i] = new (std::nothrow) K7TerTileEX;
    if (!m_tiles[i]) return K7_ERR_MEMORY;
    m_count = i + 1;
    if (const int code = m_tiles[i]->Init(K7ChartRect(north, m_south, east, west), rows, columns))
      return code;
    west = east;
  }
  return 0;
}

int K7TerRing::TileCount() const {
  const K7LockGuard lock(m_mutex);
  return m_count;
}

K7TerTileEX* K7TerRing::Tile(int i) const {
  const K7LockGuard lock(m_mutex);
  return i >= 0 && i < m_count ? m_tiles[i] : nullptr;
}

K7TerTileEX* K7TerRing::GetTile(double lon) const {
  const K7LockGuard lock(m_mutex);
  lon = Wrapped(lon);
  for (int i = 0; i < m_count; ++i) {
    const K7ChartRect& bounds = m_tiles[i]->GetChartRect();
    const bool crosses = bounds.West() > bounds.East();
    const double east = crosses ? bounds.East() + 360 : bounds.East();
    const double at = crosses && lon < 0 ? lon + 360 : lon;
    if (bounds.West() <= at && at < east) return m_tiles[i];
  }
  return nullptr;
}

int K7TerRing::AddTile(K7TerTile* source) {
  if (!source) return K7_ERR_BAD_ARGUMENT;
  const K7LockGuard lock(m_mutex);
  int added = 0;
  for (int i = 0; i < m_count; ++i) {
    if (!Touches(*m_tiles[i], *source)) continue;
    if (const int code = m_tiles[i]->AddTileForMerge(source)) return code;
    ++added;
  }
  return added;
}

int K7TerRing::Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const {
  const K7LockGuard lock(m_mutex);
  int failure = 0;
  for (int i = 0; i < m_count; ++i) {
    if (!m_tiles[i]->ValidMesh() || !m_tiles[i]->GetChartRect().AreaIn(view.GetExtent())) continue;
    const int code = m_tiles[i]->Render(g, view, params);
    if (!failure) failure = code;
  }
  return failure;
}
