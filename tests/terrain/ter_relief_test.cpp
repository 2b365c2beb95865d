#include "surface.h"
#include "terrain/region_file.h"

#include <k7/foundation/error_string.h>
#include <k7/projection/map_view.h>
#include <k7/terrain/ter_level.h>
#include <k7/terrain/ter_relief.h>
#include <k7/terrain/terrain.h>

#include <algorithm>
#include <limits>
#include <map>
#include <vector>

namespace {

constexpr double RAD = 3.14159265358979 / 180;
K7ChartRect Bounds(double lat) { return {lat + 0.1, lat, 10.1, 10}; }

int Red(uint32_t pixel) { return static_cast<int>(pixel >> 16 & 255); }

void OneBand(K7TerParams& params, uint32_t color) {
  const int32_t lowest = -9999;
  const K7Color band(color);
  ASSERT_TRUE(params.ColorMap().Init(1, &lowest, &band));
}

// Shade of a slope by the angles of surveyors: cos = cos(zenith) cos(slope) + sin(zenith) sin(slope)
// cos(light's azimuth - aspect), aspect being the direction of descent.
double Shade(double slope, double aspect, double azimuth) {
  const double zenith = std::acos(0.8);
  const double facing = std::cos(zenith) * std::cos(slope) +
                        std::sin(zenith) * std::sin(slope) * std::cos((azimuth - aspect) * RAD);
  return (0.3 + 0.7 * std::max(0.0, facing)) / (0.3 + 0.7 * 0.8);
}

TEST(TerRelief, PlanesHaveTheShadeOfTheirAngles) {
  K7TerParams params;
  OneBand(params, 0xFF808080);
  for (const double lat : {0.0, 60.0}) {
    for (double aspect = 0; aspect < 360; aspect += 22.5) {
      for (const double turn : {0.0, 100.0}) {
        const double slope = 0.3, exaggeration = 2;
        const auto tile = MakeTile(Bounds(lat), 21, 21, [&](double y, double x) {
          const double east = (x - 10) * METRES_A_DEGREE * std::cos((lat + 0.05) * RAD);
          const double north = (y - lat) * METRES_A_DEGREE;
          return 3000 - slope * (east * std::sin(aspect * RAD) + north * std::cos(aspect * RAD)) + 4000;
        });
        params.m_exaggeration = exaggeration;
        params.m_lightTurn = turn;
        K7TerRelief relief;
        ASSERT_EQ(0, relief.Init(*tile, params));
        const double expected = 128 * Shade(std::atan(slope * exaggeration), aspect, 315 + turn);
        // The middle, an edge and a corner, where fewer posts tell.
        EXPECT_NEAR(expected, Red(relief.ColorAt(lat + 0.0512, 10.0477, 0)), 1.5) << lat << ' ' << aspect;
        EXPECT_NEAR(expected, Red(relief.ColorAt(lat + 0.05, 10.1, 0)), 1.5) << lat << ' ' << aspect;
        EXPECT_NEAR(expected, Red(relief.ColorAt(lat, 10, 0)), 1.5) << lat << ' ' << aspect;
      }
    }
  }
}

// A cone about the middle: along any circle the shade runs smoothly, within a post's cell too.
TEST(TerRelief, AConeIsShadedByItsAspect) {
  K7TerParams params;
  OneBand(params, 0xFF808080);
  const auto cone = MakeTile(Bounds(-0.05), 201, 201, [](double y, double x) {
    return 5000 - 0.4 * METRES_A_DEGREE * std::hypot(y, x - 10.05);
  });
  cone->GetMesh()[10][10] = -5000;
  K7TerRelief relief;
  ASSERT_EQ(0, relief.Init(*cone, params));
  for (double aspect = 0; aspect < 360; aspect += 7) {
    const uint32_t pixel =
        relief.ColorAt(0.03 * std::cos(aspect * RAD), 10.05 + 0.03 * std::sin(aspect * RAD), 0);
    EXPECT_NEAR(128 * Shade(std::atan(0.4), aspect, 315), Red(pixel), 2.5) << aspect;
  }
  EXPECT_EQ(0U, relief.ColorAt(-0.05 + 10.5 * 0.1 / 201, 10 + 10.5 * 0.1 / 201, 0)) << "no data";
  EXPECT_EQ(0U, relief.ColorAt(0.051, 10.05, 0)) << "outside";
  EXPECT_EQ(0U, relief.ColorAt(std::nan(""), 10.05, 0));
  EXPECT_EQ(0U, relief.ColorAt(0, std::numeric_limits<double>::infinity(), 0));
}

TEST(TerRelief, LevelGroundHasItsBandsColourAndWaterDarkens) {
  const int32_t limits[] = {-9999, 0, 500};
  const K7Color colors[] = {K7Color(0xFF4080C0), K7Color(0xFF60A040), K7Color(0x80E0C080)};
  K7TerParams params;
  ASSERT_TRUE(params.ColorMap().Init(3, limits, colors));
  const std::map<int, uint32_t> expected = {{0, 0xFF60A040},     {499, 0xFF60A040},   {500, 0x80E0C080},
                                            {-2000, 0xFF204060}, {-9000, 0xFF204060}, {-1000, 0xFF306090}};
  for (const auto& [metres, color] : expected) {
    const int level = metres;
    const auto tile = MakeTile(Bounds(0), 3, 3, [&](double, double) { return level; });
    K7TerRelief relief;
    ASSERT_EQ(0, relief.Init(*tile, params));
    std::vector<uint32_t> pixels(35);
    ASSERT_EQ(0, relief.Image(pixels.data(), 7, 5));
    for (const uint32_t pixel : pixels) EXPECT_EQ(color, pixel) << metres;
  }
}

// The mean of a picture is what its parts of the ground have, however coarse its pixels are.
TEST(TerRelief, LimitsOfBandsRunThroughPixels) {
  const int32_t limits[] = {-9999, 100};
  const K7Color colors[] = {K7Color(0xFF000000), K7Color(0xFFFFFFFF)};
  K7TerParams params;
  ASSERT_TRUE(params.ColorMap().Init(2, limits, colors));
  params.m_shadeLand = 0;
  // A slope to the north, 0 to 1000 m: 90 percent of it is white.
  const auto tile = MakeTile(Bounds(0), 11, 11, [](double y, double) { return y * 10000; });
  K7TerRelief relief;
  ASSERT_EQ(0, relief.Init(*tile, params));
  for (const int height : {3, 7, 16, 33}) {
    std::vector<uint32_t> pixels(static_cast<size_t>(height));
    ASSERT_EQ(0, relief.Image(pixels.data(), 1, height));
    double sum = 0;
    for (const uint32_t pixel : pixels) sum += Red(pixel);
    EXPECT_NEAR(0.9 * 255, sum / height, 1.0) << height;
    EXPECT_EQ(255, Red(pixels.front())) << "north is up";
  }
}

double Hills(double lat, double lon) { return 800 * std::sin(lat * 300) * std::cos(lon * 250) + 900; }

TEST(TerRelief, WithItsSurroundingsATileMeetsItsNeighbour) {
  const auto west = MakeTile({0.1, 0, 10.1, 10}, 41, 41, Hills),
             east = MakeTile({0.1, 0, 10.2, 10.1}, 41, 41, Hills);
  const auto both = MakeTile({0.1, 0, 10.2, 10}, 41, 82, Hills);
  K7TerParams params;
  OneBand(params, 0xFF808080);
  K7TerRelief whole, half;
  K7TerTileEX tile;
  ASSERT_EQ(0, tile.Init(west->GetChartRect(), 41, 41));
  ASSERT_EQ(0, tile.AddTileForMerge(east.get()));
  ASSERT_EQ(0, tile.AddTileForMerge(west.get()));
  ASSERT_EQ(0, tile.Generate(&params));
  ASSERT_EQ(0, half.Init(tile, params));
  ASSERT_EQ(0, whole.Init(*both, params));
  for (double lat = 0.003; lat < 0.097; lat += 0.0013) {
    for (const double lon : {10.1, 10.0991, 10.05})
      EXPECT_NEAR(Red(whole.ColorAt(lat, lon, 10)), Red(half.ColorAt(lat, lon, 10)), 1) << lat;
  }
  EXPECT_EQ(41, tile.SRTWidth());
  tile.Free();
  EXPECT_EQ(nullptr, tile.SRTImage());
  EXPECT_EQ(-11504, half.Init(tile, params));
  EXPECT_EQ(0U, half.ColorAt(0.05, 10.05, 0));
}

TEST(TerRelief, AnySettingIsSafe) {
  const auto tile = MakeTile(Bounds(89.9), 5, 5, Hills);
  for (const double v : {std::nan(""), -1e300, 1e300, std::numeric_limits<double>::infinity(), 0.0}) {
    K7TerParams params;
    params.m_exaggeration = params.m_lightTurn = params.m_lightHeight = params.m_ambient = params.m_diffuse =
        v;
    params.m_seaLevel = params.m_deepWater = params.m_deepDarkening = std::numeric_limits<int32_t>::max();
    K7TerRelief relief;
    ASSERT_EQ(0, relief.Init(*tile, params));
    EXPECT_EQ(255U, relief.ColorAt(90, 10.05, v) >> 24);
  }
}

// Counts what is drawn on each pixel.
class Canvas : public K7GrfxK7 {
 public:
  Canvas(int width, int height) : K7GrfxK7(width, height), pixels(Size()), times(Size()) {}
  void Image(const uint32_t* image, int width, int height, double left, double top, double right,
             double bottom) override {
    EXPECT_EQ(width, right - left);
    EXPECT_EQ(height, bottom - top);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const uint32_t pixel = image[y * width + x];
        const auto at =
            static_cast<size_t>((y + static_cast<int>(top)) * Width() + x + static_cast<int>(left));
        if (!pixel) continue;
        pixels[at] = pixel;
        ++times[at];
      }
    }
  }
  size_t Size() const { return static_cast<size_t>(Width()) * static_cast<size_t>(Height()); }
  std::vector<uint32_t> pixels;
  std::vector<int> times;
};

