// The World Magnetic Model beside GeographicLib's, on the same coefficients and at one date.

#include <benchmark/benchmark.h>
#include <k7/geodesy/magvar.h>

#include <GeographicLib/MagneticModel.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double YEAR = 2026.5;
constexpr int DEGREE = 12;
const char* const MODEL = K7_SAMPLE_DATA "/magnetic/WMM.COF";

struct Place {
  double lat, lon, alt;
};

const std::vector<Place>& Places() {
  static const std::vector<Place> places = [] {
    std::mt19937_64 bits(1);
    std::uniform_real_distribution<> lat(-89, 89), lon(-180, 180), alt(0, 12);
    std::vector<Place> made(4096);
    for (Place& place : made) place = {lat(bits), lon(bits), alt(bits)};
    return made;
  }();
  return places;
}

template <class Work>
void OverPlaces(benchmark::State& state, Work work) {
  for (auto _ : state)
    for (const Place& place : Places()) benchmark::DoNotOptimize(work(place));
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(Places().size()));
}

// GeographicLib's own format: a text that describes the model, and a binary file of the coefficients by
// order.
std::string WritePeerModel() {
  double g[4][DEGREE + 1][DEGREE + 1] = {};
  std::ifstream in(MODEL);
  std::string line;
  std::getline(in, line);
  int n, m;
  double values[4];
  while (in >> n >> m >> values[0] >> values[1] >> values[2] >> values[3] && n <= DEGREE) {
    for (int i = 0; i < 4; i++) g[i][n][m] = values[i];
  }
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "k7_magvar_bench";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "wmm.wmm")
      << "WMMF-1\nName wmm\nDescription x\nReleaseDate 2024-11-13\nRadius 6371200\n"
         "NumModels 1\nEpoch 2025\nDeltaEpoch 5\nMinTime 2025\nMaxTime 2030\n"
         "MinHeight -1000\nMaxHeight 850000\nType linear\nNormalization schmidt\n"
         "ByteOrder little\nID WMM2025A\n";
  std::ofstream out(folder / "wmm.wmm.cof", std::ios::binary);
  out << "WMM2025A";
  for (int set = 0; set < 4; set += 2) {
    const int size[2] = {DEGREE, DEGREE};
    out.write(reinterpret_cast<const char*>(size), sizeof size);
    for (int part = 0; part < 2; part++) {
      for (m = part; m <= DEGREE; m++) {
        for (n = m; n <= DEGREE; n++)
          out.write(reinterpret_cast<const char*>(&g[set + part][n][m]), sizeof(double));
      }
    }
  }
  return folder.string();
}

const Tarsvald::MagVarWMM& OurModel() {
  static const Tarsvald::MagVarWMM model(MODEL);
  return model;
}

double Ours(const Place& place) {
  double x, y, z, h, f, declination, inclination;
  OurModel().ComputeField(place.lat, place.lon, place.alt, YEAR, x, y, z, h, f, declination, inclination);
  return declination + f;
}

double Theirs(const GeographicLib::MagneticModel& model, const Place& place) {
  double x, y, z, h, f, declination, inclination;
  model(YEAR, place.lat, place.lon, place.alt * 1000, x, y, z);
  GeographicLib::MagneticModel::FieldComponents(x, y, z, h, f, declination, inclination);
  return declination + f;
}

void FieldK7(benchmark::State& state) { OverPlaces(state, Ours); }

void FieldGeographicLib(benchmark::State& state) {
  const GeographicLib::MagneticModel model("wmm", WritePeerModel());
  for (const Place& place : Places()) {
    if (std::abs(Ours(place) - Theirs(model, place)) > 0.1) state.SkipWithError("the models differ");
  }
  OverPlaces(state, [&](const Place& place) { return Theirs(model, place); });
}

void ReadK7(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(Tarsvald::MagVarWMM(MODEL).IsLoaded());
}

BENCHMARK(FieldK7);
BENCHMARK(FieldGeographicLib);
BENCHMARK(ReadK7);

}  // namespace
