#include <k7/foundation/error_string.h>
#include <k7/terrain/ter_ring.h>

#include <cmath>
#include <new>

K7TerRings::~K7TerRings() { FreeRings(); }

void K7TerRings::FreeRings() {
  for (int i = 0; i < m_count; ++i) delete m_rings[i];
  delete[] m_rings;
  m_rings = nullptr;
  m_count = 0;
}

void K7TerRings::Clear() {
  const K7LockGuard lock(m_mutex);
  FreeRings();
}

int K7TerRings::Init(float height, int rows, int columns) {
  const K7LockGuard lock(m_mutex);
  FreeRings();
  if (!(height >= 0.1F && height <= 180)) return K7_ERR_INVALID_DATA;
  const float bands = std::round(180 / height);
  if (std::abs(bands * height - 180) > 1e-3F) return K7_ERR_INVALID_DATA;
  const auto count = static_cast<int>(bands);
  m_rings = new (std::nothrow) K7TerRing*[static_cast<size_t>(count)];
  if (!m_rings) return K7_ERR_MEMORY;
  m_height = height;
  int code = 0;
  while (m_count < count && !code) {
    m_rings[m_count] = new (std::nothrow) K7TerRing;
    code = m_rings[m_count] ? m_rings[m_count]->Init(-90 + m_count * 180.0 / count, height, rows, columns)
                            : K7_ERR_MEMORY;
    ++m_count;
  }
  if (code) FreeRings();
  return code;
}

int K7TerRings::Count() const {
  const K7LockGuard lock(m_mutex);
  return m_count;
}

K7TerRing* K7TerRings::Ring(int i) const {
  const K7LockGuard lock(m_mutex);
  return i >= 0 && i < m_count ? m_rings[i] : nullptr;
}

K7TerRing* K7TerRings::GetTerRing(double lat) const {
  const K7LockGuard lock(m_mutex);
  for (int i = 0; i < m_count; ++i) {
    const double south = m_rings[i]->South();
    if (south <= lat && lat < south + static_cast<double>(m_height)) return m_rings[i];
  }
  return nullptr;
}
