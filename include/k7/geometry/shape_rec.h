// K7ShapeRec: one feature of a shape layer.
#pragma once

#include <k7/export.h>
#include <k7/projection/chart_rect.h>

#include <cstdint>

struct K7ShpXY;

/// A run of triangles. Its indices count from `firstVertex`: 16 bits reach 65,536 vertices, and a coast has
/// more.
struct K7STessGroup {
  int32_t firstVertex = 0;  ///< among those of `GetTriVerts`; index 0 of the group
  int32_t vertexCount = 0;
  int32_t firstIndex = 0;  ///< among those of `GetTriVertIndices`
  int32_t indexCount = 0;  ///< three a triangle
};

/// A K7ShapeRec is one feature: a place, lines, or an area of rings, in degrees. Its table owns it. What a
/// kind of record does not have keeps the default, which answers 0 or null.
class K7_API K7ShapeRec {
 public:
  virtual ~K7ShapeRec();

  /// \name Geometry
  /// The host's own. Operations that give something answer 0 or a code, K7_ERR_OUT_OF_RANGE for an index
  /// that the record does not have; results are written only with 0.
  /// @{
  /// Answers what tells the record from the others of its table.
  virtual int GetKey() const = 0;
  virtual int GetBounds(K7ChartRect& bounds) const = 0;
  /// Gives where a symbol or a label of the record stands: within an area, on a line.
  virtual int GetPos(double& lat, double& lon) const = 0;
  /// Answers the lines or rings; 0 for a place.
  virtual int GetPolyCount() const = 0;
  /// Answers the points of line or ring i, or K7_ERR_OUT_OF_RANGE.
  virtual int GetPolySize(int i) const = 0;
  /// Gives point i of a line or ring.
  virtual int GetPolyPoint(int poly, int i, double& lat, double& lon) const = 0;
  /// @}

  /// \name Triangles
  /// What an area is filled by. All stay the record's, until `FreeCache` or `FreeMemCache` of its table.
  /// @{
  virtual int GetTriVertCount();
  virtual const uint16_t* GetTriVertIndices();
  virtual int GetTessGroupCount();
  /// Gives an array of `GetTessGroupCount` groups, whose count it answers.
  virtual int GetTessGroups(const K7STessGroup*& groups);
  /// @}

  /// Answers the key of the record that lies beyond line or ring i; 0 when none is known.
  virtual int GetAdjacentFaceKey(int i) const;

  /// \name Cache slot
  /// For what a host computes from the record and keeps with it.
  /// @{
  virtual void* GetCache() const;
  virtual void SetCache(void* cache);
  /// Drops what can be made again. Answers the bytes freed.
  virtual int FreeCache();
  /// @}

  /// Answers the vertices of the triangles, in degrees: x east, y north. Longitudes may pass 180.
  virtual const K7ShpXY* GetTriVerts();

 protected:
  K7ShapeRec() = default;
  K7ShapeRec(const K7ShapeRec&) = default;
  K7ShapeRec& operator=(const K7ShapeRec&) = default;
};
