#include "geodesy/sphere_hull.h"

#include <k7/foundation/error_string.h>

#include "foundation/alloc.h"
#include "geodesy/exact_sum.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace k7geo {

namespace {

// The determinant of three differences, and the sum of its terms' absolute values.
template <class Real>
Real Volume(const K7ECEF& a, const K7ECEF& b, const K7ECEF& c, const K7ECEF& d, Real& size) {
  const Real ax = Real(a.X()) - d.X(), ay = Real(a.Y()) - d.Y(), az = Real(a.Z()) - d.Z();
  const Real bx = Real(b.X()) - d.X(), by = Real(b.Y()) - d.Y(), bz = Real(b.Z()) - d.Z();
  const Real cx = Real(c.X()) - d.X(), cy = Real(c.Y()) - d.Y(), cz = Real(c.Z()) - d.Z();
  const Real bc = bx * cy, cb = cx * by, ca = cx * ay, ac = ax * cy, ab = ax * by, ba = bx * ay;
  size = (std::fabs(bc) + std::fabs(cb)) * std::fabs(az) + (std::fabs(ca) + std::fabs(ac)) * std::fabs(bz) +
         (std::fabs(ab) + std::fabs(ba)) * std::fabs(cz);
  return az * (bc - cb) + bz * (ca - ac) + cz * (ab - ba);
}

using Sum = ExactSum<96>;

// a . (b x c)
void AddTriple(Sum& sum, double sign, const K7ECEF& a, const K7ECEF& b, const K7ECEF& c) {
  sum.AddProduct(sign * a.X(), b.Y(), c.Z());
  sum.AddProduct(-sign * a.X(), b.Z(), c.Y());
  sum.AddProduct(sign * a.Y(), b.Z(), c.X());
  sum.AddProduct(-sign * a.Y(), b.X(), c.Z());
  sum.AddProduct(sign * a.Z(), b.X(), c.Y());
  sum.AddProduct(-sign * a.Z(), b.Y(), c.X());
}

// Positive for d below the face a b c, counter-clockwise from outside; the sign is exact. The rounding of
// either expression is within 8 epsilon of its terms.
double Below(const K7ECEF& a, const K7ECEF& b, const K7ECEF& c, const K7ECEF& d) {
  double size;
  const double volume = Volume<double>(a, b, c, d, size);
  if (std::fabs(volume) > 8 * std::numeric_limits<double>::epsilon() * size) return volume;
  using Long = long double;
  Long longSize;
  const Long longVolume = Volume<Long>(a, b, c, d, longSize);
  if (std::fabs(longVolume) > 8 * std::numeric_limits<Long>::epsilon() * longSize)
    return longVolume > 0 ? 1 : -1;
  Sum sum;
  AddTriple(sum, 1, a, b, c);
  AddTriple(sum, -1, b, c, d);
  AddTriple(sum, 1, c, d, a);
  AddTriple(sum, -1, d, a, b);
  return sum.Value();
}

constexpr int NONE = -1;
constexpr int GONE = -2;

double Apart(const K7ECEF& a, const K7ECEF& b) {
  const K7ECEF d(a.X() - b.X(), a.Y() - b.Y(), a.Z() - b.Z());
  return d.DotProduct(d);
}

// Grown point by point: the faces that a point is above of give way to new ones between it and their rim.
// Each point not yet within the hull waits at one face that it is above of (Barber and others, "The quickhull
// algorithm", 1996, in the order of the points). As all signs are exact, faces above which a point is are in
// one piece, and no face is without area.
class Hull {
 public:
  Hull(const K7ECEF* points, int count) : m_points(points), m_count(count) {}
  ~Hull() {
    std::free(m_faces);
    std::free(m_above);
  }

  int Build();
  K7ECEF NearestFace() const;

 private:
  struct Face {
    int corners[3];
    int across[3];  // the face on the other side of the edge from corner i to the next
    int waiting;    // the first of the points, the others by m_next; GONE for a face that is no more
    int asked;      // the last point that was held against it
    bool isAbove;   // that point
  };

  bool FindFirstFour(int (&four)[4]) const;
  bool IsAbove(int face, int point) const {
    const int* const c = m_faces[face].corners;
    return Below(m_points[c[0]], m_points[c[1]], m_points[c[2]], m_points[point]) < 0;
  }
  int AddFace(int a, int b, int c);
  bool WaitsAt(int point, int face);
  bool Add(int point);
  int FindAbove(int point);
  bool Reserve(int more);

