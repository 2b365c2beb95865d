// Ranking the points of a line for every tolerance, K7CromleyNode on the sphere, beside simplifying it for
// one: GEOS's Douglas and Peucker in the plane of degrees. Each begins with its own points and ends with
// those that are kept, counted in the label, and with its memory given back.

#include <k7/geodesy/cromley.h>
#include <k7/geometry.h>
#include <k7/io.h>

#include <benchmark/benchmark.h>
#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using Line = std::vector<K7ShpXY>;
constexpr size_t COUNT = 1000000;

// The longest coast lines of the 1:10m set of Natural Earth in Debian's libmagics++-data (K7_BENCH_SETS names
// another folder) one after the other, each edge broken twice in the middle, by a random part of its length
// to the side.
Line Coast() {
  const char* const folder = std::getenv("K7_BENCH_SETS");
  K7ShpFile file;
  file.Read((std::string(folder ? folder : "/usr/share/magics/10m") + "/ne_10m_land.shp").c_str(),
            K7IO::Inst());
  std::vector<const K7ShpObj*> shapes;
  for (int i = 0; i < file.StoredCount(); i++) shapes.push_back(file.GetRecord(i)->Obj());
  std::stable_sort(shapes.begin(), shapes.end(),
                   [](auto* a, auto* b) { return a->GetPolySize(0) > b->GetPolySize(0); });
  Line line;
  for (const K7ShpObj* shape : shapes) {
    if (line.size() < COUNT / 4 + 1)
      line.insert(line.end(), shape->Points(), shape->Points() + shape->GetPolySize(0));
  }
  line.resize(std::min(line.size(), COUNT / 4 + 1));
  std::mt19937 random(4);
  std::uniform_real_distribution<> aside(-0.2, 0.2);
  for (int round = 0; round < 2; round++) {
    Line finer;
    for (size_t i = 0; i + 1 < line.size(); i++) {
      const K7ShpXY a = line[i], b = line[i + 1];
      const double off = std::fabs(b.x - a.x) < 1 ? aside(random) : 0;
      finer.push_back(a);
      finer.push_back({(a.x + b.x) / 2 - off * (b.y - a.y), (a.y + b.y) / 2 + off * (b.x - a.x)});
    }
    finer.push_back(line.back());
    line = std::move(finer);
  }
  return line;
}

Line Make(int64_t kind) {
  if (kind == 0) return Coast();
  Line line;
  std::mt19937 random(5);
  std::uniform_real_distribution<> step(-0.01, 0.01);
  K7ShpXY p = {0, 0};
  for (size_t i = 0; i < COUNT; i++) {
    const double t = static_cast<double>(i) / COUNT;
    if (kind == 1) p = {p.x + step(random), p.y + step(random)};
    if (kind == 2) p = {t * 30 * std::sin(t * 3000), t * 30 * std::cos(t * 3000)};
    if (kind == 3) {
      const double r = 20 + step(random);
      p = {r * std::sin(t * 2 * M_PI), r * std::cos(t * 2 * M_PI)};
    }
    line.push_back(p);
  }
  if (kind == 3) line.back() = line.front();
  return line;
}

// Nautical miles, 60 to a degree.
double Tolerance(const benchmark::State& state) { return static_cast<double>(state.range(1)) / 100; }

void Report(benchmark::State& state, int kept) {
  static const char* const names[] = {"coast", "walk", "spiral", "ring"};
  state.SetLabel(std::string(names[state.range(0)]) + ": " + std::to_string(kept) + " points kept");
}

void BM_K7CromleyNode(benchmark::State& state) {
  std::vector<K7ECEF> points;
  for (const K7ShpXY& p : Make(state.range(0))) points.emplace_back(p.y, p.x);
  K7IntArray kept(32767);
  for (auto _ : state) {
    K7CromleyNode tree;
    kept.ClearNoFree();
    if (tree.Generate(0, static_cast<int>(points.size()) - 1, points.data()) != 0 ||
        tree.Traverse(Tolerance(state), points.data(), kept) != 0)
      return state.SkipWithError("not ranked");
  }
  Report(state, kept.Count() + 2);
}

void BM_Geos(benchmark::State& state) {
  initGEOS(nullptr, nullptr);
  const Line line = Make(state.range(0));
  GEOSGeometry* const whole = GEOSGeom_createLineString(
      GEOSCoordSeq_copyFromBuffer(&line[0].x, static_cast<unsigned>(line.size()), 0, 0));
  int kept = 0;
  for (auto _ : state) {
    GEOSGeometry* const simple = GEOSSimplify(whole, Tolerance(state) / 60);
    kept = GEOSGeomGetNumPoints(simple);
    GEOSGeom_destroy(simple);
  }
  GEOSGeom_destroy(whole);
  Report(state, kept);
}

// The kind of line, and the tolerance in hundredths of a mile.
BENCHMARK(BM_K7CromleyNode)->ArgsProduct({{0, 1, 2, 3}, {100, 0}})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Geos)->ArgsProduct({{0, 1, 2, 3}, {100, 0}})->Unit(benchmark::kMillisecond);

}  // namespace
