#include "layers/relief_picture.h"

#include <k7/projection/grfx.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

// Takes the picture that a relief draws.
class Picture : public K7GrfxK7 {
 public:
  using K7GrfxK7::K7GrfxK7;
  void Image(const uint32_t* image, int w, int h, double x, double y, double, double) override {
    pixels.assign(image, image + static_cast<size_t>(w) * static_cast<size_t>(h));
    width = w;
    height = h;
    left = x;
    top = y;
  }

  std::vector<uint32_t> pixels;
  int width = 0, height = 0;
  double left = 0, top = 0;
};

// Distances of pixels from the nearest place that is on the map and has no data, by steps of 3 to a neighbour
// and 4 to one across a corner (G. Borgefors, "Distance transformations in digital images", Computer Vision,
// Graphics, and Image Processing 34, 1986), in thirds of a pixel. A border of one pixel on every side is as
// far away as can be told.
class EdgeDistances {
 public:
  EdgeDistances(const Picture& picture, const K7MapView& view)
      : m_picture(picture), m_stride(static_cast<size_t>(picture.width) + 2) {
    for (int y = 0; y < picture.height; ++y) FindRims(y, view);
    if (m_distances.empty()) return;
    for (int y = 0; y < picture.height; ++y) Spread(y, -1);
    for (int y = picture.height; y-- > 0;) Spread(y, 1);
  }

  /// Whether all data go on to the picture's sides and the map's own.
  bool AreFar() const { return m_distances.empty(); }
  const int16_t* Row(int y) const { return &m_distances[At(0, y)]; }

 private:
  static constexpr int16_t FAR = 1 << 14;  // a step more is one still

  size_t At(int x, int y) const { return static_cast<size_t>(y + 1) * m_stride + static_cast<size_t>(x + 1); }
  bool HasData(int x, int y) const {
    if (x < 0 || y < 0 || x >= m_picture.width || y >= m_picture.height) return false;
    return m_picture.pixels[static_cast<size_t>(y) * static_cast<size_t>(m_picture.width) +
                            static_cast<size_t>(x)] >>
               24 !=
           0;
  }
  // Places without data beside one that has some.
  void FindRims(int y, const K7MapView& view) {
    for (int x = 0; x < m_picture.width; ++x) {
      if (HasData(x, y)) continue;
      if (!HasData(x - 1, y) && !HasData(x + 1, y) && !HasData(x, y - 1) && !HasData(x, y + 1)) continue;
      double lat, lon;
      if (!view.FromDevice(m_picture.left + x + 0.5, m_picture.top + y + 0.5, lat, lon)) continue;
      if (m_distances.empty())
        m_distances.assign(m_stride * (static_cast<size_t>(m_picture.height) + 2), FAR);
      m_distances[At(x, y)] = 0;
    }
  }
  // What the neighbours that come before (-1) or behind (1) in reading order make a row: those of the row
  // beside it at once, then those within it one after another.
  void Spread(int y, int side) {
    int16_t* const row = &m_distances[At(0, y)];
    const int16_t* const beside = &m_distances[At(0, y + side)];
    const int width = m_picture.width;
    for (int x = 0; x < width; ++x) {
      const auto across = static_cast<int16_t>(std::min(beside[x - 1], beside[x + 1]) + 4);
      const auto straight = static_cast<int16_t>(beside[x] + 3);
      row[x] = std::min(row[x], std::min(across, straight));
    }
    int last = FAR;
    for (int i = 0; i < width; ++i) {
      int16_t& here = row[side < 0 ? i : width - 1 - i];
      last = std::min(int{here}, last + 3);
      here = static_cast<int16_t>(last);
    }
  }

  const Picture& m_picture;
  size_t m_stride;
  std::vector<int16_t> m_distances;  // none without a rim
};

// Makes a picture fade over so many pixels towards its rims. False when nothing is left to be seen in full.
bool Fade(Picture& picture, const K7MapView& view, double pixels) {
  const EdgeDistances distances(picture, view);
  if (distances.AreFar())
    return std::any_of(picture.pixels.begin(), picture.pixels.end(),
                       [](uint32_t pixel) { return pixel != 0; });
  const auto full = static_cast<int>(std::ceil(3 * pixels));
  bool isSeen = false;
  for (int y = 0; y < picture.height; ++y) {
    const int16_t* const row = distances.Row(y);
    uint32_t* const out = picture.pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(picture.width);
    for (int x = 0; x < picture.width; ++x) {
      if (out[x] == 0) continue;
      isSeen = isSeen || row[x] >= full;
      if (row[x] >= full) continue;
      // Smooth at both ends.
      const double share = row[x] / 3.0 / pixels, opacity = share * share * (3 - 2 * share);
      out[x] = static_cast<uint32_t>((out[x] >> 24) * opacity) << 24 | (out[x] & 0xFFFFFF);
    }
  }
  return isSeen;
}

}  // namespace

bool DrawFadingRelief(const K7TerTileEX& tile, const K7MapView& view, const K7TerParams& params, double fade,
                      K7Grfx& g) {
  Picture picture(view.Width(), view.Height());
  if (tile.Render(&picture, view, params) != 0 || picture.pixels.empty()) return false;
  const bool isSeen = Fade(picture, view, fade);
  g.Image(picture.pixels.data(), picture.width, picture.height, picture.left, picture.top,
          picture.left + picture.width, picture.top + picture.height);
  return isSeen;
}
