// Land cut into the tiles of a grid, beside GEOS's clip of each polygon by each rectangle that its envelope
// meets. The set is Natural Earth's land of 1:10m in Debian's libmagics++-data; K7_BENCH_SETS names another
// folder. Without it the sample's of 1:50m.

#include <k7/geometry.h>
#include <k7/io/io.h>

#include <benchmark/benchmark.h>
#include <geos_c.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Land {
  Land() {
    const char* const folder = std::getenv("K7_BENCH_SETS");
    std::string path = std::string(folder ? folder : "/usr/share/magics/10m") + "/ne_10m_land.shp";
    if (!std::filesystem::exists(path)) path = K7_SAMPLE_DATA "/ne_50m_land.shp";
    file.KeepNullShapes(true);
    if (file.Read(path.c_str(), K7IO::Inst()) != 0) std::abort();
    for (int i = 0; i < file.StoredCount(); ++i) {
      const auto* const shape = dynamic_cast<const K7ShpPoly*>(file.GetRecord(i)->Obj());
      if (!shape) continue;
      shapes.push_back(shape);
      points += shape->GetPointCount();
    }
  }
  K7ShpFile file;
  std::vector<const K7ShpPoly*> shapes;
  int64_t points = 0;
};

const Land& TheLand() {
  static const Land land;
  return land;
}

struct Tiled {
  Tiled(double height, double tolerance) : features(TheLand().shapes.size()) {
    if (tiles.Init(height, 0, tolerance) != 0) std::abort();
    for (size_t i = 0; i < features.size(); ++i) {
      if (features[i].SetShape(*TheLand().shapes[i]) != 0) std::abort();
      if (tiles.TilizePolygon(&features[i], &created) != 0) std::abort();
    }
  }
  template <class Visit>
  void VisitPieces(Visit visit) const {
    K7PtrArray all;
    tiles.GetTiles(K7ChartRect(90, -90, 180, -180), all);
    for (int i = 0; i < all.Count(); ++i) {
      const auto* const tile = static_cast<K7PolygonTile*>(all[i]);
      for (int k = 0; k < tile->PieceCount(); ++k) visit(*tile->Piece(k));
    }
  }
  std::vector<K7PolyPolygon> features;
  K7PolyPtMngr created;
  K7PolygonTileMngr tiles{K7_TILE_POLYGONS};
};

void TilesK7(benchmark::State& state) {
  int64_t pieces = 0;
  for (auto _ : state) {
    const Tiled tiled(static_cast<double>(state.range(0)), 0);
    pieces = 0;
    tiled.VisitPieces([&](const K7LineString& piece) { pieces += piece.PointCount() > 0; });
    benchmark::DoNotOptimize(pieces);
  }
  state.SetItemsProcessed(state.iterations() * TheLand().points);
  state.counters["pieces"] = static_cast<double>(pieces);
}

GEOSGeometry* PolygonOf(GEOSContextHandle_t geos, const K7ShpPoly& shape) {
  std::vector<GEOSGeometry*> rings;
  const K7ShpXY* xy = shape.Points();
  for (int part = 0; part < shape.GetPolyCount(); xy += shape.GetPolySize(part++)) {
    const auto size = static_cast<unsigned>(shape.GetPolySize(part));
    rings.push_back(
        GEOSGeom_createLinearRing_r(geos, GEOSCoordSeq_copyFromBuffer_r(geos, &xy->x, size, 0, 0)));
  }
  return GEOSGeom_createPolygon_r(geos, rings[0], rings.data() + 1, static_cast<unsigned>(rings.size() - 1));
}

void TilesGeos(benchmark::State& state) {
  GEOSContextHandle_t geos = GEOS_init_r();
  std::vector<GEOSGeometry*> polygons;
  for (const K7ShpPoly* shape : TheLand().shapes) polygons.push_back(PolygonOf(geos, *shape));
  K7PolygonTileMngr grid;
  grid.Init(static_cast<double>(state.range(0)));
  int64_t pieces = 0;
  for (auto _ : state) {
    std::vector<GEOSGeometry*> cut;
    for (const GEOSGeometry* polygon : polygons) {
      double west, south, east, north;
      GEOSGeom_getExtent_r(geos, polygon, &west, &south, &east, &north);
      for (int row = grid.GetTileRow(std::max(south, -90.0)); row <= grid.GetTileRow(north); ++row)
        for (int col = grid.GetTileCol(std::max(west, -180.0), row);
             col <= grid.GetTileCol(std::min(east, 180.0), row); ++col) {
          GEOSGeometry* const piece =
              GEOSClipByRect_r(geos, polygon, grid.GetTileLon(col, row), grid.GetTileLat(row),
                               grid.GetTileLon(col + 1, row), grid.GetTileLat(row + 1));
          if (piece && !GEOSisEmpty_r(geos, piece))
            cut.push_back(piece);
          else if (piece)
            GEOSGeom_destroy_r(geos, piece);
        }
    }
    pieces = static_cast<int64_t>(cut.size());
    benchmark::DoNotOptimize(cut.data());
    for (GEOSGeometry* piece : cut) GEOSGeom_destroy_r(geos, piece);
  }
  for (GEOSGeometry* polygon : polygons) GEOSGeom_destroy_r(geos, polygon);
  GEOS_finish_r(geos);
  state.SetItemsProcessed(state.iterations() * TheLand().points);
  state.counters["pieces"] = static_cast<double>(pieces);
}

// Every point ranked, and then the points that are left at a tolerance.
void RankK7(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto tiled = std::make_unique<Tiled>(10, 0);
    state.ResumeTiming();
    tiled->VisitPieces([](K7LineString& piece) { piece.Rank(); });
    state.PauseTiming();
    tiled.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * TheLand().points);
}

void SelectK7(benchmark::State& state) {
  const Tiled tiled(10, 0);
  tiled.VisitPieces([](K7LineString& piece) { piece.Rank(); });
  for (auto _ : state) {
    K7IntArray kept(4096);
    tiled.VisitPieces(
        [&](const K7LineString& piece) { piece.Select(static_cast<double>(state.range(0)), kept); });
    benchmark::DoNotOptimize(kept.Count());
  }
  state.SetItemsProcessed(state.iterations() * TheLand().points);
}

// What tiles hold of memory beside their features: as a share of the set's points, 16 bytes each.
void Memory(benchmark::State& state) {
  double share = 0;
  for (auto _ : state) {
    const size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const Tiled tiled(10, 0);
    const size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
    share = static_cast<double>(after - before) / (16.0 * static_cast<double>(TheLand().points));
  }
  state.counters["share"] = share;
}

BENCHMARK(TilesK7)->Arg(10)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(TilesGeos)->Arg(10)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(RankK7)->Unit(benchmark::kMillisecond);
BENCHMARK(SelectK7)->Arg(0)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(Memory)->Iterations(1);

}  // namespace
