#include "web/tile_file.h"
#include "web/tile_work.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <random>
#include <tuple>

namespace {

// By the degrees of every tile there is, one after the other.
bool Overlaps(const TileArea& area, const TileId& tile) {
  double west, south, east, north;
  TileBounds(tile, west, south, east, north);
  if (north <= area.south || south >= area.north) return false;
  const double end = area.east > area.west ? area.east : area.east + 360;
  const auto meets = [&](double turn) { return west + turn < end && east + turn > area.west; };
  return meets(0) || meets(360);
}

TEST(TileWork, EveryTileOfAnAreaIsInOneBlockOfOnePart) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> lon(-180, 180), lat(-84, 84);
  std::vector<TileArea> areas = {{-180, -90, 180, 90}, {170, -20, -170, -10}, {-90, 0, 0, 66}, {0, 1, -1, 2}};
  for (int i = 0; i < 40; ++i) {
    const double a = lat(random), b = lat(random);
    areas.push_back({lon(random), std::min(a, b), lon(random), std::max(a, b)});
  }
  for (const TileArea& area : areas) {
    TileWork work;
    ASSERT_EQ(work.Plan(area, 0, 6), "");
    const std::string said = std::to_string(area.west) + " to " + std::to_string(area.east);
    std::map<std::tuple<int, int, int>, int> drawn;
    for (int part = 1; part <= 3; ++part)
      work.VisitBlocks({part, 3}, [&](const TileBlock& block) {
        const std::vector<TileId> tiles = work.TilesOf(block);
        EXPECT_FALSE(tiles.empty()) << said;
        for (const TileId& tile : tiles) ++drawn[{tile.z, tile.x, tile.y}];
      });
    EXPECT_EQ(static_cast<int64_t>(drawn.size()), work.Tiles()) << said;
    for (int z = 0; z <= 6; ++z)
      for (int x = 0; x < 1 << z; ++x)
        for (int y = 0; y < 1 << z; ++y)
          ASSERT_EQ((drawn[{z, x, y}]), Overlaps(area, {z, x, y}) ? 1 : 0)
              << said << ", tile " << z << "/" << x << "/" << y;
  }
}

TEST(TileWork, RefusesWhatWouldNeverEnd) {
  TileWork work;
  EXPECT_NE(work.Plan({-180, -90, 180, 90}, 0, MOST_ZOOM), "");
  EXPECT_NE(work.Plan({0, 86, 1, 89}, 0, 3), "");
  EXPECT_EQ(work.Plan({-123, 48, -122.99, 48.01}, 0, MOST_ZOOM), "");
}

class TileFileTest : public testing::Test {
 protected:
  TileFileTest()
      : folder(std::filesystem::temp_directory_path() /
               ("k7tiles" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(folder);
    path = (folder / "chart.mbtiles").string();
  }
  ~TileFileTest() override { std::filesystem::remove_all(folder); }

  const TileFacts facts = {{"name", "Chart"}, {"minzoom", "3"}};
  std::filesystem::path folder;
  std::string path;
};

TEST_F(TileFileTest, AFileThatWasLeftGoesOnAndAppearsWhole) {
  {
    TileWriter file;
    ASSERT_EQ(file.Open(path, facts), "");
    EXPECT_EQ(file.Add({3, 2, 2}, "lost with the process"), "");
    EXPECT_NE(TileWriter().Open(path, facts), "");
  }
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_NE(TileWriter().Open(path, {{"name", "Chart"}, {"minzoom", "4"}}), "");
  EXPECT_NE(TileWriter().Open(path, {{"name", "Chart"}}), "");
  TileWriter file;
  ASSERT_EQ(file.Open(path, facts), "");
  EXPECT_FALSE(file.Has({3, 2, 2}));
  EXPECT_EQ(file.Add({3, 1, 2}, "sea"), "");
  EXPECT_TRUE(file.Has({3, 1, 2}));
  EXPECT_NE(file.Add({3, 1, 2}, "land"), "");
  EXPECT_EQ(file.Add({3, 7, 0}, "sea"), "");
  EXPECT_EQ(file.Tiles(), 2);
  EXPECT_EQ(file.Finish(), "");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);

  // As others read it; the format counts rows from the south.
  Database database;
  ASSERT_TRUE(database.Open(path, SQLITE_OPEN_READONLY));
  Query query(database.Prepare(
      "SELECT tile_row FROM tiles WHERE zoom_level=3 AND tile_column=7 AND tile_data=x'736561'"));
  ASSERT_TRUE(query.Next());
  EXPECT_EQ(query.Integer(0), 7);
  TileReader reader;
  ASSERT_EQ(reader.Open(path), "");
  EXPECT_EQ(reader.Facts(), facts);
}

TEST_F(TileFileTest, WhatIsNoFileOfTilesIsRefused) {
  Database database;
  ASSERT_TRUE(database.Open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
  ASSERT_TRUE(
      database.Run("CREATE TABLE metadata(name,value);"
                   "CREATE TABLE tiles(zoom_level,tile_column,tile_row,tile_data);"));
  const auto visit = [&](const char* values) {
    EXPECT_TRUE(database.Run(std::string("DELETE FROM tiles;INSERT INTO tiles VALUES") + values));
    TileReader reader;
    EXPECT_EQ(reader.Open(path), "");
    return reader.Visit([](const TileId&, std::string_view) { return std::string(); });
  };
  EXPECT_EQ(visit("(30,0,0,x'00')").empty(), false);
  EXPECT_EQ(visit("(3,8,0,x'00')").empty(), false);
  EXPECT_EQ(visit("(3,0,-1,x'00')").empty(), false);
  EXPECT_EQ(visit("(3,7,7,'text')").empty(), true);
  ASSERT_TRUE(database.Run("DROP TABLE tiles"));
  EXPECT_NE(TileReader().Open(path), "");
  EXPECT_NE(TileReader().Open(path + ".not"), "");
}

}  // namespace
