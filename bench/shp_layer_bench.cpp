// Area queries of a shape layer: the tree of K7ShpLayer beside a plain loop over all bounds, a GEOS STRtree
// and the spatial filter of GDAL.
//
// The province lines of Natural Earth at 1:10,000,000, of Debian's libmagics++-data (K7_BENCH_SETS names
// another folder), and views of 2 by 2 degrees whose middles are those of the lines themselves, so that each
// view shows something. "found" is the number of lines a view, which all but GDAL agree on: it looks at each
// line that is near, and leaves out those of which only the bounds meet the view.

#include <k7/geometry.h>
#include <k7/io.h>

#include <benchmark/benchmark.h>
#include <gdal.h>
#include <geos_c.h>
#include <ogr_api.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Provinces {
  Provinces() {
    const char* const folder = std::getenv("K7_BENCH_SETS");
    path =
        std::string(folder ? folder : "/usr/share/magics/10m") + "/ne_10m_admin_1_states_provinces_lines.shp";
    if (layer.Read(path.c_str(), K7IO::Inst()) != 0) return;
    for (int i = 0; i < layer.Table()->RecordCount(); ++i) {
      K7ChartRect box;
      if (layer.Table()->GetRecord(i)->GetBounds(box) == 0) boxes.push_back(box);
    }
    for (size_t i = 0; i < boxes.size(); i += 7) {
      double lat, lon;
      boxes[i].Center(lat, lon);
      if (std::abs(lat) < 89 && std::abs(lon) < 179) views.emplace_back(lat + 1, lat - 1, lon + 1, lon - 1);
    }
  }
  std::string path;
  K7ShpLayer layer;
  std::vector<K7ChartRect> boxes, views;
};

Provinces& Data() {
  static Provinces data;
  return data;
}

// Asks for one view after the other; `find` answers how many lines it found.
template <class Find>
void Measure(benchmark::State& state, Find find) {
  const std::vector<K7ChartRect>& views = Data().views;
  if (views.empty()) return state.SkipWithError("no data");
  size_t next = 0;
  long found = 0;
  for (auto _ : state) {
    found += find(views[next]);
    if (++next == views.size()) next = 0;
  }
  state.counters["found"] =
      benchmark::Counter(static_cast<double>(found) / static_cast<double>(state.iterations()));
}

void BM_K7ShpLayer(benchmark::State& state) {
  Measure(state, [](const K7ChartRect& view) {
    const std::unique_ptr<K7ShapeQuery> query(Data().layer.Table()->AreaQuery(view));
    long count = 0;
    while (const K7ShapeRec* record = query->Next()) {
      benchmark::DoNotOptimize(record);
      ++count;
    }
    return count;
  });
}
BENCHMARK(BM_K7ShpLayer)->Unit(benchmark::kMicrosecond);

void BM_PlainLoop(benchmark::State& state) {
  Measure(state, [](const K7ChartRect& view) {
    long count = 0;
    for (const K7ChartRect& box : Data().boxes)
      count += box.South() <= view.North() && view.South() <= box.North() && box.West() <= view.East() &&
               view.West() <= box.East();
    return count;
  });
}
BENCHMARK(BM_PlainLoop)->Unit(benchmark::kMicrosecond);

GEOSGeometry* Rectangle(GEOSContextHandle_t geos, const K7ChartRect& box) {
  return GEOSGeom_createRectangle_r(geos, box.West(), box.South(), box.East(), box.North());
}

void BM_GeosStrTree(benchmark::State& state) {
  const GEOSContextHandle_t geos = GEOS_init_r();
  GEOSSTRtree* const tree = GEOSSTRtree_create_r(geos, 10);
  std::vector<GEOSGeometry*> kept;
  for (K7ChartRect& box : Data().boxes) {
    kept.push_back(Rectangle(geos, box));
    GEOSSTRtree_insert_r(geos, tree, kept.back(), &box);
  }
  Measure(state, [&](const K7ChartRect& view) {
    GEOSGeometry* const area = Rectangle(geos, view);
    long count = 0;
    GEOSSTRtree_query_r(
        geos, tree, area, [](void*, void* n) { ++*static_cast<long*>(n); }, &count);
    GEOSGeom_destroy_r(geos, area);
    return count;
  });
  GEOSSTRtree_destroy_r(geos, tree);
  for (GEOSGeometry* const geometry : kept) GEOSGeom_destroy_r(geos, geometry);
  GEOS_finish_r(geos);
}
BENCHMARK(BM_GeosStrTree)->Unit(benchmark::kMicrosecond);

// From the file, as GDAL has it.
void BM_GdalSpatialFilter(benchmark::State& state) {
  GDALAllRegister();
  const GDALDatasetH set = GDALOpenEx(Data().path.c_str(), GDAL_OF_VECTOR, nullptr, nullptr, nullptr);
  if (!set) return state.SkipWithError("no data");
  const OGRLayerH layer = GDALDatasetGetLayer(set, 0);
  Measure(state, [&](const K7ChartRect& view) {
    OGR_L_SetSpatialFilterRect(layer, view.West(), view.South(), view.East(), view.North());
    long count = 0;
    while (const OGRFeatureH feature = OGR_L_GetNextFeature(layer)) {
      ++count;
      OGR_F_Destroy(feature);
    }
    return count;
  });
  GDALClose(set);
}
BENCHMARK(BM_GdalSpatialFilter)->Unit(benchmark::kMicrosecond);

}  // namespace
