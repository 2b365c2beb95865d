#include <k7/geometry/poly_bifurcator.h>

#include <k7/foundation/error_string.h>

#include "geometry/poly_bifurcator_sweep.h"

#include <algorithm>
#include <new>

namespace {

constexpr int MAX_POINTS = 1 << 28;
// Crossings are found in the first sweep, what rounding made of them in the next few.
constexpr int MAX_SWEEPS = 256;

double X(const K7ShpXY& p) { return p.x; }
double Y(const K7ShpXY& p) { return p.y; }
double X(const K7LatLon& p) { return p.Lon(); }
double Y(const K7LatLon& p) { return p.Lat(); }

}  // namespace

struct K7PolyBifurcatorStore {
  template <class Point>
  int Add(const Point* points, const int* sizes, int parts);
  template <class Point>
  int Load(const Point* points, const int* sizes, int parts);
  int Cut();

  k7poly::Graph graph;
  k7poly::Status status;
  k7poly::Pieces pieces;
  Buffer<K7ShpXY> ring;
  Buffer<int> heap;
  Buffer<int> out;
};

template <class Point>
int K7PolyBifurcatorStore::Load(const Point* points, const int* sizes, int parts) {
  graph.Clear();
  for (int part = 0; part < parts; points += sizes[part++]) {
    const int count = sizes[part];
    ring.Clear();
    K7ShpXY* const copy = ring.Extend(count);
    if (!copy && count > 0) return K7_ERR_MEMORY;
    for (int i = 0; i < count; i++) {
      copy[i] = {X(points[i]), Y(points[i])};
      if (!(std::fabs(copy[i].x) <= k7poly::MOST && std::fabs(copy[i].y) <= k7poly::MOST))
        return K7_ERR_INVALID_DATA;
    }
    if (!graph.AddRing(copy, count)) return K7_ERR_MEMORY;
  }
  return 0;
}

template <class Point>
int K7PolyBifurcatorStore::Add(const Point* points, const int* sizes, int parts) {
  if (parts < 0 || (parts > 0 && !sizes)) return K7_ERR_BAD_ARGUMENT;
  int total = 0;
  for (int i = 0; i < parts; i++) {
    if (sizes[i] < 0) return K7_ERR_BAD_ARGUMENT;
    if (sizes[i] > MAX_POINTS - total) return K7_ERR_OUT_OF_RANGE;
    total += sizes[i];
  }
  if (total > 0 && !points) return K7_ERR_BAD_ARGUMENT;
  if (const int err = Load(points, sizes, parts); err != 0) return err;
  const int before = pieces.Triangles().Count();
  pieces.Mark();
  const int err = Cut();
  if (err == 0) return (pieces.Triangles().Count() - before) / 3;
  pieces.GoBack();
  return err;
}

int K7PolyBifurcatorStore::Cut() {
  using k7poly::Sweep;
  Sweep sweep(graph, status, pieces, heap, out);
  if (!graph.Prepare()) return K7_ERR_MEMORY;
  int found = sweep.Run(Sweep::PIECES), crossings = 0;
  if (found <= 0) return found;
  pieces.GoBack();
  if (!graph.KeepLines()) return K7_ERR_MEMORY;
  for (int i = 0; i < MAX_SWEEPS && found > 0; i++) {
    if (!graph.Prepare()) return K7_ERR_MEMORY;
    found = sweep.Run(Sweep::CROSSINGS);
    crossings += std::max(0, found);
    if (crossings > Sweep::MAX_CROSSINGS) return K7_ERR_OUT_OF_RANGE;
  }
  if (found == 0) found = graph.Prepare() ? sweep.Run(Sweep::PIECES) : K7_ERR_MEMORY;
  return found > 0 ? K7_ERR_INVALID_DATA : found;
}

K7PolyBifurcator::K7PolyBifurcator() : m_store(new (std::nothrow) K7PolyBifurcatorStore) {}
K7PolyBifurcator::~K7PolyBifurcator() { delete m_store; }

int K7PolyBifurcator::Add(const K7ShpXY* points, const int* sizes, int parts) {
  return m_store ? m_store->Add(points, sizes, parts) : K7_ERR_MEMORY;
}

int K7PolyBifurcator::Add(const K7LatLon* points, const int* sizes, int parts) {
  return m_store ? m_store->Add(points, sizes, parts) : K7_ERR_MEMORY;
}

void K7PolyBifurcator::Clear() {
  if (m_store) m_store->pieces.Clear();
}

int K7PolyBifurcator::VertexCount() const { return m_store ? m_store->pieces.Vertices().Count() : 0; }

const K7ShpXY* K7PolyBifurcator::Vertices() const {
  return VertexCount() > 0 ? m_store->pieces.Vertices().Data() : nullptr;
}

int K7PolyBifurcator::TriangleCount() const { return m_store ? m_store->pieces.Triangles().Count() / 3 : 0; }

const int32_t* K7PolyBifurcator::Triangles() const {
  return TriangleCount() > 0 ? m_store->pieces.Triangles().Data() : nullptr;
}

int K7PolyBifurcator::ContourCount() const { return m_store ? m_store->pieces.ContourEnds().Count() : 0; }

const int32_t* K7PolyBifurcator::Contour(int i, int& count) const {
  count = 0;
  if (i < 0 || i >= ContourCount()) return nullptr;
  const Buffer<int32_t>& ends = m_store->pieces.ContourEnds();
  const int begin = i > 0 ? ends[i - 1] : 0;
  count = ends[i] - begin;
  return m_store->pieces.Contours().Data() + begin;
}
