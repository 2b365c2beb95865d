#include <k7/terrain/ter_tile_ex.h>

#include <k7/foundation/error_string.h>
#include <k7/terrain/ter_relief.h>

#include "terrain/tile_posts.h"

#include <algorithm>
#include <memory>
#include <new>
#include <tuple>

namespace {

constexpr int MAX_ROWS = 32767;

// Orders sources by what counts where they overlap.
struct Rank {
  double post;  // square degrees
  double south, west;
  K7TerTile* tile;
  bool operator<(const Rank& other) const {
    return std::tie(post, south, west) < std::tie(other.post, other.south, other.west);
  }
};

Rank RankOf(K7TerTile* tile) {
  PostGrid grid{};
  if (!GridOf(*tile, grid)) return {1e9, 0, 0, tile};
  return {grid.RowStep() * grid.ColStep(), grid.south, grid.west, tile};
}

PostGrid OwnGrid(const K7TerTile& tile) {
  PostGrid grid{};
  GridOf(tile, grid);
  grid.posts = tile.GetMesh();
  return grid;
}

int Merge(const K7TerTile& source, const PostGrid& target, int16_t* const* posts) {
  const TilePosts from(source);
  if (from.Error()) return from.Error();
  return ResamplePosts(from.Grid(), target, posts) ? 0 : K7_ERR_MEMORY;
}

}  // namespace

K7TerTileEX::~K7TerTileEX() { Free(); }

int K7TerTileEX::Init(const K7ChartRect& bounds, int rows, int columns) {
  const bool open = rows == 0 && columns == 0;
  PostGrid grid{};
  if (!(open && bounds.IsEmpty()) && !BoundsOf(bounds, grid)) return K7_ERR_INVALID_DATA;
  if (!open && (std::min(rows, columns) < 2 || std::max(rows, columns) > MAX_ROWS))
    return K7_ERR_INVALID_DATA;
  Free();
  m_sources.Clear();
  m_wishedBounds = bounds;
  m_wishedRows = rows;
  m_wishedColumns = columns;
  SetHeader(bounds, rows, columns);
  return 0;
}

int K7TerTileEX::AddTileForMerge(K7TerTile* tile) {
  if (!tile || tile == this) return K7_ERR_BAD_ARGUMENT;
  if (m_sources.FindPtr(tile) >= 0) return 0;
  return std::min(m_sources += tile, 0);
}

int K7TerTileEX::SortSources() {
  const int count = m_sources.Count();
  const std::unique_ptr<Rank[]> ranks(new (std::nothrow) Rank[static_cast<size_t>(count)]);
  if (!ranks) return K7_ERR_MEMORY;
  for (int i = 0; i < count; ++i) ranks[static_cast<size_t>(i)] = RankOf(Source(i));
  std::sort(ranks.get(), ranks.get() + count);
  for (int i = 0; i < count; ++i) m_sources.PutPtr(i, ranks[static_cast<size_t>(i)].tile);
  return 0;
}

int K7TerTileEX::ChooseGrid() {
  K7ChartRect bounds = m_wishedBounds;
  double rowStep = 999, colStep = 999;
  for (int i = 0; i < m_sources.Count(); ++i) {
    const K7TerTile& source = *Source(i);
    PostGrid grid{};
    if (!GridOf(source, grid)) continue;
    rowStep = std::min(rowStep, grid.RowStep());
    colStep = std::min(colStep, grid.ColStep());
    if (m_wishedBounds.IsEmpty()) bounds.BoundingUnion(bounds, source.GetChartRect());
  }
  PostGrid own{};
  if (!BoundsOf(bounds, own)) return K7_ERR_NOT_INITIALIZED;
  int rows = m_wishedRows, columns = m_wishedColumns;
  if (rows == 0) {
    const double steps[] = {std::round((own.north - own.south) / rowStep), std::round(own.width / colStep)};
    if (std::max(steps[0], steps[1]) >= MAX_ROWS) return K7_ERR_OUT_OF_RANGE;
    rows = std::max(1, static_cast<int>(steps[0])) + 1;
    columns = std::max(1, static_cast<int>(steps[1])) + 1;
  }
  if (int64_t{rows} * columns > MAX_DRAWN_POSTS) return K7_ERR_OUT_OF_RANGE;
  SetHeader(bounds, rows, columns);
  return 0;
}

int K7TerTileEX::MergeTiles() {
  Free();
  if (const int code = ChooseGrid()) return code;
  if (const int code = SortSources()) return code;
  if (const int code = AllocMesh()) return code;
  for (int i = 0; i < m_sources.Count(); ++i) {
    if (MergeMesh(*Source(i)) != K7_ERR_MEMORY) continue;
    Free();
    return K7_ERR_MEMORY;
  }
  return 0;
}

