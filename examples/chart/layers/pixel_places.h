// Which places the pixels of a view show, for pictures that are laid over the map.
#pragma once

#include <k7/projection/map_view.h>

#include <algorithm>

/// The places of a square of pixels. Where it is far from poles, seams and the edge of the map, the
/// projection is asked for a few, between which the others lie; elsewhere for each.
class PixelSquare {
 public:
  static constexpr int LARGEST = 16, SMALLEST = 4;

  /// The square whose first pixel is (left, top), or what the window has of it.
  PixelSquare(const K7MapView& view, int left, int top, int size);
  bool IsSmooth() const { return m_isSmooth; }
  int Right() const { return m_left + m_width; }
  int Bottom() const { return m_top + m_height; }

  /// The place of a pixel's middle, longitude without bounds; false off the map.
  bool At(int x, int y, double& lat, double& lon) const {
    if (!m_isSmooth) return Exact(x + 0.5, y + 0.5, lat, lon);
    Between(x - m_left, y - m_top, lat, lon);
    return true;
  }

 private:
  bool Exact(double dx, double dy, double& lat, double& lon) const;
  // Of what lies so many pixels from the middle of the first.
  bool Near(double across, double down, double& lat, double& lon) const;
  void Between(double across, double down, double& lat, double& lon) const {
    const double u = across * m_perColumn, v = down * m_perRow;
    lat = m_lat[0] + u * m_lat[1] + v * (m_lat[2] + u * m_lat[3]);
    lon = m_lon[0] + u * m_lon[1] + v * (m_lon[2] + u * m_lon[3]);
  }
  bool FindPlaces();

  const K7MapView& m_view;
  int m_left, m_top, m_width, m_height;
  double m_perColumn, m_perRow;         // shares of the way to the last pixel's middle
  double m_lat[4] = {}, m_lon[4] = {};  // 1, u, v, uv
  bool m_isSmooth;
};

template <class Visit>
void VisitSquare(const K7MapView& view, int left, int top, int size, Visit& visit) {
  if (left >= view.Width() || top >= view.Height()) return;
  const PixelSquare square(view, left, top, size);
  if (!square.IsSmooth() && size > PixelSquare::SMALLEST) {
    const int half = size / 2;
    for (int i = 0; i < 4; ++i) VisitSquare(view, left + i % 2 * half, top + i / 2 * half, half, visit);
    return;
  }
  double lat, lon;
  for (int y = top; y < square.Bottom(); ++y)
    for (int x = left; x < square.Right(); ++x)
      if (square.At(x, y, lat, lon)) visit(x, y, lat, lon);
}

/// Calls `visit(x, y, lat, lon)` for each pixel that shows a place of the map.
template <class Visit>
void VisitPlaces(const K7MapView& view, Visit visit) {
  constexpr int SIZE = PixelSquare::LARGEST;
  for (int top = 0; top < view.Height(); top += SIZE)
    for (int left = 0; left < view.Width(); left += SIZE) VisitSquare(view, left, top, SIZE, visit);
}
