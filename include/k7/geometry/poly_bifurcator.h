// K7PolyBifurcator: polygons with holes cut into triangles.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/latlon.h>
#include <k7/geometry/shp_obj.h>

#include <cstdint>

struct K7PolyBifurcatorStore;

/// Cuts polygons with holes, from south to north, into contours along which latitude only rises on both
/// sides, and these into triangles, ready for a vertex buffer.
///
/// Inside is what an odd number of rings surround; no order or direction of rings is asked for. Rings may
/// touch and cross themselves and one another, repeat points and run back over their own edges. Triangles
/// never overlap, none is without area, and neighbours share whole edges: no vertex lies within an edge of
/// another triangle. Vertices are the points of the rings, bit for bit, each place once; new ones stand where
/// edges cross, at the nearest numbers that there are, and nowhere else. So a polygon that does not cross
/// itself keeps its area exactly.
///
/// The plane is that of the numbers: degrees, device pixels, metres. What jumps across 180 degrees is to be
/// carried on by the caller (K7MapFeatures does that). Costs n log n, and as much for each crossing.
///
///     K7PolyBifurcator cut;
///     for (each polygon) int triangles = cut.Add(points, sizes, parts);  // or a code
///     upload(cut.Vertices(), cut.VertexCount());
///     upload(cut.Triangles(), 3 * cut.TriangleCount());
///
/// One thread adds; afterwards any number of threads may read. Memory is kept for the next polygon: once
/// warm, nothing is allocated. (Sweep and stacks as in de Berg and others, "Computational Geometry", 3rd
/// edition, chapters 2 and 3; signs of areas after Shewchuk, "Adaptive Precision Floating-Point Arithmetic",
/// 1997.)
class K7_API K7PolyBifurcator {
 public:
  K7PolyBifurcator();
  ~K7PolyBifurcator();
  K7PolyBifurcator(const K7PolyBifurcator&) = delete;
  K7PolyBifurcator& operator=(const K7PolyBifurcator&) = delete;

  /// Appends a polygon of `parts` rings, laid end to end, `sizes` holding the points of each; rings are
  /// closed whether or not their last point is the first. Of a K7LatLon, x is the longitude and y the
  /// latitude.
  ///
  /// Answers the number of triangles added, 0 for a polygon without area, or a code with nothing added:
  /// K7_ERR_BAD_ARGUMENT for null and negative counts, K7_ERR_INVALID_DATA for a coordinate that is not a
  /// number or beyond 1e120 (what is below 1e-120 counts as 0), K7_ERR_OUT_OF_RANGE for more than 2^28 points
  /// or about four million crossings, K7_ERR_MEMORY.
  int Add(const K7ShpXY* points, const int* sizes, int parts);
  int Add(const K7LatLon* points, const int* sizes, int parts);
  /// Forgets all polygons and keeps their memory.
  void Clear();

  /// \name What was cut
  /// Of all polygons since the last `Clear`, in the order of their adding; good until the next call that
  /// changes it. Null while there is nothing.
  /// @{
  int VertexCount() const;
  const K7ShpXY* Vertices() const;
  /// Three indexes of vertices a triangle, counter-clockwise where x runs to the right and y upwards.
  int TriangleCount() const;
  const int32_t* Triangles() const;
  /// The contours that the triangles were made of: `count` indexes of vertices, counter-clockwise from the
  /// lowest. Null, and 0, outside 0 to `ContourCount` - 1.
  int ContourCount() const;
  const int32_t* Contour(int i, int& count) const;
  /// @}

 private:
  K7PolyBifurcatorStore* m_store;
};