// Tiles all around 180 degrees: every pixel that shows them is drawn once, in the colour of its longitude.
TEST(TerRelief, TilesMeetInEveryProjection) {
  const int32_t limits[] = {-9999, 1000};
  const K7Color colors[] = {K7Color(0xFF102030), K7Color(0xFFA0B0C0)};
  K7TerParams params;
  ASSERT_TRUE(params.ColorMap().Init(2, limits, colors));
  params.m_shadeLand = 0;
  std::vector<std::unique_ptr<K7TerTileEX>> tiles;
  for (const double south : {40.0, 50.0})
    for (const double west : {165.0, 175.0, -175.0})
      tiles.push_back(
          MakeTile<K7TerTileEX>({south + 10, south, west + 10 > 180 ? west - 350 : west + 10, west}, 10, 10,
                                [](double, double lon) { return std::remainder(lon, 360) < 0 ? 2000 : 0; }));
  for (int type = 0; type <= K7_PROJ_GNOMONIC; ++type) {
    for (const double range : {300.0, 2500.0}) {
      int error = 0;
      const std::unique_ptr<K7Projection> projection(
          K7MapView::CreateProjection(static_cast<K7ProjType>(type), 50, 178, range, &error));
      ASSERT_NE(nullptr, projection);
      K7MapView view(projection.get(), 120, 90);
      if (view.LookAt(50, 178, range) != 0) continue;
      Canvas canvas(120, 90);
      for (const auto& tile : tiles) ASSERT_EQ(0, tile->Render(&canvas, view, params));
      int wrong = 0;
      for (int i = 0; i < 120 * 90; ++i) {
        double lat = 0, lon = 0;
        const bool on = view.FromDevice(i % 120 + 0.5, i / 120 + 0.5, lat, lon) && lat >= 40 && lat < 60 &&
                        std::abs(std::remainder(lon - 180, 360)) < 15;
        const auto at = static_cast<size_t>(i);
        wrong += canvas.times[at] != on;
        // The ground rises between the posts half a degree from 180; coarse pixels mix colours around.
        const double east = std::remainder(lon - 180, 360);
        if (on && (east > 2 || east < -2)) wrong += canvas.pixels[at] != colors[east > 0].BGRA();
      }
      EXPECT_EQ(0, wrong) << type << ' ' << range;
    }
  }
}

