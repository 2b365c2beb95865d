// Whole shapefile sets, geometry and attributes: K7ShpFile beside shapelib and GDAL.
//
// The sets are the 1:10m ones of Natural Earth in Debian's libmagics++-data; K7_BENCH_SETS names another
// folder. Each reader ends with every shape and every attribute in memory by its type. "heldToDisk" is the
// memory that the reader holds then, as malloc counts it, over the bytes of the main file and the attribute
// table.

#include <k7/geometry.h>
#include <k7/io.h>

#include <benchmark/benchmark.h>
#include <gdal.h>
#include <malloc.h>
#include <ogr_api.h>
#include <shapefil.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

const char* const SETS[] = {"ne_10m_land", "ne_10m_admin_1_states_provinces_lines",
                            "ne_10m_populated_places_simple"};

std::string PathOf(int64_t set) {
  const char* const folder = std::getenv("K7_BENCH_SETS");
  return std::string(folder ? folder : "/usr/share/magics/10m") + "/" + SETS[set] + ".shp";
}

double BytesOnDisk(std::filesystem::path path) {
  const auto mainFile = std::filesystem::file_size(path);
  return static_cast<double>(mainFile + std::filesystem::file_size(path.replace_extension(".dbf")));
}

double HeldBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

// Runs `load` (which answers false on failure) and `drop`, timing the first and measuring what it leaves
// held.
template <class Load, class Drop>
void Measure(benchmark::State& state, Load load, Drop drop) {
  const std::string path = PathOf(state.range(0));
  if (!std::filesystem::exists(path)) return state.SkipWithError(("no set at " + path).c_str());
  state.SetLabel(SETS[state.range(0)]);
  double held = 0;
  for (auto _ : state) {
    const double before = HeldBytes();
    if (!load(path.c_str())) return state.SkipWithError("not read");
    held = HeldBytes() - before;
    state.PauseTiming();
    drop();
    state.ResumeTiming();
  }
  state.counters["heldToDisk"] = held / BytesOnDisk(path);
  state.SetBytesProcessed(static_cast<int64_t>(BytesOnDisk(path)) * static_cast<int64_t>(state.iterations()));
}

void BM_K7ShpFile(benchmark::State& state) {
  K7ShpFile* file = nullptr;
  Measure(
      state,
      [&](const char* path) {
        file = new K7ShpFile;
        file->KeepNullShapes(true);
        return file->Read(path, K7IO::Inst()) == 0;
      },
      [&] { delete file; });
}
BENCHMARK(BM_K7ShpFile)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

union Value {
  char* text;
  double number;
  int integer;
};

struct ShapelibSet {
  std::vector<SHPObject*> shapes;
  std::vector<Value> values;
  std::vector<char*> texts;
};

bool LoadShapelib(const char* path, ShapelibSet& set) {
  const SHPHandle shp = SHPOpen(path, "rb");
  const DBFHandle dbf = DBFOpen(path, "rb");
  if (!shp || !dbf) return false;
  int count = 0;
  SHPGetInfo(shp, &count, nullptr, nullptr, nullptr);
  const int fields = DBFGetFieldCount(dbf);
  std::vector<DBFFieldType> types;
  for (int f = 0; f < fields; ++f) types.push_back(DBFGetFieldInfo(dbf, f, nullptr, nullptr, nullptr));
  set.shapes.reserve(static_cast<size_t>(count));
  set.values.reserve(static_cast<size_t>(count) * static_cast<size_t>(fields));
  for (int i = 0; i < count; ++i) {
    set.shapes.push_back(SHPReadObject(shp, i));
    for (int f = 0; f < fields; ++f) {
      Value value{};
      if (types[static_cast<size_t>(f)] == FTInteger) {
        value.integer = DBFReadIntegerAttribute(dbf, i, f);
      } else if (types[static_cast<size_t>(f)] == FTDouble) {
        value.number = DBFReadDoubleAttribute(dbf, i, f);
      } else {
        value.text = strdup(DBFReadStringAttribute(dbf, i, f));
        set.texts.push_back(value.text);
      }
      set.values.push_back(value);
    }
  }
  SHPClose(shp);
  DBFClose(dbf);
  return true;
}

void BM_Shapelib(benchmark::State& state) {
  ShapelibSet set;
  Measure(
      state, [&](const char* path) { return LoadShapelib(path, set); },
      [&] {
        for (SHPObject* shape : set.shapes) SHPDestroyObject(shape);
        for (char* text : set.texts) std::free(text);
        set = {};
      });
}
BENCHMARK(BM_Shapelib)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void BM_Gdal(benchmark::State& state) {
  GDALAllRegister();
  std::vector<OGRFeatureH> features;
  GDALDatasetH dataset = nullptr;
  Measure(
      state,
      [&](const char* path) {
        dataset = GDALOpenEx(path, GDAL_OF_VECTOR, nullptr, nullptr, nullptr);
        if (!dataset) return false;
        const OGRLayerH layer = GDALDatasetGetLayer(dataset, 0);
        while (const OGRFeatureH feature = OGR_L_GetNextFeature(layer)) features.push_back(feature);
        return true;
      },
      [&] {
        for (const OGRFeatureH feature : features) OGR_F_Destroy(feature);
        features = {};
        GDALClose(dataset);
      });
}
BENCHMARK(BM_Gdal)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace
