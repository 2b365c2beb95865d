// The shapes of a shapefile: K7ShpObj and the twelve classes derived from it.
#pragma once

#include <k7/export.h>

#include <cstdint>

class K7File;
class K7ShpFile;

struct K7ShpXY {
  double x;
  double y;
};

struct K7ShpRect {
  double xMin;
  double yMin;
  double xMax;
  double yMax;
};

/// Numbers the shape types as files hold them.
enum K7ShpType : int32_t {
  K7_SHP_NULL = 0,
  K7_SHP_POINT = 1,
  K7_SHP_POLYLINE = 3,
  K7_SHP_POLYGON = 5,
  K7_SHP_MULTIPOINT = 8,
  K7_SHP_POINT_Z = 11,
  K7_SHP_POLYLINE_Z = 13,
  K7_SHP_POLYGON_Z = 15,
  K7_SHP_MULTIPOINT_Z = 18,
  K7_SHP_POINT_M = 21,
  K7_SHP_POLYLINE_M = 23,
  K7_SHP_POLYGON_M = 25,
  K7_SHP_MULTIPOINT_M = 28,
};

/// Stands for a measure that a shape does not have. Files may hold other values for it: all below -1e38
/// mean the same.
inline constexpr double K7_SHP_NO_MEASURE = -1e39;

/// A K7ShpObj is one shape of a shapefile, its coordinates as in the file. Once read it does not change:
/// any number of threads may use it. Positions in degrees come through the conversion hooks of the
/// `K7ShpFile` that is passed in, so that a derived reader's projection holds for them; a host that knows
/// its coordinates are degrees takes `Points` instead.
///
/// Operations that return an int give 0, a count or a code: K7_ERR_BAD_ARGUMENT for a null file,
/// K7_ERR_OUT_OF_RANGE for an index that the shape does not have, K7_ERR_INVALID_DATA when the hook answers
/// false, K7_ERR_NOT_IMPLEMENTED for what the shape type does not have. Results are written only with 0.
class K7_API K7ShpObj {
 public:
  virtual ~K7ShpObj();
  /// Writes a readable dump to the standard output; of many points only the first.
  virtual void Print() const = 0;
  /// Reads what follows the shape type in a record. `contentLength` is the record's, in 16-bit words with
  /// the two of the type. One that is too small to hold any such shape is taken for unknown: the shape's
  /// own counts alone tell its size then. Else it must hold what the counts ask for; M values are read when
  /// it has room for them, and words behind the shape are skipped, unless the file ends before them.
  ///
  /// Answers 0, K7_ERR_BAD_ARGUMENT, K7_ERR_FILE_IO when the file ends before the shape,
  /// K7_ERR_OUT_OF_RANGE for counts that are negative or do not fit the record and for parts out of order,
  /// or K7_ERR_MEMORY. After a failure the shape is empty.
  virtual int Read(K7File* file, int contentLength) = 0;

  /// \name Counts
  /// @{
  virtual int GetPointCount() const;
  /// Answers the parts of a poly shape; 0 for the others.
  virtual int GetPolyCount() const;
  /// Answers the points of part i, or K7_ERR_OUT_OF_RANGE.
  virtual int GetPolySize(int i) const;
  /// @}

  /// \name Positions
  /// @{
  /// Gives the position of point i, in degrees.
  virtual int GetPoint(K7ShpFile* file, int i, double& lat, double& lon) const;
  /// Gives the bounds in degrees; those of a point are its position.
  virtual int GetBounds(K7ShpFile* file, double& north, double& south, double& east, double& west) const = 0;
  /// Gives the position of a point shape; K7_ERR_NOT_IMPLEMENTED for every other.
  virtual int GetPos(K7ShpFile* file, double& lat, double& lon) const;
  /// @}

  /// Makes an empty shape for a type code of `K7ShpType`; the caller deletes it. Answers null for other
  /// codes, `err` (optional) receiving K7_ERR_INVALID_DATA, and without memory, with K7_ERR_MEMORY.
  static K7ShpObj* Create(int32_t type, int* err = nullptr);
  /// Answers the type code.
  int32_t Type() const { return m_type; }
  /// Answers all `GetPointCount` points one after the other, part after part; null for a shape without
  /// points.
  const K7ShpXY* Points() const { return m_pointCount > 0 ? m_points : nullptr; }

 protected:
  explicit K7ShpObj(int32_t type) : m_type(type) {}
  K7ShpObj(const K7ShpObj&) = delete;
  K7ShpObj& operator=(const K7ShpObj&) = delete;

  /// Answers the bytes that a content length, in 16-bit words, leaves behind the shape type and `used`
  /// further bytes. They are negative when it has no room for these, and so is no content length at all.
  static int64_t RoomBehind(int contentLength, int used) { return int64_t{contentLength} * 2 - 4 - used; }

  int32_t m_type;
  int32_t m_pointCount = 0;
  const K7ShpXY* m_points = nullptr;
};

class K7_API K7ShpPoint : public K7ShpObj {
 public:
  K7ShpPoint() : K7ShpPoint(K7_SHP_POINT) {}

  void Print() const override;
  int Read(K7File* file, int contentLength) override;
  int GetBounds(K7ShpFile* file, double& north, double& south, double& east, double& west) const override;
  int GetPos(K7ShpFile* file, double& lat, double& lon) const override;

