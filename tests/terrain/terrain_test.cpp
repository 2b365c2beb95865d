#include "terrain/region_file.h"

#include <gtest/gtest.h>
#include <k7/core.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <random>
#include <thread>

namespace {

int Feet(int metres) { return static_cast<int>(std::lround(metres * 3.2808399)); }
RegionPlan FlatRegion(double south, double west, int side, int metres) {
  return MadeRegion(south, west, side, side, 2, [=](int, int) { return metres; });
}

// A fresh instance and fresh settings for each test.
class Terrain : public testing::Test {
 protected:
  Terrain() { K7TerrainK7::Destroy(); }
  ~Terrain() override {
    K7TerrainK7::Destroy();
    K7Options::Destroy();
  }
  int Read() { return K7TerrainK7::Inst()->Read(m_folder.Path().c_str()); }
  int Elev(double lat, double lon, double resolution = 0.5) {
    return K7TerrainK7::Inst()->GetElev(lat, lon, resolution);
  }
  // Bytes of the grids that are in memory now.
  static int64_t GridBytes() {
    int64_t bytes = 0;
    for (int slot = 0; slot < 72; ++slot) {
      const K7TerRegion* const region = K7TerrainK7::Inst()->GetLevel(4)->Region(slot / 12, slot % 12);
      for (int i = 0; region && i < region->RowCount() * region->ColCount(); ++i) {
        const K7TerTile* const tile = region->Tile(i / region->ColCount(), i % region->ColCount());
        if (tile && tile->GetMesh()) bytes += int64_t{tile->RowCount()} * (2 * tile->ColCount() + 8);
      }
    }
    return bytes;
  }

