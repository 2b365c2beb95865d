// Polygons to triangles: K7PolyBifurcator beside the tessellator of GLU, which follows the same rule for what
// is inside and splits edges where they cross, and GEOS's constrained Delaunay triangulation, whose triangles
// are better shaped and whose polygons must be valid.
//
// All land of the 1:10m set of Natural Earth in Debian's libmagics++-data (K7_BENCH_SETS names another
// folder), and shapes in which much is beside everything. Each leaves vertices and indexes in arrays that it
// uses again (GEOS: its geometry), and adds up their area in square units, which is the label.

#include <k7/geometry.h>
#include <k7/io.h>

#include <GL/glu.h>
#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <random>
#include <string>
#include <vector>

namespace {

struct Polygon {
  std::vector<K7ShpXY> points;
  std::vector<int> sizes;
};
using Set = std::vector<Polygon>;

const Set& Land() {
  static const Set land = [] {
    const char* const folder = std::getenv("K7_BENCH_SETS");
    K7ShpFile file;
    file.Read((std::string(folder ? folder : "/usr/share/magics/10m") + "/ne_10m_land.shp").c_str(),
              K7IO::Inst());
    Set set;
    for (int i = 0; i < file.StoredCount(); i++) {
      const K7ShpObj& shape = *file.GetRecord(i)->Obj();
      Polygon& polygon = set.emplace_back();
      polygon.points.assign(shape.Points(), shape.Points() + shape.GetPointCount());
      for (int k = 0; k < shape.GetPolyCount(); k++) polygon.sizes.push_back(shape.GetPolySize(k));
    }
    return set;
  }();
  return land;
}

// 200000 points, closed.
Set Shape(int kind) {
  constexpr int COUNT = 200000;
  Polygon polygon;
  std::vector<K7ShpXY>& ring = polygon.points;
  std::vector<K7ShpXY> back;
  std::mt19937 random(5);
  for (int i = 0; i < COUNT; i++) {
    const double t = static_cast<double>(i) / COUNT, angle = t * 1000;
    if (kind == 1) ring.push_back({t * 10 + (i % 2 ? 9 : 0), i % 2 ? 7.0 : 0.0});
    if (kind == 2)
      (i % 2 ? back : ring)
          .push_back({(1 + t) * std::cos(angle) * (i % 2 ? 1.0005 : 1),
                      (1 + t) * std::sin(angle) * (i % 2 ? 1.0005 : 1)});
    if (kind == 3) {
      const double r = std::uniform_real_distribution<>(2, 2.0001)(random);
      ring.push_back({r * std::cos(t * 2 * M_PI), r * std::sin(t * 2 * M_PI)});
    }
    // A walk around the world that crosses itself about every tenth step.
    if (kind == 4) {
      std::uniform_real_distribution<> step(-3, 4);
      const K7ShpXY p = ring.empty() ? K7ShpXY{0, 0} : ring.back();
      ring.push_back({p.x + step(random) - 0.5, p.y + std::cos(t * 2 * M_PI) + 3 * step(random) - 1.5});
    }
  }
  if (kind == 1) ring.insert(ring.end(), {{30, 8}, {-1, 8}, {-1, -1}});
  ring.insert(ring.end(), back.rbegin(), back.rend());
  ring.push_back(ring.front());
  polygon.sizes.push_back(static_cast<int>(ring.size()));
  return {polygon};
}

Set Make(int64_t kind) { return kind == 0 ? Land() : Shape(static_cast<int>(kind)); }

double Area(const K7ShpXY* v, const int* t) {
  const K7ShpXY &a = v[t[0]], &b = v[t[1]], &c = v[t[2]];
  return ((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x)) / 2;
}

void Report(benchmark::State& state, const Set& set, double area, int64_t triangles) {
  int64_t points = 0;
  for (const Polygon& polygon : set) points += static_cast<int64_t>(polygon.points.size());
  static const char* const names[] = {"1:10m land", "slanting comb", "spiral", "ragged circle",
                                      "crossing walk"};
  char text[80];
  std::snprintf(text, sizeof text, "%s: %lld triangles, area %.9g", names[state.range(0)],
                static_cast<long long>(triangles), area);
  state.SetLabel(text);
  state.SetItemsProcessed(points * static_cast<int64_t>(state.iterations()));
}

void BM_K7PolyBifurcator(benchmark::State& state) {
  const Set set = Make(state.range(0));
  K7PolyBifurcator cut;
  double area = 0;
  for (auto _ : state) {
    cut.Clear();
    for (const Polygon& polygon : set) {
      if (cut.Add(polygon.points.data(), polygon.sizes.data(), static_cast<int>(polygon.sizes.size())) < 0)
        return state.SkipWithError("not cut");
    }
    area = 0;
    for (int i = 0; i < cut.TriangleCount(); i++) area += Area(cut.Vertices(), cut.Triangles() + 3 * i);
  }
  Report(state, set, area, cut.TriangleCount());
}
BENCHMARK(BM_K7PolyBifurcator)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

struct GluOutput {
  std::vector<K7ShpXY> vertices;
  std::vector<int> indexes;
};

void OnVertex(void* vertex, void* output) {
  static_cast<GluOutput*>(output)->indexes.push_back(static_cast<int>(reinterpret_cast<intptr_t>(vertex)));
}
void OnEdgeFlag(GLboolean) {}  // asks for separate triangles
void OnCombine(GLdouble at[3], void* [4], GLfloat[4], void** vertex, void* output) {
  auto& made = *static_cast<GluOutput*>(output);
  *vertex = reinterpret_cast<void*>(made.vertices.size());
  made.vertices.push_back({at[0], at[1]});
}

void BM_Glu(benchmark::State& state) {
  const Set set = Make(state.range(0));
  GluOutput output;
  GLUtesselator* const tess = gluNewTess();
  gluTessProperty(tess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_ODD);
  gluTessNormal(tess, 0, 0, 1);
  gluTessCallback(tess, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(OnVertex));
  gluTessCallback(tess, GLU_TESS_EDGE_FLAG, reinterpret_cast<_GLUfuncptr>(OnEdgeFlag));
  gluTessCallback(tess, GLU_TESS_COMBINE_DATA, reinterpret_cast<_GLUfuncptr>(OnCombine));
  double area = 0;
  for (auto _ : state) {
    output.vertices.clear();
    output.indexes.clear();
    for (const Polygon& polygon : set) {
      const K7ShpXY* p = polygon.points.data();
      gluTessBeginPolygon(tess, &output);
      for (const int size : polygon.sizes) {
        gluTessBeginContour(tess);
        for (int i = 0; i + 1 < size; i++) {
          GLdouble at[3] = {p[i].x, p[i].y, 0};
          output.vertices.push_back(p[i]);
          gluTessVertex(tess, at, reinterpret_cast<void*>(output.vertices.size() - 1));
        }
        gluTessEndContour(tess);
        p += size;
      }
      gluTessEndPolygon(tess);
    }
    area = 0;
    for (size_t i = 0; i < output.indexes.size(); i += 3)
      area += Area(output.vertices.data(), &output.indexes[i]);
  }
  gluDeleteTess(tess);
  Report(state, set, area, static_cast<int64_t>(output.indexes.size() / 3));
}
// Not the comb and the circle, over which it takes minutes.
BENCHMARK(BM_Glu)->Arg(0)->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond);

