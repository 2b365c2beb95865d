// The shapes of many points: multipoints, lines and polygons.

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>
#include <k7/geometry/shp_file.h>
#include <k7/geometry/shp_obj.h>

#include "io/read.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int PRINTED_POINTS = 8;

// A measure in a block: its range, then a value a point.
constexpr int64_t MeasureSize(int64_t points) { return (2 + points) * int64_t{sizeof(double)}; }

bool HasZ(int32_t type) { return type / 10 == 1; }
bool MayHaveM(int32_t type) { return type >= 10; }

const char* KindName(int32_t type) {
  if (type % 10 == K7_SHP_MULTIPOINT) return "MultiPoint";
  return type % 10 == K7_SHP_POLYGON ? "Polygon" : "PolyLine";
}

bool GetRange(const double* values, double& min, double& max) {
  if (!values) return false;
  min = values[-2];
  max = values[-1];
  return true;
}

bool Ascending(const int32_t* starts, int count, int points) {
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): null only with no parts
  if (count > 0 && (starts[0] < 0 || starts[count - 1] > points)) return false;
  return std::is_sorted(starts, starts + count);
}

}  // namespace

K7ShpMulti::~K7ShpMulti() { std::free(m_block); }

void K7ShpMulti::Clear() {
  std::free(m_block);
  m_block = nullptr;
  m_points = nullptr;
  m_pointCount = m_partCount = 0;
  m_hasM = false;
  m_box = {};
}

int K7ShpMulti::Read(K7File* file, int contentLength) {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  Clear();
  char head[sizeof(K7ShpRect) + 2 * sizeof(int32_t)];
  const int headSize = static_cast<int>(sizeof head) - (m_hasParts ? 0 : 4);
  if (k7read::Exact(file, head, headSize) != 0) return K7_ERR_FILE_IO;
  int32_t parts = 0;
  int32_t points = 0;
  K7ShpRect box;
  k7read::Cursor cursor(head, static_cast<size_t>(headSize));
  cursor.Little(box);
  if (m_hasParts) cursor.Little(parts);
  cursor.Little(points);
  if (parts < 0 || points < 0) return K7_ERR_OUT_OF_RANGE;

  const int64_t room = RoomBehind(contentLength, headSize);
  int64_t size = int64_t{parts} * int64_t{sizeof(int32_t)} + int64_t{points} * int64_t{sizeof(K7ShpXY)};
  if (HasZ(m_type)) size += MeasureSize(points);
  if (room >= 0 && size > room) return K7_ERR_OUT_OF_RANGE;
  const bool hasM = MayHaveM(m_type) && (room < 0 || size + MeasureSize(points) <= room);
  if (hasM) size += MeasureSize(points);

  if (const int err = ReadBody(file, size, parts)) return err;
  if (!Ascending(reinterpret_cast<const int32_t*>(m_points) - parts, parts, points)) {
    Clear();
    return K7_ERR_OUT_OF_RANGE;
  }
  m_box = box;
  m_partCount = parts;
  m_pointCount = points;
  m_hasM = hasM;
  k7read::SkipWithin(file, room - size);
  return 0;
}

// Part starts, points and measures come in one read, as they lie in the file. An odd number of part starts is
// moved up by half a word, so that the doubles behind them are aligned.
int K7ShpMulti::ReadBody(K7File* file, int64_t size, int parts) {
  const int64_t pad = parts % 2 * int64_t{sizeof(int32_t)};
  if (size > INT32_MAX || !k7read::Holds(file, size)) return K7_ERR_FILE_IO;
  if (size == 0) return 0;
  m_block = std::malloc(static_cast<size_t>(pad + size));
  if (!m_block) return K7_ERR_MEMORY;
  char* const body = static_cast<char*>(m_block) + pad;
  if (k7read::Exact(file, body, static_cast<int>(size)) != 0) {
    Clear();
    return K7_ERR_FILE_IO;
  }
  m_points = reinterpret_cast<const K7ShpXY*>(body + int64_t{parts} * int64_t{sizeof(int32_t)});
  return 0;
}

int K7ShpMulti::GetBounds(K7ShpFile* file, double& north, double& south, double& east, double& west) const {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  return file->K7Shp2ChartRect(&m_box, north, south, east, west) ? 0 : K7_ERR_INVALID_DATA;
}

const double* K7ShpMulti::Z() const {
  if (!HasZ(m_type) || m_pointCount == 0) return nullptr;
  return reinterpret_cast<const double*>(m_points + m_pointCount) + 2;
}

const double* K7ShpMulti::M() const {
  if (!m_hasM || m_pointCount == 0) return nullptr;
  const double* const behindPoints = reinterpret_cast<const double*>(m_points + m_pointCount);
  return behindPoints + (HasZ(m_type) ? 2 + m_pointCount : 0) + 2;
}

bool K7ShpMulti::GetZRange(double& min, double& max) const { return GetRange(Z(), min, max); }
bool K7ShpMulti::GetMRange(double& min, double& max) const { return GetRange(M(), min, max); }

void K7ShpMulti::Print() const {
  std::fputs(K7FmtString("%s (type %d), %d parts, %d points, x %.9g to %.9g, y %.9g to %.9g\n",
                         KindName(m_type), static_cast<int>(m_type), static_cast<int>(m_partCount),
                         static_cast<int>(m_pointCount), m_box.xMin, m_box.xMax, m_box.yMin, m_box.yMax),
             stdout);
  const int shown = std::min<int>(m_pointCount, PRINTED_POINTS);
  for (int i = 0; i < shown; ++i) {
    K7FmtString line("  %.9g %.9g", m_points[i].x, m_points[i].y);
    if (Z()) line += K7FmtString(" z %.9g", Z()[i]);
    if (M()) line += K7FmtString(" m %.9g", M()[i]);
    std::fputs(line, stdout);
    std::fputs("\n", stdout);
  }
  if (shown < m_pointCount) std::fputs("  ...\n", stdout);
}

int K7ShpPoly::GetPolyCount() const { return m_partCount; }

int K7ShpPoly::GetPolySize(int i) const {
  if (i < 0 || i >= m_partCount) return K7_ERR_OUT_OF_RANGE;
  const int32_t* const starts = PartStarts();
  // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): there is a part
  return (i + 1 < m_partCount ? starts[i + 1] : m_pointCount) - starts[i];
}

const int32_t* K7ShpPoly::PartStarts() const {
  return m_partCount > 0 ? reinterpret_cast<const int32_t*>(m_points) - m_partCount : nullptr;
}
