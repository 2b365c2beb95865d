#include <k7/geometry/shp_obj.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>
#include <k7/geometry/shp_file.h>

#include "io/read.h"

#include <algorithm>
#include <cstdio>
#include <new>

namespace {

K7ShpObj* NewShape(int32_t type) {
  switch (type) {
    case K7_SHP_POINT:
      return new (std::nothrow) K7ShpPoint;
    case K7_SHP_POLYLINE:
      return new (std::nothrow) K7ShpPolyLine;
    case K7_SHP_POLYGON:
      return new (std::nothrow) K7ShpPolygon;
    case K7_SHP_MULTIPOINT:
      return new (std::nothrow) K7ShpMultiPoint;
    case K7_SHP_POINT_Z:
      return new (std::nothrow) K7ShpPointZ;
    case K7_SHP_POLYLINE_Z:
      return new (std::nothrow) K7ShpPolyLineZ;
    case K7_SHP_POLYGON_Z:
      return new (std::nothrow) K7ShpPolygonZ;
    case K7_SHP_MULTIPOINT_Z:
      return new (std::nothrow) K7ShpMultiPointZ;
    case K7_SHP_POINT_M:
      return new (std::nothrow) K7ShpPointM;
    case K7_SHP_POLYLINE_M:
      return new (std::nothrow) K7ShpPolyLineM;
    case K7_SHP_POLYGON_M:
      return new (std::nothrow) K7ShpPolygonM;
    case K7_SHP_MULTIPOINT_M:
      return new (std::nothrow) K7ShpMultiPointM;
    default:
      return nullptr;
  }
}

bool HasClass(int32_t type) {
  const int32_t kind = type % 10;
  return type > 0 && type < 30 &&
         (kind == K7_SHP_POINT || kind == K7_SHP_POLYLINE || kind == K7_SHP_POLYGON ||
          kind == K7_SHP_MULTIPOINT);
}

}  // namespace

K7ShpObj::~K7ShpObj() = default;

K7ShpObj* K7ShpObj::Create(int32_t type, int* err) {
  K7ShpObj* const obj = NewShape(type);
  if (err) *err = obj ? 0 : HasClass(type) ? K7_ERR_MEMORY : K7_ERR_INVALID_DATA;
  return obj;
}

int K7ShpObj::GetPointCount() const { return m_pointCount; }
int K7ShpObj::GetPolyCount() const { return 0; }
int K7ShpObj::GetPolySize(int) const { return K7_ERR_OUT_OF_RANGE; }

int K7ShpObj::GetPoint(K7ShpFile* file, int i, double& lat, double& lon) const {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  if (i < 0 || i >= m_pointCount) return K7_ERR_OUT_OF_RANGE;
  double y = 0;
  double x = 0;
  if (!file->XY2LatLon(m_points + i, y, x)) return K7_ERR_INVALID_DATA;
  lat = y;
  lon = x;
  return 0;
}

int K7ShpObj::GetPos(K7ShpFile*, double&, double&) const { return K7_ERR_NOT_IMPLEMENTED; }

int K7ShpPoint::ReadPoint(K7File* file, int contentLength, double* measures, int extra) {
  if (!file) return K7_ERR_BAD_ARGUMENT;
  m_pointCount = 0;
  m_points = nullptr;
  double values[4] = {0, 0, K7_SHP_NO_MEASURE, K7_SHP_NO_MEASURE};
  const int64_t room = RoomBehind(contentLength, sizeof(K7ShpXY));
  int count = extra;
  if (room >= 0 && room < count * int64_t{sizeof(double)}) --count;
  if (room >= 0 && room < count * int64_t{sizeof(double)}) return K7_ERR_OUT_OF_RANGE;
  if (k7read::Exact(file, values, (2 + count) * int{sizeof(double)}) != 0) return K7_ERR_FILE_IO;
  m_xy = {values[0], values[1]};
  std::copy_n(values + 2, extra, measures);
  m_pointCount = 1;
  m_points = &m_xy;
  k7read::SkipWithin(file, room - count * int64_t{sizeof(double)});
  return 0;
}

int K7ShpPoint::Read(K7File* file, int contentLength) { return ReadPoint(file, contentLength, nullptr, 0); }
int K7ShpPointZ::Read(K7File* file, int contentLength) {
  return ReadPoint(file, contentLength, m_measures, 2);
}
int K7ShpPointM::Read(K7File* file, int contentLength) { return ReadPoint(file, contentLength, &m_m, 1); }

int K7ShpPoint::GetBounds(K7ShpFile* file, double& north, double& south, double& east, double& west) const {
  double lat = 0;
  double lon = 0;
  if (const int err = K7ShpPoint::GetPos(file, lat, lon)) return err;
  north = south = lat;
  east = west = lon;
  return 0;
}

int K7ShpPoint::GetPos(K7ShpFile* file, double& lat, double& lon) const {
  return GetPoint(file, 0, lat, lon);
}

void K7ShpPoint::Print() const { std::fputs(K7FmtString("Point %.9g %.9g\n", m_xy.x, m_xy.y), stdout); }

void K7ShpPointZ::Print() const {
  K7ShpPoint::Print();
  std::fputs(K7FmtString("  z %.9g m %.9g\n", Z(), M()), stdout);
}

void K7ShpPointM::Print() const {
  K7ShpPoint::Print();
  std::fputs(K7FmtString("  m %.9g\n", M()), stdout);
}
