#include <k7/terrain/ter_relief.h>

#include <k7/foundation/error_string.h>
#include <k7/geodesy/constants.h>
#include <k7/projection/map_view.h>

#include "foundation/alloc.h"
#include "terrain/tile_posts.h"
#include "terrain/tints.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>

struct K7TerReliefStore {
  // Between which posts a position lies, and where.
  struct Place {
    int first;
    float share;  // of the next
  };
  static Place Split(double at, int posts) {
    const double held = std::clamp(at, 0.0, posts - 1.0);
    const int first = std::min(static_cast<int>(held), posts - 2);
    return {first, static_cast<float>(held - first)};
  }
  Place RowOf(double lat) const { return Split((lat - grid.south) * rowsPerDegree - 0.5, grid.rows); }
  // Of a place by its degrees from the tile's western edge.
  Place ColOf(double east) const { return Split(east * colsPerDegree + RIM - 0.5, grid.cols); }
  Slope At(double lat, double east) const { return At(RowOf(lat), ColOf(east)); }

  Slope At(const Place& row, const Place& col) const {
    const Slope* const south = slopes.get() + static_cast<ptrdiff_t>(row.first) * grid.cols + col.first;
    const Slope* const north = south + grid.cols;
    const Slope posts[4] = {south[0], south[1], north[0], north[1]};
    const float w[4] = {(1 - row.share) * (1 - col.share), (1 - row.share) * col.share,
                        row.share * (1 - col.share), row.share * col.share};
    Slope sum{0, 0, 0, 0};
    for (int i = 0; i < 4; ++i) {
      sum.elevation += w[i] * posts[i].elevation;
      sum.east += w[i] * posts[i].east;
      sum.north += w[i] * posts[i].north;
      sum.weight += w[i] * posts[i].weight;
    }
    return sum;
  }

  // Where nothing is known beyond an edge, the tile's own last posts go on.
  void FillRim() {
    const auto at = [this](int r, int c) -> Slope& {
      return slopes[static_cast<size_t>(r) * static_cast<size_t>(grid.cols) + static_cast<size_t>(c)];
    };
    for (int r = 0; r < grid.rows; ++r) {
      const int row = std::clamp(r, RIM, grid.rows - 1 - RIM);
      for (int c = 0; c < grid.cols; ++c) {
        const int col = std::clamp(c, RIM, grid.cols - 1 - RIM);
        if (at(r, c).weight == 0 && (row != r || col != c)) at(r, c) = at(row, col);
      }
    }
  }

  PostGrid tile{}, grid{};  // without the posts; the grid has a rim
  double rowsPerDegree = 0, colsPerDegree = 0;
  std::unique_ptr<Slope[]> slopes;
  Tints tints;
};

