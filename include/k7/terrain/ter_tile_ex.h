// K7TerTileEX: a terrain tile for drawing, merged from others.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/terrain/ter_mesh.h>
#include <k7/terrain/ter_params.h>
#include <k7/terrain/ter_tile.h>

#include <cstdint>

class TilePosts;

/// A K7TerTileEX has a grid of its own over bounds of its own, merged from tiles of region files, and makes
/// pictures and triangles of it.
///
///     K7TerTileEX tile;
///     tile.Init(bounds, 0, 0);                             // as fine as the tiles
///     for (...) tile.AddTileForMerge(source);
///     if (int code = tile.Generate(&params)) return code;  // merged and shaded
///     show(tile.SRTImage(), tile.SRTWidth(), tile.SRTHeight());
///     tile.CreateMesh(mesh, K7_TER_MESH_GLOBE, 1);
///
/// Posts stand in the middle of their cells, which share a tile's bounds evenly, so that a lookup answers the
/// nearest post. Tiles whose posts stand on one lattice, as those of a level do, are put together before
/// anything else, a post that several have once; the merged grid then goes on across their edges as within
/// them. Posts that fall together are copied; others are interpolated, or averaged where the source is finer,
/// such that slopes stay what they are. Where tiles overlap the finer ones count, of equals the more
/// southern, then the more western, in whatever order they were added. What no tile has is K7_NO_ELEV.
///
/// Ask for no more posts than the tiles have: pictures are smooth between posts at any size
/// (`GenShadedRelief` with one, `Render`), while posts in between, of whole metres, would show the tiles'
/// own.
///
/// To meet its neighbours without a seam, in shades, meshes and after smoothing, a tile knows the posts
/// around it: merging learns them, from the same tiles. So add those too that lie beyond the bounds by three
/// posts.
///
/// One thread at a time; source tiles may serve lookups meanwhile.
class K7_API K7TerTileEX : public K7TerTile {
 public:
  K7TerTileEX() = default;
  ~K7TerTileEX() override;

  /// \name Merging
  /// @{
  /// Sets bounds, rows and columns (1 to 32767) and drops everything else. With rows and columns 0, merging
  /// takes the spacing of the finest tile; with empty bounds too, those of all tiles together. Answers 0, or
  /// K7_ERR_INVALID_DATA for other counts and for bounds that are no area of the globe.
  int Init(const K7ChartRect& bounds, int rows, int columns);
  /// Adds a source, which stays the caller's and must live until the merging is done. A tile that was added
  /// is not added again. Answers 0, K7_ERR_BAD_ARGUMENT for null and this tile itself, or K7_ERR_MEMORY.
  int AddTileForMerge(K7TerTile* tile);
  /// Answers the number of tiles added.
  int MergeCount() const { return m_sources.Count(); }
  /// Makes the grid anew of all tiles added. Those whose grid cannot be had are left out. Answers 0;
  /// K7_ERR_NOT_INITIALIZED when there are neither bounds nor tiles; K7_ERR_OUT_OF_RANGE when the finest
  /// spacing makes more than 32767 rows or columns or 2^24 posts, and when tiles are so much finer than the
  /// grid that they have more than 2^26 posts on it: take a coarser level; K7_ERR_MEMORY.
  int MergeTiles();
  /// Fills what the grid lacks, and nothing else, from one tile. Answers 0, K7_ERR_NOT_INITIALIZED without a
  /// grid, K7_ERR_NOT_FOUND when that of `tile` cannot be had, K7_ERR_INVALID_DATA for its bounds,
  /// K7_ERR_OUT_OF_RANGE as `MergeTiles`, K7_ERR_MEMORY.
  int MergeMesh(const K7TerTile& tile);
  /// Learns the posts around the grid from the tiles added, for a grid that was filled otherwise. Answers 0,
  /// K7_ERR_NOT_INITIALIZED without a grid, or as `MergeTiles`.
  int InitBoundary();
  void FreeBoundary();
  /// Takes the noise out of the grid: each post becomes the mean of it and its neighbours with the weights
  /// 1 2 1 in both directions. Neighbours smoothed alike, once, still meet without a seam. Where the posts
  /// around are not known, those of the edges are smoothed along them only. Answers 0, K7_ERR_NOT_INITIALIZED
  /// without a grid, or K7_ERR_MEMORY.
  int SmoothMesh() override;
  /// Drops grid, boundary and picture; the tiles added stay.
  void Free();
  void FreeMesh() override { Free(); }
  void FreeContents() override { Free(); }
  /// @}

  /// Merges and shades: what it takes from tiles added to a picture. Answers 0 or what failed.
  int Generate(const K7TerParams* params) override;

 private:
  friend class TilePosts;

  int ChooseGrid();
  int InitRim();
  void TakeFromRim();
  void CopyBoundary(int16_t* posts) const;
  K7TerTile* Source(int i) const { return static_cast<K7TerTile*>(m_sources[i]); }
  int SortSources();

  K7PtrArray m_sources;
  int16_t* m_rim = nullptr;  // the grid as it was merged and the posts around it, row by row
  int m_rimPosts = 0;
  K7ChartRect m_wishedBounds;  // as `Init` was told; merging chooses what is open
  int m_wishedRows = 0;
  int m_wishedColumns = 0;
};
