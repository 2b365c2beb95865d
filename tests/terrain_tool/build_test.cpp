// Grids of every format into region files and back out of their bytes.
#include "region/build_region.h"
#include "support/temp_dir.h"
#include "terrain_tool/region_bytes.h"

#include <gtest/gtest.h>

#if defined(K7TERRAIN_GDAL)
#include <gdal.h>
#include <ogr_srs_api.h>
#endif

#include <cmath>
#include <map>
#include <random>
#include <sstream>

namespace {

constexpr int SIDE = 13;  // posts of the made-up grids: a twelfth of a degree apart over one degree
constexpr int GAP = -5000;

// What a made-up grid with its south-west corner there has at row, col; one post in seven is without.
int Made(int row, int col) { return (row * SIDE + col) % 7 == 3 ? GAP : 40 * row - 900 + col * col; }

class TerrainBuild : public ::testing::Test {
 protected:
  void Put(const std::string& name, const std::string& bytes) {
    std::ofstream(m_dir / name, std::ios::binary) << bytes;
  }
  // Builds from the files named; the problem, or empty.
  std::string Build(const std::vector<std::string>& names, int resolution, int tilePosts = 16) {
    std::vector<std::unique_ptr<ElevGrid>> owned;
    std::vector<ElevGrid*> grids;
    for (const std::string& name : names) {
      std::unique_ptr<ElevGrid> grid;
      std::string problem = OpenGrid(name[0] == '/' ? name : m_dir / name, grid);
      if (!problem.empty()) return problem;
      grids.push_back(grid.get());
      owned.push_back(std::move(grid));
    }
    m_plans = PlanRegions(grids, resolution, tilePosts);
    for (const RegionPlan& plan : m_plans) {
      int tiles = 0;
      std::string problem = BuildRegion(
          grids, plan, m_dir / "out", [](double) {}, tiles);
      if (!problem.empty()) return problem;
    }
    return {};
  }
  RegionBytes Region(const std::string& name) const { return RegionBytes(m_dir / "out/" + name + ".ter"); }
  size_t FilesMade() const {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(m_dir / "out"), {}));
  }
  void SetUp() override { std::filesystem::create_directory(m_dir / "out"); }

  std::string Hgt() const {
    std::string bytes;
    for (int row = SIDE - 1; row >= 0; --row)
      for (int col = 0; col < SIDE; ++col) {
        const int value = Made(row, col) == GAP ? -32768 : Made(row, col);
        bytes += static_cast<char>(value >> 8);
        bytes += static_cast<char>(value);
      }
    return bytes;
  }
  // `none`: what stands for no elevation; a header need not say so of -9999.
  std::string Asc(const std::string& place, const char* none = "-9999") const {
    std::ostringstream text;
    text.precision(17);
    text << "ncols 13\nNROWS 13\n" << place << "\ncellsize " << 1.0 / 12 << "\n";
    if (none != std::string("-9999")) text << "NODATA_value " << none << '\n';
    for (int row = SIDE - 1; row >= 0; --row)
      for (int col = 0; col < SIDE; ++col)
        text << (Made(row, col) == GAP ? none : std::to_string(Made(row, col)))
             << (col + 1 < SIDE ? " " : "\r\n");
    return text.str();
  }
  std::string Csv() const {
    std::ostringstream text;
    text.precision(7);
    text << "\xEF\xBB\xBF"
         << "elevation_m,longitude,latitude\n";
    for (int col = 0; col < SIDE; ++col)
      for (int row = 0; row < SIDE; ++row) {
        if (Made(row, col) != GAP) text << Made(row, col);
        text << ',' << -123 + col / 12.0 << ',' << 48 + row / 12.0 << '\n';
      }
    return text.str();
  }

  TempDir m_dir;
  std::vector<RegionPlan> m_plans;
};