int K7TerTileEX::MergeMesh(const K7TerTile& tile) {
  if (!GetMesh()) return K7_ERR_NOT_INITIALIZED;
  return Merge(tile, OwnGrid(*this), GetMesh());
}

int K7TerTileEX::InitBoundary() {
  if (!GetMesh()) return K7_ERR_NOT_INITIALIZED;
  const PostGrid own = OwnGrid(*this);
  const double row = own.RowStep(), col = own.ColStep();
  const size_t across = static_cast<size_t>(own.cols) + 2, along = static_cast<size_t>(own.rows);
  std::unique_ptr<int16_t[]> fresh(new (std::nothrow) int16_t[2 * across + 2 * along]);
  const std::unique_ptr<int16_t*[]> columns(new (std::nothrow) int16_t*[2 * along]);
  if (!fresh || !columns) return K7_ERR_MEMORY;
  std::fill_n(fresh.get(), 2 * across + 2 * along, K7_NO_ELEV);
  int16_t* const south = fresh.get();
  int16_t* const north = south + across;
  for (size_t r = 0; r < 2 * along; ++r) columns[r] = north + across + r;

  // Lines of posts, each a grid as high or wide as a spacing whose only row is its northern edge, or whose
  // only column is its eastern one.
  const struct {
    PostGrid grid;
    int16_t* const* posts;
  } lines[] = {
      {{own.south - row, own.south - 2 * row, own.west - col, own.width + 2 * col, 1, own.cols + 2, nullptr},
       &south},
      {{own.north + row, own.north, own.west - col, own.width + 2 * col, 1, own.cols + 2, nullptr}, &north},
      {{own.north, own.south, own.west - 2 * col, col, own.rows, 1, nullptr}, columns.get()},
      {{own.north, own.south, own.west + own.width, col, own.rows, 1, nullptr}, columns.get() + along},
  };
  for (const auto& line : lines) {
    for (int i = 0; i < m_sources.Count(); ++i) {
      if (Merge(*Source(i), line.grid, line.posts) == K7_ERR_MEMORY) return K7_ERR_MEMORY;
    }
  }
  FreeBoundary();
  m_border = fresh.release();
  return 0;
}

void K7TerTileEX::FreeBoundary() {
  delete[] m_border;
  m_border = nullptr;
}

PostBorder BorderOf(const K7TerTile& tile) {
  const auto* const drawn = dynamic_cast<const K7TerTileEX*>(&tile);
  if (!drawn || !drawn->m_border) return {};
  const int16_t* const south = drawn->m_border;
  const int16_t* const north = south + drawn->ColCount() + 2;
  const int16_t* const west = north + drawn->ColCount() + 2;
  return {south, north, west, west + drawn->RowCount()};
}

int K7TerTileEX::SmoothMesh() {
  if (!GetMesh()) return K7_ERR_NOT_INITIALIZED;
  return SmoothPosts(RowCount(), ColCount(), GetMesh()) ? 0 : K7_ERR_MEMORY;
}

void K7TerTileEX::Free() {
  Clear();
  FreeBoundary();
  ClearSRTImage();
}

int K7TerTileEX::Generate(const K7TerParams* params) {
  if (!params) return K7_ERR_BAD_ARGUMENT;
  if (const int code = MergeTiles()) return code;
  if (const int code = InitBoundary()) return code;
  return GenShadedRelief(params);
}

int K7TerTileEX::GenShadedRelief(const K7TerParams* params) {
  return GenShadedRelief(params, std::max(ColCount(), 1), std::max(RowCount(), 1));
}

int K7TerTileEX::GenShadedRelief(const K7TerParams* params, int width, int height) {
  if (!params || width < 1 || height < 1 || int64_t{width} * height > MAX_DRAWN_POSTS)
    return K7_ERR_BAD_ARGUMENT;
  K7TerRelief relief;
  if (const int code = relief.Init(*this, *params)) return code;
  auto* const image = new (std::nothrow) uint32_t[static_cast<size_t>(width) * static_cast<size_t>(height)];
  if (!image) return K7_ERR_MEMORY;
  relief.Image(image, width, height);
  ClearSRTImage();
  m_image = image;
  m_imageWidth = width;
  m_imageHeight = height;
  return 0;
}

void K7TerTileEX::ClearSRTImage() {
  delete[] m_image;
  m_image = nullptr;
  m_imageWidth = m_imageHeight = 0;
}

int K7TerTileEX::CreateMesh(K7TerMesh& mesh, K7TerMeshKind kind, double exaggeration) const {
  return mesh.Create(*this, kind, exaggeration);
}

int K7TerTileEX::Render(K7Grfx* g, const K7MapView& view, const K7TerParams& params) const {
  K7TerRelief relief;
  const int code = relief.Init(*this, params);
  return code ? code : relief.Render(g, view);
}
