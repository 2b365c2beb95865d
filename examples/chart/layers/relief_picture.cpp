#include "layers/relief_picture.h"

#include <k7/projection/grfx.h>

#include <algorithm>
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
// Graphics, and Image Processing 34, 1986), in thirds of a pixel.
class EdgeDistances {
 public:
  EdgeDistances(const Picture& picture, const K7MapView& view)
      : m_picture(picture), m_distances(picture.pixels.size(), FAR) {
    bool any = false;
    for (int y = 0; y < picture.height; ++y)
      for (int x = 0; x < picture.width; ++x)
        if (IsRim(x, y) && IsOnMap(view, x, y)) {
          m_distances[At(x, y)] = 0;
          any = true;
        }
    if (!any) return;
    for (int y = 0; y < picture.height; ++y)
      for (int x = 0; x < picture.width; ++x) Take(x, y, -1);
    for (int y = picture.height; y-- > 0;)
      for (int x = picture.width; x-- > 0;) Take(x, y, 1);
  }

  double Of(size_t pixel) const { return m_distances[pixel] / 3.0; }

 private:
  static constexpr int FAR = 1 << 20;

  size_t At(int x, int y) const {
    return static_cast<size_t>(y) * static_cast<size_t>(m_picture.width) + static_cast<size_t>(x);
  }
  bool IsInside(int x, int y) const {
    return x >= 0 && y >= 0 && x < m_picture.width && y < m_picture.height;
  }
  bool HasData(int x, int y) const { return IsInside(x, y) && m_picture.pixels[At(x, y)] >> 24 != 0; }
  // Without data beside one that has some.
  bool IsRim(int x, int y) const {
    return !HasData(x, y) &&
           (HasData(x - 1, y) || HasData(x + 1, y) || HasData(x, y - 1) || HasData(x, y + 1));
  }
  bool IsOnMap(const K7MapView& view, int x, int y) const {
    double lat, lon;
    return view.FromDevice(m_picture.left + x + 0.5, m_picture.top + y + 0.5, lat, lon);
  }
  // What the neighbours that come before (-1) or behind (1) in reading order make it.
  void Take(int x, int y, int side) {
    int& here = m_distances[At(x, y)];
    const auto from = [&](int dx, int dy, int step) {
      if (IsInside(x + dx, y + dy)) here = std::min(here, m_distances[At(x + dx, y + dy)] + step);
    };
    from(side, 0, 3);
    from(0, side, 3);
    from(-1, side, 4);
    from(1, side, 4);
  }

  const Picture& m_picture;
  std::vector<int> m_distances;
};

}  // namespace

bool DrawFadingRelief(const K7TerTileEX& tile, const K7MapView& view, const K7TerParams& params, double fade,
                      K7Grfx& g) {
  Picture picture(view.Width(), view.Height());
  if (tile.Render(&picture, view, params) != 0 || picture.pixels.empty()) return false;
  const EdgeDistances distances(picture, view);
  bool isSeen = false;
  for (size_t i = 0; i < picture.pixels.size(); ++i) {
    uint32_t& pixel = picture.pixels[i];
    if (pixel == 0) continue;
    const double share = distances.Of(i) / fade;
    isSeen = isSeen || share >= 1;
    if (share >= 1) continue;
    // Smooth at both ends.
    const double opacity = share * share * (3 - 2 * share);
    pixel = static_cast<uint32_t>((pixel >> 24) * opacity) << 24 | (pixel & 0xFFFFFF);
  }
  g.Image(picture.pixels.data(), picture.width, picture.height, picture.left, picture.top,
          picture.left + picture.width, picture.top + picture.height);
  return isSeen;
}