// An edge beyond 180 is where it is to the pixel, however large the tile stands in the window.
TEST(TerRelief, ALargeTileAcross180ReachesItsEastEdge) {
  const auto tile = MakeTile<K7TerTileEX>({4, -4, -177, 175}, 8, 8, [](double, double) { return 10; });
  for (int type = 0; type <= K7_PROJ_GNOMONIC; ++type) {
    int error = 0;
    const std::unique_ptr<K7Projection> projection(
        K7MapView::CreateProjection(static_cast<K7ProjType>(type), 0.5, -179, 12, &error));
    K7MapView view(projection.get(), 600, 40);
    ASSERT_EQ(0, view.LookAt(0.5, -179, 12));
    Canvas canvas(600, 40);
    ASSERT_EQ(0, tile->Render(&canvas, view, K7TerParams()));
    int wrong = 0;
    for (int i = 0; i < 600 * 40; ++i) {
      double lat = 0, lon = 0;
      const bool on = view.FromDevice(i % 600 + 0.5, i / 600 + 0.5, lat, lon) && (lon < -177 || lon >= 175);
      wrong += (canvas.pixels[static_cast<size_t>(i)] != 0) != on;
    }
    EXPECT_EQ(0, wrong) << type;
  }
}

// A plain tile draws by itself what one for drawing does without neighbours.
TEST(TerRelief, APlainTileSmoothsAndShadesItsOwnGrid) {
  const auto hill = [](double lat, double lon) { return 900 * std::sin(lat * 60) * std::cos(lon * 50); };
  const auto plain = MakeTile(Bounds(48), 40, 30, hill);
  const auto drawn = MakeTile<K7TerTileEX>(Bounds(48), 40, 30, hill);
  const K7TerMeshHold rough(*plain);
  ASSERT_EQ(0, plain->SmoothMesh());
  double mean = 0;  // binomial weights
  for (int r = -1; r <= 1; ++r)
    for (int c = -1; c <= 1; ++c)
      mean += rough.Rows()[20 + r][10 + c] * (2 - std::abs(r)) * (2 - std::abs(c)) / 16.0;
  EXPECT_NEAR(plain->GetMesh()[20][10], mean, 0.5);
  ASSERT_EQ(0, drawn->SmoothMesh());
  const K7TerParams params;
  ASSERT_EQ(0, plain->Generate(&params));
  ASSERT_EQ(0, drawn->GenShadedRelief(&params));
  ASSERT_EQ(plain->SRTWidth() * plain->SRTHeight(), 30 * 40);
  EXPECT_TRUE(std::equal(plain->SRTImage(), plain->SRTImage() + 30 * 40, drawn->SRTImage()));
  plain->ClearSRTImage();
  EXPECT_EQ(nullptr, plain->SRTImage());
  EXPECT_EQ(K7_ERR_NOT_INITIALIZED, K7TerTile(Bounds(0), 4, 4).SmoothMesh());
}