GEOSGeometry* ToGeos(const Polygon& polygon) {
  std::vector<GEOSGeometry*> rings;
  const K7ShpXY* p = polygon.points.data();
  for (const int size : polygon.sizes) {
    rings.push_back(
        GEOSGeom_createLinearRing(GEOSCoordSeq_copyFromBuffer(&p->x, static_cast<unsigned>(size), 0, 0)));
    p += size;
  }
  return GEOSGeom_createPolygon(rings[0], rings.data() + 1, static_cast<unsigned>(rings.size() - 1));
}

void BM_Geos(benchmark::State& state) {
  initGEOS(nullptr, nullptr);
  const Set set = Make(state.range(0));
  std::vector<GEOSGeometry*> polygons;
  for (const Polygon& polygon : set) polygons.push_back(ToGeos(polygon));
  double area = 0;
  int64_t triangles = 0;
  for (auto _ : state) {
    area = 0;
    triangles = 0;
    for (const GEOSGeometry* polygon : polygons) {
      GEOSGeometry* const made = GEOSConstrainedDelaunayTriangulation(polygon);
      if (!made) continue;
      double part = 0;
      GEOSArea(made, &part);
      area += part;
      triangles += GEOSGetNumGeometries(made);
      GEOSGeom_destroy(made);
    }
  }
  for (GEOSGeometry* polygon : polygons) GEOSGeom_destroy(polygon);
  Report(state, set, area, triangles);
}
BENCHMARK(BM_Geos)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
