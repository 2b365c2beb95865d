#include <k7/terrain/ter_color_map.h>

#include <algorithm>

bool K7TerColorMap::Init(int count, const int32_t* elevations, const K7Color* colors) {
  if (count < 0 || count > MAX_BANDS || (count > 0 && (!elevations || !colors))) return false;
  const K7LockGuard lock(m_mutex);
  m_count = count;
  std::copy_n(elevations, count, m_elevations);
  std::copy_n(colors, count, m_colors);
  return true;
}

K7Color K7TerColorMap::GetColor(int elevation) const {
  const K7LockGuard lock(m_mutex);
  if (m_count == 0) return K7Color();
  int next = 1;
  while (next < m_count && elevation >= m_elevations[next]) ++next;
  return m_colors[next - 1];
}

int K7TerColorMap::Count() const {
  const K7LockGuard lock(m_mutex);
  return m_count;
}

int K7TerColorMap::DefElev(int i) const {
  const K7LockGuard lock(m_mutex);
  return i >= 0 && i < m_count ? m_elevations[i] : 0;
}

K7Color K7TerColorMap::DefColor(int i) const {
  const K7LockGuard lock(m_mutex);
  return i >= 0 && i < m_count ? m_colors[i] : K7Color();
}

int K7TerColorMap::GetBands(int32_t* elevations, K7Color* colors) const {
  const K7LockGuard lock(m_mutex);
  std::copy_n(m_elevations, m_count, elevations);
  std::copy_n(m_colors, m_count, colors);
  return m_count;
}