 protected:
  explicit K7ShpPoint(int32_t type) : K7ShpObj(type) {}
  /// Reads x, y and `extra` measures, the last of which may be missing.
  int ReadPoint(K7File* file, int contentLength, double* measures, int extra);

 private:
  K7ShpXY m_xy{};
};

class K7_API K7ShpPointZ : public K7ShpPoint {
 public:
  K7ShpPointZ() : K7ShpPoint(K7_SHP_POINT_Z) {}

  void Print() const override;
  int Read(K7File* file, int contentLength) override;

  double Z() const { return m_measures[0]; }
  /// Answers the measure; K7_SHP_NO_MEASURE when the record has none.
  double M() const { return m_measures[1]; }

 private:
  double m_measures[2] = {0, K7_SHP_NO_MEASURE};
};

class K7_API K7ShpPointM : public K7ShpPoint {
 public:
  K7ShpPointM() : K7ShpPoint(K7_SHP_POINT_M) {}

  void Print() const override;
  int Read(K7File* file, int contentLength) override;

  /// Answers the measure; K7_SHP_NO_MEASURE when the record has none.
  double M() const { return m_m; }

 private:
  double m_m = K7_SHP_NO_MEASURE;
};

/// A K7ShpMulti is what the shapes of many points share: a box, the points and their measures. Everything
/// behind the box lies in one block of memory, in the file's own order.
class K7_API K7ShpMulti : public K7ShpObj {
 public:
  ~K7ShpMulti() override;

  void Print() const override;
  int Read(K7File* file, int contentLength) override;
  int GetBounds(K7ShpFile* file, double& north, double& south, double& east, double& west) const override;

  const K7ShpRect& Box() const { return m_box; }

  /// \name Measures
  /// @{
  /// Answers one value a point; null for shapes without Z.
  const double* Z() const;
  /// Answers one value a point; null for shapes without M, and for a record that leaves them out.
  const double* M() const;
  /// Answer the least and greatest value as the file states them; false where `Z` or `M` is null.
  bool GetZRange(double& min, double& max) const;
  bool GetMRange(double& min, double& max) const;
  /// @}

 protected:
  /// Takes whether a part count and part starts stand in front of the points.
  K7ShpMulti(int32_t type, bool hasParts) : K7ShpObj(type), m_hasParts(hasParts) {}

  int32_t m_partCount = 0;

 private:
  void Clear();
  int ReadBody(K7File* file, int64_t size, int parts);

  bool m_hasParts;
  bool m_hasM = false;
  K7ShpRect m_box{};
  void* m_block = nullptr;
};

class K7_API K7ShpMultiPoint : public K7ShpMulti {
 public:
  K7ShpMultiPoint() : K7ShpMultiPoint(K7_SHP_MULTIPOINT) {}

 protected:
  explicit K7ShpMultiPoint(int32_t type) : K7ShpMulti(type, false) {}
};

class K7_API K7ShpMultiPointZ : public K7ShpMultiPoint {
 public:
  K7ShpMultiPointZ() : K7ShpMultiPoint(K7_SHP_MULTIPOINT_Z) {}
};

class K7_API K7ShpMultiPointM : public K7ShpMultiPoint {
 public:
  K7ShpMultiPointM() : K7ShpMultiPoint(K7_SHP_MULTIPOINT_M) {}
};

/// A K7ShpPoly is a line or a polygon: its points are divided into parts.
class K7_API K7ShpPoly : public K7ShpMulti {
 public:
  int GetPolyCount() const override;
  int GetPolySize(int i) const override;

  /// Answers the index of each part's first point: `GetPolyCount` ascending values. Null without parts.
  const int32_t* PartStarts() const;

 protected:
  explicit K7ShpPoly(int32_t type) : K7ShpMulti(type, true) {}
};

class K7_API K7ShpPolyLine : public K7ShpPoly {
 public:
  K7ShpPolyLine() : K7ShpPolyLine(K7_SHP_POLYLINE) {}

 protected:
  explicit K7ShpPolyLine(int32_t type) : K7ShpPoly(type) {}
};

class K7_API K7ShpPolyLineZ : public K7ShpPolyLine {
 public:
  K7ShpPolyLineZ() : K7ShpPolyLine(K7_SHP_POLYLINE_Z) {}
};

class K7_API K7ShpPolyLineM : public K7ShpPolyLine {
 public:
  K7ShpPolyLineM() : K7ShpPolyLine(K7_SHP_POLYLINE_M) {}
};

/// Outer rings run clockwise, holes counter-clockwise, and each ends with its first point again, in files
/// that keep the format's rules; nothing here checks or mends them.
class K7_API K7ShpPolygon : public K7ShpPoly {
 public:
  K7ShpPolygon() : K7ShpPolygon(K7_SHP_POLYGON) {}

 protected:
  explicit K7ShpPolygon(int32_t type) : K7ShpPoly(type) {}
};

class K7_API K7ShpPolygonZ : public K7ShpPolygon {
 public:
  K7ShpPolygonZ() : K7ShpPolygon(K7_SHP_POLYGON_Z) {}
};

class K7_API K7ShpPolygonM : public K7ShpPolygon {
 public:
  K7ShpPolygonM() : K7ShpPolygon(K7_SHP_POLYGON_M) {}
};