// What `elevAt` says stands in each pixel about which it says the same. Answers the number of pixels told.
template <class ElevAt>
int ExpectDrawn(const Canvas& canvas, const K7MapView& view, double reach, const ElevAt& elevAt) {
  int wrong = 0, told = 0;
  for (int i = 0; i < view.Width() * view.Height(); ++i) {
    double lat = 0, lon = 0;
    if (!view.FromDevice(i % view.Width() + 0.5, i / view.Width() + 0.5, lat, lon)) continue;
    const int elev = elevAt(lat, lon);
    bool isEven = true;
    for (int k = 0; k < 9; ++k)
      isEven = isEven && elevAt(lat + (k / 3 - 1) * reach, lon + (k % 3 - 1) * reach) == elev;
    if (!isEven) continue;
    ++told;
    const uint32_t color = elev < 0 ? 0 : elev < 3280 ? 0xFF102030 : elev < 6560 ? 0xFFA0B0C0 : 0xFF506070;
    wrong += canvas.pixels[static_cast<size_t>(i)] != color;
  }
  EXPECT_EQ(0, wrong);
  return told;
}

TEST(TerRelief, TheTerrainDrawsWhatLookupsAnswer) {
  const int32_t limits[] = {-9999, 1000, 2000};
  const K7Color colors[] = {K7Color(0xFF102030), K7Color(0xFFA0B0C0), K7Color(0xFF506070)};
  K7TerParams params;
  ASSERT_TRUE(params.ColorMap().Init(3, limits, colors));
  params.m_shadeLand = 0;
  // A fine region within coarse ones, and others so far apart that one tile cannot have them all.
  const auto stripes = [](int, int column) { return column / 120 % 2 ? 500 : 1500; };
  const TempFolder folder;
  folder.Write("12_N30E000.ter", MadeRegion(30, 0, 30, 30, 12, stripes).Bytes());
  folder.Write("12_N30E030.ter", MadeRegion(30, 30, 30, 30, 12, stripes).Bytes());
  folder.Write("120_N30E000.ter", MadeRegion(40, 10, 4, 4, 120, [](int, int) { return 2500; }).Bytes());
  const auto plateau = [](int, int) { return 1500; };
  folder.Write("120_S60W120.ter", MadeRegion(-48, -120, 12, 12, 120, plateau).Bytes());
  folder.Write("120_N60E150.ter", MadeRegion(66, 156, 12, 12, 120, plateau).Bytes());
  K7TerrainK7::Destroy();
  K7TerrainK7* const terrain = K7TerrainK7::Inst();
  ASSERT_EQ(0, terrain->Read(folder.Path().c_str()));
  K7TerLevel* const fine = terrain->GetLevel(2);
  int toldFar = 0;
  for (int type = 0; type <= K7_PROJ_GNOMONIC; ++type) {
    for (const double range : {0.0, 120.0, 800.0}) {
      SCOPED_TRACE(testing::Message() << "projection " << type << ", range " << range);
      int error = 0;
      const std::unique_ptr<K7Projection> projection(
          K7MapView::CreateProjection(static_cast<K7ProjType>(type), 43, 13, range ? range : 4000, &error));
      K7MapView view(projection.get(), 160, 120);
      if ((range == 0 && type % 4 != 0) || view.LookAt(43, 13, range) != 0) continue;
      Canvas canvas(160, 120);
      if (range == 0) {
        ASSERT_EQ(0, fine->Render(&canvas, view, params));
        toldFar += ExpectDrawn(canvas, view, 4, [&](double lat, double lon) {
          const int elev = fine->GetElev(lat, std::remainder(lon, 360));
          return elev == 0 ? K7_NO_ELEV : elev;
        });
        continue;
      }
      ASSERT_EQ(0, terrain->Render(&canvas, view, params));
      const int told = ExpectDrawn(canvas, view, range / 1600, [&](double lat, double lon) {
        // A lookup would answer 0, the sea, beside the fine region.
        const int elev = range < 500 ? fine->GetElev(lat, lon) : K7_NO_ELEV;
        return elev > 0 ? elev : terrain->GetElev(lat, lon, 300);
      });
      EXPECT_GT(told, 3000);
    }
  }
  EXPECT_GT(toldFar, 3000);
  K7TerrainK7::Destroy();
}

}  // namespace
