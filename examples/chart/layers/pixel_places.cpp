#include "layers/pixel_places.h"

#include <cmath>
#include <iterator>
#include <utility>

PixelSquare::PixelSquare(const K7MapView& view, int left, int top, int size)
    : m_view(view),
      m_left(left),
      m_top(top),
      m_width(std::min(size, view.Width() - left)),
      m_height(std::min(size, view.Height() - top)),
      m_perColumn(1.0 / std::max(m_width - 1, 1)),
      m_perRow(1.0 / std::max(m_height - 1, 1)),
      m_isSmooth(FindPlaces()) {}

// Projections have places beyond what is drawn of them, as about a Lambert chart's far pole: what is on the
// map leads back to its pixel.
bool PixelSquare::Exact(double dx, double dy, double& lat, double& lon) const {
  double x, y;
  return m_view.FromDevice(dx, dy, lat, lon) && m_view.ToDevice(lat, lon, x, y) &&
         std::abs(x - dx) + std::abs(y - dy) < 1;
}

bool PixelSquare::Near(double across, double down, double& lat, double& lon) const {
  static constexpr double NEAR_POLE = 89;
  if (!Exact(m_left + 0.5 + across, m_top + 0.5 + down, lat, lon) || std::abs(lat) > NEAR_POLE) return false;
  lon = m_lon[0] + std::remainder(lon - m_lon[0], 360);
  return true;
}

// Whether places between the corners are off by less than a tenth of a pixel at the middle and at two edges,
// where squares that bend are off the most.
bool PixelSquare::FindPlaces() {
  const double right = m_width - 1, bottom = m_height - 1;
  double lat[4], lon[4];
  for (int i = 0; i < 4; ++i) {
    if (!Near(i % 2 ? right : 0, i < 2 ? 0 : bottom, lat[i], lon[i])) return false;
    if (i == 0) m_lon[0] = lon[0];
  }
  for (auto& [from, to] : {std::pair(lat, m_lat), std::pair(lon, m_lon)}) {
    to[0] = from[0];
    to[1] = from[1] - from[0];
    to[2] = from[2] - from[0];
    to[3] = from[3] - from[2] - to[1];
  }
  const double slack = 0.1 / (m_width + m_height);
  const double latSlack = slack * (std::abs(lat[3] - lat[0]) + std::abs(lat[2] - lat[1]));
  const double lonSlack = slack * (std::abs(lon[3] - lon[0]) + std::abs(lon[2] - lon[1]));
  const double places[][2] = {{right / 2, bottom / 2}, {right / 2, 0}, {0, bottom / 2}};
  return std::all_of(std::begin(places), std::end(places), [&](const double(&place)[2]) {
    double exactLat, exactLon, betweenLat, betweenLon;
    if (!Near(place[0], place[1], exactLat, exactLon)) return false;
    Between(place[0], place[1], betweenLat, betweenLon);
    return std::abs(exactLat - betweenLat) <= latSlack && std::abs(exactLon - betweenLon) <= lonSlack;
  });
}
