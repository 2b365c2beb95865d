// Positions as text: written beside snprintf, read beside sscanf of one fixed form.

#include <benchmark/benchmark.h>
#include <k7/geodesy/latlon.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

const std::vector<K7LatLon>& Positions() {
  static const std::vector<K7LatLon> positions = [] {
    std::mt19937_64 bits(1);
    std::uniform_real_distribution<> lat(-89, 89), lon(-179, 179);
    std::vector<K7LatLon> made;
    for (int i = 0; i < 32768; ++i) made.emplace_back(lat(bits), lon(bits));
    return made;
  }();
  return positions;
}

void Count(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(Positions().size()));
}

void FormatK7(benchmark::State& state) {
  K7String lat, lon;
  for (auto _ : state)
    for (const K7LatLon& p : Positions()) {
      p.FormatLat("%H %02d %04.1M", lat);
      p.FormatLon("%H %03d %04.1M", lon);
      benchmark::DoNotOptimize(static_cast<const char*>(lat));
      benchmark::DoNotOptimize(static_cast<const char*>(lon));
    }
  Count(state);
}

void FormatSnprintf(benchmark::State& state) {
  char lat[32], lon[32];
  for (auto _ : state)
    for (const K7LatLon& p : Positions()) {
      double value = std::fabs(p.Lat());
      std::snprintf(lat, sizeof lat, "%c %02d %04.1f", p.Lat() < 0 ? 'S' : 'N', static_cast<int>(value),
                    (value - static_cast<int>(value)) * 60);
      value = std::fabs(p.Lon());
      std::snprintf(lon, sizeof lon, "%c %03d %04.1f", p.Lon() < 0 ? 'W' : 'E', static_cast<int>(value),
                    (value - static_cast<int>(value)) * 60);
      benchmark::DoNotOptimize(lat);
      benchmark::DoNotOptimize(lon);
    }
  Count(state);
}

// The positions in a form of %02d, %03d and minutes to a tenth.
std::vector<std::string> Texts(const char* latFormat, const char* lonFormat) {
  std::vector<std::string> texts;
  for (const K7LatLon& p : Positions()) {
    K7String lat, lon;
    p.FormatLat(latFormat, lat);
    p.FormatLon(lonFormat, lon);
    texts.push_back(std::string(lat) + " " + std::string(lon));
  }
  return texts;
}

void Parse(benchmark::State& state, const std::vector<std::string>& texts) {
  K7LatLon p;
  for (auto _ : state)
    for (const std::string& text : texts) benchmark::DoNotOptimize(p.ParsePosition(text.c_str()));
  Count(state);
}

void ParseMinutesK7(benchmark::State& state) { Parse(state, Texts("%H %02d %04.1M", "%H %03d %04.1M")); }
void ParseDegreesK7(benchmark::State& state) { Parse(state, Texts("%.5D%H", "%.5D%H")); }
void ParsePackedK7(benchmark::State& state) { Parse(state, Texts("%H%02d%02m%02s", "%H%03d%02m%02s")); }

void ParseMinutesSscanf(benchmark::State& state) {
  const std::vector<std::string> texts = Texts("%H %02d %04.1M", "%H %03d %04.1M");
  for (auto _ : state)
    for (const std::string& text : texts) {
      char northSouth, eastWest;
      double lat[2], lon[2];
      benchmark::DoNotOptimize(std::sscanf(text.c_str(), "%c %lf %lf %c %lf %lf", &northSouth, &lat[0],
                                           &lat[1], &eastWest, &lon[0], &lon[1]));
    }
  Count(state);
}

BENCHMARK(FormatK7);
BENCHMARK(FormatSnprintf);
BENCHMARK(ParseMinutesK7);
BENCHMARK(ParseMinutesSscanf);
BENCHMARK(ParseDegreesK7);
BENCHMARK(ParsePackedK7);

}  // namespace
