// Fields of navigation records, and records as XML. The peers are a loop over the members themselves, and the
// same document copied.

#include "support/small_store.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int RECORDS = 1024;

struct Airports {
  Airports() {
    for (int i = 0; i < RECORDS; i++) {
      recs[i].key = K7NavKey(static_cast<uint32_t>(i), K7NAV_AIRPORT);
      recs[i].elev = static_cast<int16_t>(i);
      recs[i].lat = i << 16;
      recs[i].magVar = static_cast<int16_t>(i);
      recs[i].longestRunway = static_cast<int16_t>(i / 8);
    }
  }
  K7Airport recs[RECORDS];
};

void FieldsK7(benchmark::State& state) {
  const Airports airports;
  const int fields[] = {K7NavData::GetFieldIndex(K7NAV_AIRPORT, "Lat"),
                        K7NavData::GetFieldIndex(K7NAV_AIRPORT, "Elev"),
                        K7NavData::GetFieldIndex(K7NAV_AIRPORT, "Mag Var"),
                        K7NavData::GetFieldIndex(K7NAV_AIRPORT, "Longest Runway")};
  for (auto _ : state) {
    double sum = 0;
    for (const K7Airport& rec : airports.recs) {
      K7NavField lat, elev, magVar, longest;
      K7NavData::GetField(&rec, fields[0], &lat);
      K7NavData::GetField(&rec, fields[1], &elev);
      K7NavData::GetField(&rec, fields[2], &magVar);
      K7NavData::GetField(&rec, fields[3], &longest);
      sum += lat.d + elev.i + magVar.d + longest.i;
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * RECORDS * 4);
}

void FieldsByMember(benchmark::State& state) {
  const Airports airports;
  for (auto _ : state) {
    double sum = 0;
    for (const K7Airport& rec : airports.recs) {
      sum += K7NavData::FixPt2DecDeg(rec.lat) + rec.elev + rec.magVar * 0.1 + rec.longestRunway * 100;
      benchmark::ClobberMemory();
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * RECORDS * 4);
}

void AirportAsXml(benchmark::State& state, K7XmlOutputType_t output) {
  SmallStore store;
  K7Airport& airport = AddBusyAirport(store);
  K7String text;
  for (auto _ : state) {
    if (store.ToXML(&airport, output, text)) state.SkipWithError("not rendered");
    benchmark::DoNotOptimize(static_cast<const char*>(text));
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["bytes"] = text.Len();
}

// What no rendering can go below: the finished document in a text.
void DocumentCopied(benchmark::State& state) {
  SmallStore store;
  K7String document, text;
  store.ToXML(&AddBusyAirport(store), K7XML_DISPLAY, document);
  for (auto _ : state) {
    text.Create(document);
    benchmark::DoNotOptimize(static_cast<const char*>(text));
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(FieldsK7);
BENCHMARK(FieldsByMember);
BENCHMARK_CAPTURE(AirportAsXml, Display, K7XML_DISPLAY);
BENCHMARK_CAPTURE(AirportAsXml, Full, K7XML_FULL);
BENCHMARK(DocumentCopied);

}  // namespace