namespace {

using Store = K7TerReliefStore;

constexpr double METRES_PER_NM = 1852;

// Pixels of the window, left and top inclusive, right and bottom not.
struct Box {
  int left, top, right, bottom;
};

// The pixels in which a tile can fall. On a plane its outline bounds it, unless the map is torn within it;
// a globe, whose outline may hide behind the limb, is asked everywhere when it is not all seen.
Box PixelsOf(const PostGrid& grid, const K7MapView& view) {
  static constexpr int STEPS = 32;
  const Box window{0, 0, view.Width(), view.Height()};
  double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9, reach = 0;
  double lastX = 0, lastY = 0;
  for (int i = 0; i <= 4 * STEPS; ++i) {
    const int side = i / STEPS % 4;
    const double t = static_cast<double>(i % STEPS) / STEPS;
    const double across = side == 0 ? t : side == 1 ? 1 : side == 2 ? 1 - t : 0;
    const double up = side == 0 ? 0 : side == 1 ? t : side == 2 ? 1 : 1 - t;
    double x = std::numeric_limits<double>::quiet_NaN(), y = x;
    const bool seen = view.ToDevice(grid.south + up * (grid.north - grid.south),
                                    std::remainder(grid.west + across * grid.width, 360), x, y);
    if (!(std::abs(x) < 1e6 && std::abs(y) < 1e6) || (view.IsGlobe() && !seen)) return window;
    if (i > 0) reach = std::max({reach, std::abs(x - lastX), std::abs(y - lastY)});
    lastX = x;
    lastY = y;
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
  // Torn: neighbours on the outline lie far apart.
  if (reach > std::max(right - left, bottom - top) / 4) return window;
  const double margin = 2 + reach;
  return {std::max(0, static_cast<int>(std::floor(left - margin))),
          std::max(0, static_cast<int>(std::floor(top - margin))),
          std::min(window.right, static_cast<int>(std::ceil(right + margin))),
          std::min(window.bottom, static_cast<int>(std::ceil(bottom + margin)))};
}

// The positions of a square of pixels, whose corners lie on multiples of its size in the window, whatever the
// tile: so neighbours agree about each pixel.
class Square {
 public:
  static constexpr int SIZE = 16;

  Square(const K7MapView& view, int x, int y) : m_view(view), m_x(x), m_y(y) {
    m_isFlat = true;
    for (int i = 0; i < 4; ++i) m_isFlat = m_isFlat && Corner(i % 2 * SIZE, i / 2 * SIZE, m_lat[i], m_lon[i]);
    m_isFlat = m_isFlat && FitsAt(SIZE / 2, SIZE / 2) && FitsAt(SIZE / 2, 0) && FitsAt(0, SIZE / 2);
  }

  // Whether positions between the corners lie where even steps have them.
  bool IsFlat() const { return m_isFlat; }

  // The position of the middle of a pixel; false off the map.
  bool At(int dx, int dy, double& lat, double& lon) const {
    return m_view.FromDevice(m_x + dx + 0.5, m_y + dy + 0.5, lat, lon);
  }

  // Where a row of a flat square begins, and its even steps from pixel to pixel.
  struct Row {
    double lat, lon, latStep, lonStep;
  };
  Row RowAt(int dy) const {
    const double v = static_cast<double>(dy) / SIZE;
    const double lat = (1 - v) * m_lat[0] + v * m_lat[2], lon = (1 - v) * m_lon[0] + v * m_lon[2];
    return {lat, lon, ((1 - v) * m_lat[1] + v * m_lat[3] - lat) / SIZE,
            ((1 - v) * m_lon[1] + v * m_lon[3] - lon) / SIZE};
  }

  // The longitude that all of a flat square is east of by what `EastOf` gives: false when that turns over in
  // it.
  bool WestOf(const PostGrid& tile, double& west) const {
    for (int i = 0; i < 4; ++i) {
      const double turns = std::round((m_lon[i] - tile.west - tile.EastOf(m_lon[i])) / 360);
      const double here = tile.west + 360 * turns;
      if (i > 0 && here != west) return false;
      west = here;
    }
    return true;
  }

 private:
  bool Corner(int dx, int dy, double& lat, double& lon) const {
    if (!At(dx, dy, lat, lon) || std::abs(lat) > 89) return false;
    if (dx || dy) lon = m_lon[0] + std::remainder(lon - m_lon[0], 360);
    return true;
  }
  // Whether what lies between the corners is off by less than a twentieth of a pixel.
  bool FitsAt(int dx, int dy) const {
    double lat = 0, lon = 0;
    if (!Corner(dx, dy, lat, lon)) return false;
    const Row row = RowAt(dy);
    const double lat2 = row.lat + dx * row.latStep, lon2 = row.lon + dx * row.lonStep;
    const double dLat = std::abs(m_lat[3] - m_lat[0]) + std::abs(m_lat[2] - m_lat[1]);
    const double dLon = std::abs(m_lon[3] - m_lon[0]) + std::abs(m_lon[2] - m_lon[1]);
    static constexpr double SHARE = 0.05 / (2 * SIZE);
    return std::abs(lat - lat2) <= SHARE * dLat && std::abs(lon - lon2) <= SHARE * dLon;
  }

  const K7MapView& m_view;
  int m_x, m_y;
  bool m_isFlat;
  double m_lat[4], m_lon[4];
};

// What a picture of a tile is drawn from.
struct Drawing {
  const Store& store;
  const K7MapView& view;
  double metres;  // a pixel
};

uint32_t PixelAt(const Drawing& drawing, double lat, double east) {
  const PostGrid& tile = drawing.store.tile;
  const bool isInside = lat >= tile.south && (lat < tile.north || lat == 90) && east >= 0 &&
                        (east < tile.width || tile.width >= 360);
  return isInside ? drawing.store.tints.Pixel(drawing.store.At(lat, east), drawing.metres) : 0;
}

// The part of a square within the box; `out` is the box's pixels.
void RenderSquare(const Drawing& drawing, const Box& box, int left, int top, uint32_t* out) {
  const Square square(drawing.view, left, top);
  const PostGrid& tile = drawing.store.tile;
  double west = 0;
  const bool isEven = square.IsFlat() && square.WestOf(tile, west);
  const int first = std::max(left, box.left), end = std::min(left + Square::SIZE, box.right);
  for (int y = std::max(top, box.top); y < std::min(top + Square::SIZE, box.bottom); ++y) {
    uint32_t* const row = out + static_cast<ptrdiff_t>(y - box.top) * (box.right - box.left);
    if (isEven) {
      const Square::Row at = square.RowAt(y - top);
      for (int x = first; x < end; ++x)
        row[x - box.left] =
            PixelAt(drawing, at.lat + (x - left) * at.latStep, at.lon + (x - left) * at.lonStep - west);
    } else {
      for (int x = first; x < end; ++x) {
        double lat = 0, lon = 0;
        row[x - box.left] =
            square.At(x - left, y - top, lat, lon) ? PixelAt(drawing, lat, tile.EastOf(lon)) : 0;
      }
    }
  }
}

}  // namespace

K7TerRelief::~K7TerRelief() { delete m_store; }

int K7TerRelief::Init(const K7TerTile& tile, const K7TerParams& params) {
  delete m_store;
  m_store = nullptr;
  const TilePosts posts(tile);
  if (posts.Error()) return posts.Error();
  std::unique_ptr<Store> store(new (std::nothrow) Store);
  if (!store) return K7_ERR_MEMORY;
  store->tile = posts.Tile();
  store->grid = posts.Grid();
  store->grid.posts = nullptr;
  store->rowsPerDegree = 1 / store->grid.RowStep();
  store->colsPerDegree = 1 / store->grid.ColStep();
  store->slopes = FindSlopes(posts.Grid());
  if (!store->slopes) return K7_ERR_MEMORY;
  store->FillRim();
  store->tints.Set(params);
  m_store = store.release();
  return 0;
}

uint32_t K7TerRelief::ColorAt(double lat, double lon, double metres) const {
  if (!m_store || !(lat >= m_store->tile.south && lat <= m_store->tile.north) || !(std::abs(lon) <= 720))
    return 0;
  double east = m_store->tile.EastOf(lon);
  if (east < 0) east += 360;
  if (east > m_store->tile.width) return 0;
  return m_store->tints.Pixel(m_store->At(lat, east), std::isnan(metres) ? 0 : std::clamp(metres, 0.0, 1e6));
}

int K7TerRelief::Image(uint32_t* pixels, int width, int height) const {
  if (!pixels || width < 1 || height < 1) return K7_ERR_BAD_ARGUMENT;
  const auto stride = static_cast<size_t>(width);
  if (!m_store) {
    std::fill_n(pixels, stride * static_cast<size_t>(height), 0U);
    return 0;
  }
  const Store& store = *m_store;
  const PostGrid& grid = store.tile;
  const double pixelHeight = (grid.north - grid.south) / height;
  const double metres = pixelHeight * K7_DEG_TO_RAD * K7_EARTH_RADIUS_NM * METRES_PER_NM;
  for (int y = 0; y < height; ++y) {
    const Store::Place row = store.RowOf(grid.north - (y + 0.5) * pixelHeight);
    uint32_t* const out = pixels + static_cast<size_t>(y) * stride;
    for (int x = 0; x < width; ++x) {
      const Store::Place col = store.ColOf((x + 0.5) / width * grid.width);
      out[x] = store.tints.Pixel(store.At(row, col), metres);
    }
  }
  return 0;
}

int K7TerRelief::Render(K7Grfx* g, const K7MapView& view) const {
  if (!g) return K7_ERR_BAD_ARGUMENT;
  if (!m_store || !view.IsSet()) return K7_ERR_NOT_INITIALIZED;
  const PostGrid& grid = m_store->tile;
  const double east = std::remainder(grid.west + grid.width, 360);
  const K7ChartRect bounds = grid.width == 360 ? K7ChartRect(grid.north, grid.south, 180, -180)
                                               : K7ChartRect(grid.north, grid.south, east, grid.west);
  if (!bounds.AreaIn(view.GetExtent())) return 0;
  const Box box = PixelsOf(grid, view);
  const int width = box.right - box.left, height = box.bottom - box.top;
  if (width < 1 || height < 1) return 0;
  const std::unique_ptr<uint32_t[]> pixels(NewArray<uint32_t>(int64_t{width} * height));
  if (!pixels) return K7_ERR_MEMORY;
  const Drawing drawing{*m_store, view, view.NMPerPixel() * METRES_PER_NM};
  for (int y = box.top - box.top % Square::SIZE; y < box.bottom; y += Square::SIZE) {
    for (int x = box.left - box.left % Square::SIZE; x < box.right; x += Square::SIZE)
      RenderSquare(drawing, box, x, y, pixels.get());
  }
  g->Image(pixels.get(), width, height, box.left, box.top, box.right, box.bottom);
  return 0;
}