TEST_F(TerrainBuild, EveryFormatGivesItsPosts) {
  Put("n48w123.hgt", Hgt());
  Put("corner.asc", Asc("xllcorner -123.04166666666667\nyllcorner 47.958333333333333", "NaN"));
  Put("center.asc", Asc("xllcenter 237\nyllcenter 48"));
  Put("table.csv", Csv());
  std::vector<std::string> names = {"n48w123.hgt", "corner.asc", "center.asc", "table.csv"};
#if defined(K7TERRAIN_GDAL)
  GDALAllRegister();
  // Metres that say what stands for none; tenths of feet that leave it to be known.
  for (const bool feet : {false, true}) {
    names.emplace_back(feet ? "feet.tif" : "made.tif");
    GDALDatasetH tiff = GDALCreate(GDALGetDriverByName("GTiff"), (m_dir / names.back()).c_str(), SIDE, SIDE,
                                   1, GDT_Float64, nullptr);
    double place[6] = {-123 - 0.5 / 12, 1.0 / 12, 0, 49 + 0.5 / 12, 0, -1.0 / 12};
    GDALSetGeoTransform(tiff, place);
    GDALRasterBandH band = GDALGetRasterBand(tiff, 1);
    std::vector<double> down;
    for (int i = 0; i < SIDE * SIDE; ++i) {
      const double metres = Made(SIDE - 1 - i / SIDE, i % SIDE);
      down.push_back(!feet ? metres : metres == GAP ? -32768 : (metres / 0.3048 - 7) * 10);
    }
    if (feet) {
      GDALSetRasterUnitType(band, "ft");
      GDALSetRasterScale(band, 0.1);
      GDALSetRasterOffset(band, 7);
    } else {
      GDALSetRasterNoDataValue(band, GAP);
    }
    ASSERT_EQ(GDALRasterIO(band, GF_Write, 0, 0, SIDE, SIDE, down.data(), SIDE, SIDE, GDT_Float64, 0, 0),
              CE_None);
    GDALClose(tiff);
  }
#endif
  for (const std::string& name : names) {
    ASSERT_EQ(Build({name}, 12), "") << name;
    ASSERT_EQ(m_plans.size(), 1u);
    ASSERT_EQ(m_plans[0].Name(), "12_N30W150");
    const RegionBytes region = Region("12_N30W150");
    // Nearest posts: also for positions almost half a post away.
    for (int row = 0; row < SIDE; ++row)
      for (int col = 0; col < SIDE; ++col)
        for (const double off : {-0.49, 0.0, 0.49})
          EXPECT_EQ(region.Metres(48 + (row + off) / 12, -123 + (col - off) / 12), Made(row, col)) << name;
    EXPECT_EQ(region.Metres(47.9, -122.5), GAP);
    // The whole cell, so that positions around the tiles are not taken for sea.
    EXPECT_LE(region.South(), 30);
    EXPECT_GE(region.East(), -120);
    EXPECT_EQ(FilesMade(), 2u);
  }
}

TEST_F(TerrainBuild, TheSampleIsItsGrid) {
  std::map<double, std::map<double, double>> grid;
  std::ifstream csv(K7_SAMPLE_DATA "/terrain/salish_sea.csv");
  std::string line;
  std::getline(csv, line);
  double lat, lon, metres;
  while (std::getline(csv, line))
    if (std::sscanf(line.c_str(), "%lf,%lf,%lf", &lat, &lon, &metres) == 3) grid[lat][lon] = metres;
  ASSERT_EQ(grid.size(), 91u);
  // Between the four posts about it.
  const auto expected = [&grid](double y, double x) {
    const auto north = grid.upper_bound(y), south = std::prev(north);
    const auto along = [x](const std::map<double, double>& row) {
      const auto east = row.upper_bound(x), west = std::prev(east);
      return west->second + (east->second - west->second) * (x - west->first) / (east->first - west->first);
    };
    const double share = (y - south->first) / (north->first - south->first);
    return along(south->second) * (1 - share) + along(north->second) * share;
  };
  for (const int resolution : {40, 120}) {
    ASSERT_EQ(Build({K7_SAMPLE_DATA "/terrain/salish_sea.csv"}, resolution, 256), "");
    const std::string name = std::to_string(resolution) + "_N30W150";
    const RegionBytes built = Region(name), sample(K7_SAMPLE_DATA "/terrain/" + name + ".ter");
    int compared = 0;
    for (int i = 0; i <= 2 * resolution; ++i)
      for (int j = 0; j <= 4 * resolution; ++j) {
        const double y = 48 + 1.0 * i / resolution, x = -126 + 1.0 * j / resolution;
        EXPECT_EQ(sample.Metres(y, x), built.Metres(y, x));
        if (y < 48.02 || y > 49.98 || x < -125.98 || x > -122.02) continue;
        // Half a metre of rounding, and positions of five places in a steep grid.
        EXPECT_NEAR(built.Metres(y, x), expected(y, x), 0.75) << y << " " << x;
        ++compared;
      }
    EXPECT_GT(compared, resolution * resolution * 7);
  }
}

