#include <k7/foundation/error_string.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "store/scene.h"
#include "support/platform.h"

namespace {

std::string Contents(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A little of everything that other records hang on, under a mark in the source.
bool Write(const std::string& path, int count, const char* source) {
  NavWriter writer;
  std::string problem;
  if (!writer.Open(path, problem)) return false;
  for (int i = 0; i < count; i++) {
    const auto airport = MakeFix<K7Airport>(K7NAV_AIRPORT, "A" + std::to_string(i), i % 89, i % 179);
    airport->name = "Name of an airport";
    airport->notes = "CPDLC:KUSA";
    const K7NavKey key = writer.Add(*airport);
    const auto runway = MakeFix<K7Runway>(K7NAV_RUNWAY, "16L", i % 89, i % 179);
    runway->airport = key;
    writer.Add(*runway);
    const auto seg = Make<K7AirwaySeg>(K7NAV_HIGH_AIRWAY);
    seg->header = K7NavKey(static_cast<uint32_t>(i / 10), K7NAV_AIRWAY_HEADER);
    seg->fromLat = airport->lat;
    seg->toLon = airport->lon;
    writer.Add(*seg);
    const auto piece = Make<K7AirspaceSeg>(K7NAV_AIRSPACE_SEG);
    piece->airspace = K7NavKey(static_cast<uint32_t>(i / 4), K7NAV_FIR);
    piece->lat = airport->lat + (i % 4 / 2 << 24);
    piece->lon = airport->lon + ((i + 1) % 4 / 2 << 24);
    writer.Add(*piece);
    const auto fir = Make<K7FIR>(K7NAV_FIR);
    fir->ident = "KZSE";
    fir->north = airport->lat + (3 << 23);
    fir->east = airport->lon + (3 << 23);
    writer.Add(*fir);
    if (i % 50 == 0) writer.Add(*Make<K7CruiseTable>(K7NAV_CRUISE_TABLE));
  }
  writer.SetSource(source, 1);
  return writer.Finish(problem);
}

int Look(K7NavQueryResult* result) {
  const std::unique_ptr<K7NavQueryResult> owned(result);
  int seen = 0;
  while (const K7NavRec* rec = result ? result->Next() : nullptr) {
    K7NavField field;
    for (int i = 0; i < K7NavData::GetFieldCount(rec->Type()); i++) {
      if (!K7NavData::GetField(rec, i, &field)) continue;
      K7NavFieldDataType kind;
      const char *name, *note;
      K7NavData::GetFieldInfo(rec->Type(), i, kind, name, note);
      if (kind == K7FIELD_STRING && field.str) seen += static_cast<int>(strnlen(field.str, 8));
    }
    seen++;
  }
  return seen;
}

void LookAtEverything(NavStore& store) {
  const K7ChartRect world(90, -90, 180, -180);
  for (const K7NavType type :
       {K7NAV_AIRPORT, K7NAV_RUNWAY, K7NAV_HIGH_AIRWAY, K7NAV_FIR, K7NAV_CRUISE_TABLE, K7NAV_AIRSPACE_SEG}) {
    Look(store.AllQuery(type));
    Look(store.AreaQuery(type, world));
    Look(store.NearestQuery(type, K7LatLon(5, 5), 4, 20000));
    Look(store.LineQuery(type, K7LatLon(5, 5), K7LatLon(20, 60), 30));
    Look(store.IdentPrefixQuery(type, "A"));
    Look(store.SimilarIdentQuery(type, "A12X", 5));
    Look(store.NameQuery(type, "name"));
    store.GetCount(type);
  }
  for (uint32_t i = 0; i < 20; i++) {
    Look(store.AirportRunways(K7NavKey(i, K7NAV_AIRPORT)));
    Look(store.AirwaySegments(K7NavKey(i, K7NAV_AIRWAY_HEADER)));
    Look(store.AirspacesAt(K7NAV_FIR, K7LatLon(i + 1, i + 1)));
    store.OppositeRunway(K7NavKey(i, K7NAV_RUNWAY));
  }
  store.VisitAirwayNetwork([](const K7AirwaySeg&) {});
  K7String text;
  store.GetSource(text);
  store.GetExtent();
}

}  // namespace

TEST(Store, WhatIsNoStoreIsRefused) {
  TempDir dir;
  NavStore store;
  EXPECT_EQ(store.Open(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(store.Open((dir / "none.db").c_str()), K7_ERR_FILE_IO);
  EXPECT_EQ(store.Open(dir.Path().c_str()), K7_ERR_FILE_IO);
  const std::string path = dir / "nav.db";
  ASSERT_TRUE(Write(path, 3, "x"));
  const std::string good = Contents(path);
  std::string foreign = good;
  foreign[68] ^= 1;  // of the application's number
  std::string newer = good;
  newer[63] ^= 2;  // of the version
  for (const std::string& bytes :
       {std::string(), std::string(9000, 'x'), good.substr(0, 5000), foreign, newer}) {
    std::ofstream(path, std::ios::binary) << bytes;
    EXPECT_EQ(store.Open(path.c_str()), K7_ERR_INVALID_DATA) << bytes.size();
    EXPECT_FALSE(store.IsOpen());
    EXPECT_EQ(store.IdentQuery(K7NAV_VOR, "SEA"), nullptr);
    EXPECT_EQ(store.GetRec(K7NavKey(0, K7NAV_VOR)), nullptr);
  }
}

TEST(Store, DamageCostsRecordsAndNeverMore) {
  TempDir dir;
  const std::string path = dir / "nav.db";
  ASSERT_TRUE(Write(path, 100, "x"));
  const std::string good = Contents(path);
  std::mt19937 random(11);
  int opened = 0;
  for (int round = 0; round < 80; round++) {
    std::string bytes = good;
    // Mostly beyond the pages of the schema, which would end it at once.
    for (int flips = 1 << round % 10; flips > 0; flips--) {
      const size_t from = round % 4 ? bytes.size() / 8 : 0;
      bytes[from + random() % (bytes.size() - from)] ^= static_cast<char>(1 << random() % 8);
    }
    if (round % 9 == 8) bytes.resize(random() % bytes.size());
    std::ofstream(path, std::ios::binary) << bytes;
    NavStore store;
    const int code = store.Open(path.c_str());
    EXPECT_TRUE(code == K7_OK || code == K7_ERR_INVALID_DATA || code == K7_ERR_FILE_IO) << code;
    opened += code == K7_OK;
    if (code == K7_OK) LookAtEverything(store);
  }
  EXPECT_GT(opened, 30);
}

TEST(Store, AKilledWriterLeavesTheOldDatabase) {
  if (ON_WINDOWS) GTEST_SKIP() << "no fork";
  TempDir dir;
  const std::string path = dir / "nav.db";
  ASSERT_TRUE(Write(path, 100, "old"));
  const std::string old = Contents(path);
  std::mt19937 random(2);
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(Write(dir / "other.db", 2000, "new"));
  const auto whole =
      std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
  for (int round = 0; round < 12; round++) {
    const pid_t child = fork();
    if (child == 0) _exit(Write(path, 2000, "new") ? 0 : 1);
    usleep(static_cast<useconds_t>(random() % static_cast<unsigned>(whole.count() * 5 / 4)));
    kill(child, SIGKILL);
    int status;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    NavStore store;
    ASSERT_EQ(store.Open(path.c_str()), 0);
    K7String source;
    ASSERT_EQ(store.GetSource(source), 0);
    const bool replaced = std::string(source) == "new";
    EXPECT_EQ(store.GetCount(K7NAV_AIRPORT), replaced ? 2000 : 100);
    EXPECT_TRUE(replaced || !WIFEXITED(status));
    if (replaced) {
      store.Close();
      std::ofstream(path, std::ios::binary) << old;
    } else {
      EXPECT_EQ(Contents(path), old);
    }
  }
  // The next one clears up what they left; one that gives up leaves nothing.
  std::ofstream(path + ".part", std::ios::app) << std::string(5000, '\0');
  ASSERT_TRUE(Write(path, 10, "next"));
  std::string problem;
  {
    NavWriter first, second;
    EXPECT_TRUE(first.Open(path, problem));
    first.Add(*Make<K7Airport>(K7NAV_AIRPORT));
    EXPECT_FALSE(second.Open(path, problem));
    EXPECT_NE(problem, "");
  }
  for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    EXPECT_TRUE(entry.path() == path || entry.path() == dir / "other.db") << entry.path();
  EXPECT_FALSE(NavWriter().Open(dir / "none/nav.db", problem));
}
