// K7TerRelief: the shaded colours of a terrain tile.
#pragma once

#include <k7/export.h>
#include <k7/terrain/ter_params.h>
#include <k7/terrain/ter_tile.h>

#include <cstdint>

class K7Grfx;
class K7MapView;
struct K7TerReliefStore;

/// A K7TerRelief gives the colours of a tile at any place: elevations interpolated between posts, tinted by
/// the bands of K7TerParams and shaded by its light, both without steps at the posts, which stand in the
/// middle of their cells. What has no data is transparent.
///
///     K7TerRelief relief;
///     if (int code = relief.Init(tile, params)) return code;
///     relief.Image(pixels.data(), width, height);          // the tile itself, north up
///     relief.Render(&grfx, view);                          // the tile in any projection
///
/// Slopes are those of B. K. P. Horn, "Hill shading and the reflectance map", Proceedings of the IEEE 69 (1),
/// 1981. A slope's brightness is ambient + diffuse x the cosine between its normal and the light (Lambert),
/// divided by that of level ground, which so keeps the colour of its band. Limits of bands are smooth lines:
/// a pixel through which one runs mixes their colours.
///
/// It keeps what it needs, 16 bytes a post, and refers to neither tile nor settings afterwards. One thread
/// calls `Init`; then any number may ask.
class K7_API K7TerRelief {
 public:
  K7TerRelief() = default;
  K7TerRelief(const K7TerRelief&) = delete;
  K7TerRelief& operator=(const K7TerRelief&) = delete;
  ~K7TerRelief();

  /// Takes a tile's grid, which is read when it is absent, and settings. Of a
  /// K7TerTileEX that was merged the posts around it count too, so that neighbours meet without a seam.
  /// Answers 0, K7_ERR_NOT_FOUND for a tile whose grid cannot be had, K7_ERR_INVALID_DATA for bounds that are
  /// no area of the globe, K7_ERR_OUT_OF_RANGE for more than 2^24 posts, or K7_ERR_MEMORY; failed, it is
  /// empty.
  int Init(const K7TerTile& tile, const K7TerParams& params);

  /// Answers the colour at a position, 0xAARRGGBB with straight alpha, of a pixel that spans `metres` of
  /// ground; 0 outside the tile, edges belonging to it, and where there are no data.
  uint32_t ColorAt(double lat, double lon, double metres) const;
  /// Fills rows of pixels from the top, 0xAARRGGBB, that divide the tile's bounds evenly; `K7Grfx::Image`
  /// and bitmaps of 32 bits take them. Empty, it fills with 0. Answers 0, or K7_ERR_BAD_ARGUMENT for null and
  /// sizes below 1.
  int Image(uint32_t* pixels, int width, int height) const;
  /// Draws the tile where the view shows it, pixel by pixel, with one `K7Grfx::Image`. The tile has its
  /// southern and western edges, not the others, so that neighbours leave no seam and do not overlap. Answers
  /// 0, K7_ERR_BAD_ARGUMENT for null, K7_ERR_NOT_INITIALIZED while this or the view is empty, K7_ERR_MEMORY.
  int Render(K7Grfx* g, const K7MapView& view) const;

 private:
  K7TerReliefStore* m_store = nullptr;
};