  const K7ECEF* m_points;
  int m_count;
  Face* m_faces = nullptr;
  int* m_above = nullptr;  // faces, as many as there is room for
  int m_faceCount = 0;
  int m_room = 0;
  int m_free = NONE;               // faces to use again, by their first corner
  std::unique_ptr<int[]> m_block;  // these three, a number a point:
  int* m_next = nullptr;           // the next point that waits at the same face
  int* m_home = nullptr;           // the face at which a point waits
  int* m_start = nullptr;          // the new face whose edge on the rim starts at a point
};

// Far from one another, so that the first hull is no sliver.
bool Hull::FindFirstFour(int (&four)[4]) const {
  const auto farthest = [&](auto measure) {
    int best = 0;
    double most = -1;
    for (int i = 0; i < m_count; i++) {
      if (const double far = std::fabs(measure(m_points[i])); far > most) {
        most = far;
        best = i;
      }
    }
    return best;
  };
  const K7ECEF& a = m_points[four[0] = 0];
  const K7ECEF& b = m_points[four[1] = farthest([&](const K7ECEF& p) { return Apart(a, p); })];
  const K7ECEF& c = m_points[four[2] = farthest([&](const K7ECEF& p) { return Apart(a, p) * Apart(b, p); })];
  four[3] = farthest([&](const K7ECEF& p) {
    double size;
    return Volume<double>(a, b, c, p, size);
  });
  const double below = Below(a, b, c, m_points[four[3]]);
  if (below < 0) std::swap(four[0], four[1]);
  return below != 0;
}

bool Hull::Reserve(int more) {
  if (m_room - m_faceCount >= more) return true;
  const int room = 2 * m_room + more + 64;
  void* const faces = ReallocArray(m_faces, room, sizeof(Face));
  if (!faces) return false;
  m_faces = static_cast<Face*>(faces);
  void* const above = ReallocArray(m_above, room, sizeof(int));
  if (!above) return false;
  m_above = static_cast<int*>(above);
  m_room = room;
  return true;
}

int Hull::AddFace(int a, int b, int c) {
  int face = m_free;
  if (face != NONE) {
    m_free = m_faces[face].corners[0];
  } else {
    face = m_faceCount++;
  }
  m_faces[face] = {{a, b, c}, {NONE, NONE, NONE}, NONE, NONE, false};
  return face;
}

bool Hull::WaitsAt(int point, int face) {
  if (!IsAbove(face, point)) return false;
  m_home[point] = face;
  m_next[point] = std::exchange(m_faces[face].waiting, point);
  return true;
}

// The faces that a point is above of into m_above: they hang together with its own.
int Hull::FindAbove(int point) {
  int count = 0;
  const auto ask = [&](int face, bool isAbove) {
    m_faces[face].asked = point;
    m_faces[face].isAbove = isAbove;
    if (isAbove) m_above[count++] = face;
  };
  ask(m_home[point], true);
  for (int i = 0; i < count; i++) {
    for (const int face : m_faces[m_above[i]].across) {
      if (m_faces[face].asked != point) ask(face, IsAbove(face, point));
    }
  }
  return count;
}

bool Hull::Add(int point) {
  if (m_home[point] == NONE) return true;
  const int count = FindAbove(point);
  if (!Reserve(count + 2)) return false;
  int face = NONE;
  for (int i = 0; i < count; i++) {
    for (int k = 0; k < 3; k++) {
      const Face old = m_faces[m_above[i]];
      const int rim = old.across[k];
      if (m_faces[rim].isAbove && m_faces[rim].asked == point) continue;
      face = AddFace(old.corners[k], old.corners[(k + 1) % 3], point);
      m_faces[face].across[0] = rim;
      for (int& across : m_faces[rim].across) {
        if (across == m_above[i]) across = face;
      }
      m_start[old.corners[k]] = face;
    }
  }
  const int first = face;
  do {
    const int next = m_start[m_faces[face].corners[1]];
    m_faces[face].across[1] = next;
    m_faces[next].across[2] = face;
    face = next;
  } while (face != first);
  // Whoever waited is above a new face, or within.
  for (int i = 0; i < count; i++) {
    Face& old = m_faces[m_above[i]];
    for (int p = std::exchange(old.waiting, GONE), next; p != NONE; p = next) {
      next = m_next[p];
      m_home[p] = NONE;
      face = first;
      while (p != point && !WaitsAt(p, face) && (face = m_faces[face].across[1]) != first) continue;
    }
    old.corners[0] = std::exchange(m_free, m_above[i]);
  }
  return true;
}

int Hull::Build() {
  int four[4];
  if (!FindFirstFour(four)) return 0;
  m_block.reset(new (std::nothrow) int[3 * static_cast<size_t>(m_count)]);
  if (!m_block || !Reserve(4)) return K7_ERR_MEMORY;
  m_next = m_block.get();
  m_home = m_next + m_count;
  m_start = m_home + m_count;
  const auto [a, b, c, d] = four;
  AddFace(a, b, c);
  AddFace(a, d, b);
  AddFace(b, d, c);
  AddFace(c, d, a);
  constexpr int ACROSS[4][3] = {{1, 2, 3}, {3, 2, 0}, {1, 3, 0}, {2, 1, 0}};
  for (int i = 0; i < 4; i++) {
    for (int k = 0; k < 3; k++) m_faces[i].across[k] = ACROSS[i][k];
  }
  for (int p = 0; p < m_count; p++) {
    m_home[p] = NONE;
    for (int i = 0; i < 4 && !WaitsAt(p, i); i++) continue;
  }
  for (int p = 0; p < m_count; p++) {
    if (!Add(p)) return K7_ERR_MEMORY;
  }
  return 1;
}

K7ECEF Hull::NearestFace() const {
  using Long = long double;
  K7ECEF nearest;
  Long least = 2;
  for (int i = 0; i < m_faceCount; i++) {
    if (m_faces[i].waiting == GONE) continue;
    const int* const corners = m_faces[i].corners;
    const K7ECEF &a = m_points[corners[0]], &b = m_points[corners[1]], &c = m_points[corners[2]];
    const Long ux = Long(b.X()) - a.X(), uy = Long(b.Y()) - a.Y(), uz = Long(b.Z()) - a.Z();
    const Long vx = Long(c.X()) - a.X(), vy = Long(c.Y()) - a.Y(), vz = Long(c.Z()) - a.Z();
    const Long x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
    const Long length = std::sqrt(x * x + y * y + z * z);
    const Long distance = (x * a.X() + y * a.Y() + z * a.Z()) / length;
    if (!(distance < least)) continue;
    least = distance;
    nearest = K7ECEF(static_cast<double>(x / length), static_cast<double>(y / length),
                     static_cast<double>(z / length));
  }
  return nearest;
}

}  // namespace

int NearestFace(const K7ECEF* points, int count, K7ECEF& normal) {
  Hull hull(points, count);
  const int built = hull.Build();
  if (built == 1) normal = hull.NearestFace();
  return built;
}

}  // namespace k7geo