TEST_F(TerrainBuild, BorderPostsAreInTheCellsOnBothSides) {
  // About 180 degrees, and up to the pole; a quarter of a turn of longitudes beyond 180.
  std::ostringstream text;
  text << "latitude,longitude,elev\n";
  for (const int row : {-90, -75, -60, -45})
    for (const int col : {165, 180, 195, 210}) text << row << ',' << col << ',' << row * 10 + col << '\n';
  Put("polar.csv", text.str());
  ASSERT_EQ(Build({"polar.csv"}, 12, 100), "");
  std::string names;
  for (const RegionPlan& plan : m_plans) names += plan.Name() + " ";
  EXPECT_EQ(names, "12_S90W180 12_S90E150 12_S60W180 12_S60E150 ");
  for (const double at : {-60.0, -60.04, -60 - 1.0 / 25}) {
    EXPECT_EQ(Region("12_S90W180").Metres(at, -180), Region("12_S90E150").Metres(at, 180)) << at;
    EXPECT_NEAR(Region("12_S90E150").Metres(at, 179.99), at * 10 + 180, 1.5);
  }
  EXPECT_EQ(Region("12_S60W180").Metres(-60, -180), -420);
  EXPECT_EQ(Region("12_S90W180").Metres(-60, -180), -420);
  EXPECT_EQ(Region("12_S90W180").Metres(-90, -165), -705);
}

TEST_F(TerrainBuild, CoarserLevelsHaveMeansAndSeamsBetweenFilesAreClosed) {
  // Two files that meet between posts, as grids of areas do; a depth that means "none" is not lost.
  const auto half = [](const char* west, int value) {
    std::ostringstream text;
    text << "ncols 120\nnrows 120\nxllcorner " << west << "\nyllcorner 10\ncellsize 0.008333333333333333\n";
    for (int i = 0; i < 120 * 120; ++i) text << value + (i % 2 ? 30 : -30) << ' ';
    return text.str();
  };
  Put("west.asc", half("20", 500));
  Put("east.asc", half("21", -4970));
  ASSERT_EQ(Build({"west.asc", "east.asc"}, 12), "");
  const RegionBytes coarse = Region("12_N00E000");
  EXPECT_EQ(coarse.Metres(10.5, 20.5), 500);
  EXPECT_EQ(coarse.Metres(10.5, 21.5), -4970);
  ASSERT_EQ(Build({"west.asc", "east.asc"}, 1200, 256), "");
  const RegionBytes fine = Region("1200_N00E000");
  for (int i = 0; i <= 1200; ++i) EXPECT_NE(fine.Metres(10.5, 20.5 + i / 1200.0), GAP) << i;
  EXPECT_EQ(fine.Metres(10 + 5.0 / 1200, 21 + 5.0 / 1200), -4999);
}

