#include <k7/terrain/ter_tile_ex.h>

#include <k7/foundation/error_string.h>

#include "terrain/mosaic.h"
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

}  // namespace

K7TerTileEX::~K7TerTileEX() { delete[] m_rim; }

int K7TerTileEX::Init(const K7ChartRect& bounds, int rows, int columns) {
  const bool open = rows == 0 && columns == 0;
  PostGrid grid{};
  if (!(open && bounds.IsEmpty()) && !BoundsOf(bounds, grid)) return K7_ERR_INVALID_DATA;
  if (!open && (std::min(rows, columns) < 1 || std::max(rows, columns) > MAX_ROWS))
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
    if (std::max(steps[0], steps[1]) > MAX_ROWS) return K7_ERR_OUT_OF_RANGE;
    rows = std::max(1, static_cast<int>(steps[0]));
    columns = std::max(1, static_cast<int>(steps[1]));
  }
  if (int64_t{rows} * columns > MAX_DRAWN_POSTS) return K7_ERR_OUT_OF_RANGE;
  SetHeader(bounds, rows, columns);
  return 0;
}

int K7TerTileEX::MergeTiles() {
  Free();
  if (const int code = ChooseGrid()) return code;
  if (const int code = SortSources()) return code;
  if (const int code = InitRim()) return code;
  if (const int code = AllocMesh()) return code;
  TakeFromRim();
  return 0;
}

int K7TerTileEX::MergeMesh(const K7TerTile& tile) {
  if (!GetMesh()) return K7_ERR_NOT_INITIALIZED;
  PostGrid own{}, from{};
  if (!K7TerMeshHold(tile).Rows()) return K7_ERR_NOT_FOUND;
  if (!GridOf(tile, from) || !GridOf(*this, own)) return K7_ERR_INVALID_DATA;
  K7TerTile* source = const_cast<K7TerTile*>(&tile);  // only read
  return MergePosts(&source, 1, own, GetMesh());
}

int K7TerTileEX::InitBoundary() {
  if (!GetMesh()) return K7_ERR_NOT_INITIALIZED;
  const int code = SortSources();
  return code ? code : InitRim();
}

// Merges the tile and the posts around it.
int K7TerTileEX::InitRim() {
  PostGrid own{};
  if (!GridOf(*this, own)) return K7_ERR_NOT_INITIALIZED;
  const PostGrid grown = own.Grown(RIM);
  PostsBlock block;
  if (!block.Make(grown.rows, grown.cols)) return K7_ERR_MEMORY;
  const auto tiles = static_cast<K7TerTile* const*>(m_sources.Data());
  if (const int code = MergePosts(tiles, m_sources.Count(), grown, block.Rows())) return code;
  FreeBoundary();
  m_rim = block.Release();
  m_rimPosts = grown.rows * grown.cols;
  return 0;
}

void K7TerTileEX::TakeFromRim() {
  const ptrdiff_t stride = ColCount() + 2 * RIM;
  for (int r = 0; r < RowCount(); ++r)
    std::copy_n(m_rim + (r + RIM) * stride + RIM, ColCount(), GetMesh()[r]);
}

void K7TerTileEX::CopyBoundary(int16_t* posts) const {
  const int count = (RowCount() + 2 * RIM) * (ColCount() + 2 * RIM);
  // Another header may have been read since.
  if (m_rimPosts == count) std::copy_n(m_rim, count, posts);
}

void K7TerTileEX::FreeBoundary() {
  delete[] m_rim;
  m_rim = nullptr;
  m_rimPosts = 0;
}

int K7TerTileEX::SmoothMesh() {
  if (!GetMesh()) return K7_ERR_NOT_INITIALIZED;
  if (m_rimPosts == 0) return K7TerTile::SmoothMesh();
  const TilePosts posts(*this);
  if (posts.Error()) return posts.Error();
  const PostGrid& grid = posts.Grid();
  if (!SmoothPosts(grid.rows, grid.cols, posts.Rows())) return K7_ERR_MEMORY;
  std::copy_n(posts.Rows()[0], static_cast<ptrdiff_t>(grid.rows) * grid.cols, m_rim);
  TakeFromRim();
  return 0;
}

void K7TerTileEX::Free() {
  Clear();
  FreeBoundary();
  ClearSRTImage();
}

int K7TerTileEX::Generate(const K7TerParams* params) {
  if (!params) return K7_ERR_BAD_ARGUMENT;
  if (const int code = MergeTiles()) return code;
  return GenShadedRelief(params);
}