  TempFolder m_folder;
};

TEST_F(Terrain, FileNames) {
  struct {
    int south, west;
    const char* name;
  } const cells[] = {
      {30, -90, "1200_N30W090.ter"}, {-90, -180, "1200_S90W180.ter"}, {0, 0, "1200_N00E000.ter"}};
  const K7TerLevel level(1200);
  K7StrArray directories;
  directories += "/nowhere/";
  directories += m_folder.Path().c_str();
  for (const auto& cell : cells) {
    K7String path("left over");
    EXPECT_FALSE(level.findTerFile(directories, cell.south, cell.west, path));
    EXPECT_TRUE(path.IsEmpty());
    m_folder.Write(cell.name, "");
    EXPECT_TRUE(level.findTerFile(directories, cell.south, cell.west, path));
    EXPECT_STREQ(path, (m_folder.Path() + cell.name).c_str());
  }
}

TEST_F(Terrain, LevelIndex) {
  const std::pair<double, int> levels[] = {{0.5, 6}, {1, 5},   {2.9, 5}, {3, 4},   {10, 3},  {29, 3},
                                           {30, 2},  {100, 1}, {299, 1}, {300, 0}, {1e9, 0}, {NAN, 0}};
  for (const auto& [resolution, index] : levels) EXPECT_EQ(K7TerrainK7::GetLevelIndex(resolution), index);
}

TEST_F(Terrain, FallsBackToCoarserLevels) {
  RegionPlan fine = FlatRegion(40, 0, 2, 700);
  fine.tiles[0].posts.assign(4, K7_NO_ELEV);
  fine.tiles.pop_back();
  m_folder.Write("3600_N30E000.ter", fine.Bytes());
  m_folder.Write("120_N30E000.ter", FlatRegion(30, 0, 30, 100).Bytes());
  m_folder.Write("12_N30E000.ter", FlatRegion(30, 0, 30, 50).Bytes());
  m_folder.Write("12_N60E000.ter", "damaged");
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(Elev(40.5, 1.5), Feet(700));
  EXPECT_EQ(Elev(40.5, 0.5), Feet(100)) << "a post without data";
  EXPECT_EQ(Elev(41.5, 1.5), Feet(100)) << "an empty cell";
  EXPECT_EQ(Elev(40.5, 1.5, 20), Feet(100)) << "a coarser question";
  EXPECT_EQ(Elev(40.5, 1.5, 300), Feet(50));
  EXPECT_EQ(Elev(35, 15), 0) << "outside the finest region's bounds";
  EXPECT_EQ(Elev(35, 45), K7_NO_ELEV) << "no region at all";
  EXPECT_EQ(Elev(65, 15), K7_NO_ELEV) << "a region without a header";
  for (const auto& [lat, lon] :
       {std::pair{90.0, 0.0}, {0.0, 180.0}, {-121.0, 0.0}, {0.0, -211.0}, {NAN, NAN}})
    EXPECT_EQ(Elev(lat, lon), K7_NO_ELEV);
  K7TerrainK7::Inst()->Clear();
  EXPECT_EQ(Elev(40.5, 1.5), K7_NO_ELEV);
  ASSERT_EQ(K7TerrainK7::Inst()->SetDirectory(m_folder.Path().c_str()), 0);
  EXPECT_EQ(Elev(40.5, 1.5), Feet(700)) << "the first lookup reads";
}

TEST_F(Terrain, LimitsAndSettings) {
  K7TerrainK7* const terrain = K7TerrainK7::Inst();
  EXPECT_EQ(terrain->Read(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(terrain->Read(""), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(Elev(0, 0), K7_NO_ELEV);
  EXPECT_EQ(terrain->GetCache().MaxSize(), 32 << 20);
  EXPECT_EQ(terrain->LimitLevelIndex(), 6);
  m_folder.Write("3600_N30E000.ter", FlatRegion(40, 0, 1, 700).Bytes());
  m_folder.Write("1200_N30E000.ter", FlatRegion(40, 0, 1, 600).Bytes());
  K7Options::Inst()->SetOption("TerrainCacheSize", "250");
  K7Options::Inst()->SetOption("TerrainTextureBitDepth", "16");
  K7Options::Inst()->SetOption("TerrainResolutionLimit", "3");
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(terrain->GetCache().MaxSize(), 100 << 20);
  EXPECT_EQ(K7TerTile::m_textureBitDepth, 16);
  EXPECT_EQ(terrain->ResolutionLimit(), 1200);
  EXPECT_EQ(Elev(40.5, 0.5), Feet(600));
  EXPECT_EQ(terrain->GetLevel(5), nullptr);
  EXPECT_EQ(terrain->LimitLevelIndex(), 4);
  EXPECT_EQ(terrain->SetResolutionLimit(35), 0);  // 102 posts per degree: the level of 120 reaches it
  EXPECT_EQ(terrain->LimitLevelIndex(), 2);
  EXPECT_EQ(terrain->GetLevel(4)->MaxResolution(), 102);
  EXPECT_EQ(terrain->SetResolutionLimit(0), 0);
  EXPECT_EQ(terrain->ResolutionLimit(), -1);
}

// Whatever is asked, the grids stay within the setting, and every answer is right all the same.
TEST_F(Terrain, CacheKeepsItsSize) {
  const RegionPlan region = MadeRegion(30, 0, 6, 6, 200, [](int row, int column) { return row + column; });
  m_folder.Write("1200_N30E000.ter", region.Bytes());
  std::minstd_rand random(3);
  std::uniform_real_distribution<double> degrees(0, 6);
  for (const int mib : {0, 1}) {
    K7Options::Inst()->SetOption("TerrainCacheSize", K7FmtString("%d", mib));
    ASSERT_EQ(Read(), 0);
    int64_t most = 0;
    for (int i = 0; i < 400; ++i) {
      const double lat = degrees(random), lon = degrees(random);
      EXPECT_EQ(Elev(30 + lat, lon), Feet(static_cast<int>(lat * 200) + static_cast<int>(lon * 200)));
      most = std::max(most, GridBytes());
    }
    EXPECT_LE(most, mib << 20);
    EXPECT_GE(most, mib * 500000) << "a cache that holds nothing is none";
  }
  K7TerrainK7::Inst()->ClearCache();
  EXPECT_EQ(GridBytes(), 0);
}

TEST_F(Terrain, FilesCutAndReplacedMeanwhile) {
  const std::string bytes = MadeRegion(30, 0, 2, 2, 64, [](int row, int) { return row; }).Bytes();
  const auto ask = [&] {
    for (double lat = 30.1; lat < 32; lat += 0.4)
      for (double lon = 0.1; lon < 2; lon += 0.4) {
        const int elev = Elev(lat, lon), right = Feet(static_cast<int>((lat - 30) * 64));
        EXPECT_TRUE(elev == right || elev == K7_NO_ELEV) << elev;
      }
    K7TerrainK7::Inst()->ClearCache();
  };
  for (size_t size = 0; size < bytes.size(); size += 97) {
    m_folder.Write("1200_N30E000.ter", bytes);
    ASSERT_EQ(Read(), 0);
    m_folder.Write("1200_N30E000.ter", bytes.substr(0, size));
    ask();
  }
  m_folder.Write("1200_N30E000.ter", FlatRegion(30, 0, 1, 5).Bytes());
  EXPECT_EQ(Elev(30.5, 0.5), K7_NO_ELEV);
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(Elev(30.5, 0.5), Feet(5));
  std::filesystem::remove(m_folder.Path() + "1200_N30E000.ter");
  K7TerrainK7::Inst()->ClearCache();
  EXPECT_EQ(Elev(30.5, 0.5), K7_NO_ELEV);
}

// Eight threads look up and hold grids while the cache has room for three tiles of sixteen, and others clear
// and read.
TEST_F(Terrain, ThreadsLookUpWhileTheCacheEvicts) {
  const auto post = [](int row, int column) { return row * 2 + column; };
  m_folder.Write("1200_N30E000.ter", MadeRegion(30, 0, 4, 4, 340, post).Bytes());
  K7Options::Inst()->SetOption("TerrainCacheSize", "1");
  ASSERT_EQ(Read(), 0);
  std::atomic<int> wrong{0}, readAgain{0};
  const auto lookUp = [&](unsigned seed) {
    std::minstd_rand random(seed + 1);
    std::uniform_real_distribution<double> degrees(0, 4);
    for (int i = 0; i < 1500; ++i) {
      const double lat = degrees(random), lon = i % 50 ? 0.5 : degrees(random);
      const int row = static_cast<int>(lat * 340), column = static_cast<int>(lon * 340);
      wrong += Elev(30 + lat, lon) != Feet(post(row, column));
      if (i % 100) continue;
      const K7TerTile* const tile = K7TerrainK7::Inst()->GetLevel(4)->RegionAt(35, 5)->GetTile(30 + lat, lon);
      const K7TerMeshHold hold(*tile);
      K7TerrainK7::Inst()->ClearCache();
      wrong += !hold.Rows() || hold.Rows()[row % 340][column % 340] != post(row, column);
    }
  };
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < 8; ++i) threads.emplace_back(lookUp, i);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_LE(GridBytes(), 1 << 20);

  threads.clear();
  for (unsigned i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      while (readAgain < 10) {
        const int elev = Elev(30.5, 0.5);
        wrong += elev != Feet(post(170, 170)) && elev != K7_NO_ELEV;
      }
    });
  while (readAgain < 10) {
    K7TerrainK7::Inst()->Clear();
    wrong += Read() != 0;
    ++readAgain;
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// Looks up as its thread ends, after what the library keeps for the thread has ended.
struct LastLookup {
  std::function<void()> lookUp;
  ~LastLookup() { lookUp(); }
};

TEST_F(Terrain, MoreThreadsAtOnceThanHaveSlotsAndTheirLastLookups) {
  const auto post = [](int row, int column) { return row * 2 + column; };
  m_folder.Write("1200_N30E000.ter", MadeRegion(30, 0, 2, 2, 100, post).Bytes());
  ASSERT_EQ(Read(), 0);
  std::atomic<int> wrong{0}, begun{0}, lookups{0};
  const auto lookUp = [&] {
    wrong += Elev(30.505, 1.505) != Feet(post(50, 150));
    ++lookups;
  };
  for (int round = 0; round < 2; ++round) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 300; ++i)
      threads.emplace_back([&] {
        thread_local const LastLookup last{lookUp};
        for (int asked = 0; asked < 20; ++asked) lookUp();
        ++begun;
        while (begun < 300 * (round + 1)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
      });
    while (begun < 300 * (round + 1)) {
      K7TerrainK7::Inst()->ClearCache();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(lookups, 2 * 300 * 21);
}

// Distances and positions are those of K7LatLon, which goes by course and distance.
TEST_F(Terrain, ProfileUnderALine) {
  m_folder.Write("1200_N30E000.ter", MadeRegion(30, 0, 8, 8, 60, [](int row, int) { return row; }).Bytes());
  ASSERT_EQ(Read(), 0);
  const K7LatLon from(31.2, 0.3), to(37.1, 6.9);
  K7Array profile(sizeof(K7TerElevPoint), 64);
  K7TerrainK7* const terrain = K7TerrainK7::Inst();
  const int count = terrain->GetElevUnderLine(from, to, 3, 10, profile);
  ASSERT_EQ(count, static_cast<int>(std::ceil(from.Distance(to) / 10)) + 1);
  ASSERT_EQ(profile.Count(), count);
  for (int i = 0; i < count; ++i) {
    const K7TerElevPoint& point = *static_cast<K7TerElevPoint*>(profile[i]);
    K7LatLon place;
    place.EndPoint(from, from.InitCourse(to), from.Distance(to) * i / (count - 1));
    EXPECT_NEAR(point.lat, place.Lat(), 1e-9);
    EXPECT_NEAR(point.lon, place.Lon(), 1e-9);
    EXPECT_NEAR(point.distance, from.Distance(place), 1e-6);
    EXPECT_EQ(point.elev, Elev(point.lat, point.lon, 3));
  }
  EXPECT_EQ(static_cast<K7TerElevPoint*>(profile[count - 1])->lat, 37.1);
  EXPECT_EQ(terrain->GetElevUnderLine(from, from, 3, 10, profile), 1);
  EXPECT_EQ(terrain->GetElevUnderLine(from, K7LatLon(-31.2, -179.7), 3, 10, profile), K7_ERR_INVALID_DATA);
  EXPECT_EQ(terrain->GetElevUnderLine(from, to, 3, 1e-6, profile), K7_ERR_OUT_OF_RANGE);
  for (const double bad : {-1.0, static_cast<double>(NAN), static_cast<double>(INFINITY)})
    EXPECT_EQ(terrain->GetElevUnderLine(from, to, 3, bad, profile), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(terrain->GetElevUnderLine(from, K7LatLon(NAN, 0), 3, 1, profile), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(profile.Count(), 0);
}

}  // namespace