// Whatever is interpolated or averaged of a plane lies in it, so a seam that shows is a fault: on four files
// that meet at 180 degrees, with posts on their edges, and half a post inside them.
TEST_F(TerrainBuild, SeamsBetweenFilesDoNotShow) {
  const auto plane = [](double lat, double lon) { return 400 * (lat - 47) + 60 * (lon - 179); };
  for (const bool areas : {false, true}) {
    std::vector<std::string> names;
    for (const int south : {47, 48})
      for (const int west : {179, 180}) {
        const double spacing = 1.0 / 24, first = areas ? spacing / 2 : 0;
        std::ostringstream hgt, asc;
        asc.precision(17);
        asc << "ncols 24\nnrows 24\ncellsize " << spacing << "\nyllcorner " << south << "\nxllcorner " << west
            << '\n';
        for (int row = areas ? 23 : 24; row >= 0; --row)
          for (int col = 0; col < (areas ? 24 : 25); ++col) {
            const double metres = plane(south + first + row * spacing, west + first + col * spacing);
            const long whole = std::lround(metres);
            hgt << static_cast<char>(whole >> 8) << static_cast<char>(whole);
            asc << metres << ' ';
          }
        names.push_back("N" + std::to_string(south) + (west == 179 ? "E179" : "W180") +
                        (areas ? ".asc" : ".hgt"));
        Put(names.back(), areas ? asc.str() : hgt.str());
      }
    for (const int resolution : {12, 40}) {
      ASSERT_EQ(Build(names, resolution), "");
      const RegionBytes west = Region(std::to_string(resolution) + "_N30E150"),
                        east = Region(std::to_string(resolution) + "_N30W180");
      for (int i = 1; i < 2 * resolution; ++i)
        for (int j = 1; j < 2 * resolution; ++j) {
          const double lat = 47 + 1.0 * i / resolution, lon = 179 + 1.0 * j / resolution;
          for (const bool inEast : {false, true}) {
            if (inEast ? j < resolution : j > resolution) continue;
            EXPECT_NEAR((inEast ? east : west).Metres(lat, lon - (inEast ? 360 : 0)), plane(lat, lon), 1.01)
                << lat << ' ' << lon << ' ' << resolution << names[0];
          }
        }
    }
  }
}

TEST_F(TerrainBuild, DamageIsToldAndMakesNothing) {
  const std::string csv = Csv(), asc = Asc("xllcenter -123\nyllcenter 48");
  const auto swapped = [](std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
  };
  // 65600 latitudes times 65474 longitudes are as many as there are posts, in 32 bits.
  std::string wrapping = "latitude,longitude,elevation\n";
  for (int i = 0; i < 127104; ++i)
    wrapping += std::to_string(i % 65600 * 0.001) + "," + std::to_string(i % 65474 * 0.001) + ",5\n";
  const struct {
    const char* name;
    std::string bytes;
    const char* problem;
  } cases[] = {
      {"n48w123.hgt", Hgt().substr(0, 300), "no square grid"},
      {"n48w123.hgt", "", "no square grid"},
      {"north.hgt", Hgt(), "where it lies"},
      {"n98w123.hgt", Hgt(), "where it lies"},
      {"N-8W123.hgt", Hgt(), "where it lies"},
      {"a.asc", swapped(asc, "cellsize 0.08", "cellsize 0.00000008"), "too close together"},
      {"a.asc", asc.substr(0, asc.size() - 9), "before its last post"},
      {"a.asc", asc.substr(0, 40), "header"},
      {"a.asc", asc + "7", "behind its last post"},
      {"a.asc", swapped(asc, "ncols 13", "ncols 2147483647"), "too short"},
      {"a.asc", swapped(asc, "ncols 13", "ncols -13"), "the size"},
      {"a.asc", swapped(asc, "yllcenter 48", "yllcenter 89.5"), "not on the globe"},
      {"a.asc", swapped(asc, "yllcenter 48", "yllcenter nan"), "header"},
      {"a.asc", swapped(asc, "-860", "nan"), "no number"},
      {"a.asc", swapped(asc, "-860", "1e300"), "is none"},
      {"t.csv", csv.substr(0, csv.size() - 12), "line 170"},
      {"t.csv", csv + "5,-123,48\n", "full grid"},
      {"t.csv", wrapping, "full grid"},
      {"t.csv", swapped(csv, "-123,48", "-123,inf"), "line 2 has a position"},
      {"t.csv", "a,b,c\n", "names no latitude"},
      {"g.tif", asc, ""},
      {"g.png", "", "its name ends"},
  };
  for (const auto& c : cases) {
    Put(c.name, c.bytes);
    const std::string problem = Build({c.name}, 12);
    EXPECT_NE(problem.find(c.problem), std::string::npos) << c.name << ": " << problem;
    EXPECT_FALSE(problem.empty() || problem.find('\n') != std::string::npos) << c.name;
    EXPECT_EQ(FilesMade(), 0u) << c.name;
  }
}

}  // namespace
