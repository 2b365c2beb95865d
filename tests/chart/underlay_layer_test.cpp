// A picture of the world under a chart, in every projection.

#include "layers/underlay_layer.h"
#include "chart/chart_fixture.h"
#include "support/temp_dir.h"

#include <k7/projection.h>

#include <cmath>

namespace {

struct PixelGrfx : K7GrfxK7 {
  PixelGrfx() : K7GrfxK7(1, 1) {}
  void Image(const uint32_t* image, int w, int h, double, double, double, double) override {
    pixels.assign(image, image + w * h);
  }
  std::vector<uint32_t> pixels;
};

class UnderlayTest : public testing::Test {
 protected:
  // Draws a picture whose pixels are `color(lat, lon)` of their middles.
  template <class ColorOf>
  std::vector<uint32_t> Draw(const K7MapView& view, int columns, int rows, const UnderlayBounds& b,
                             ColorOf color) {
    K7Bitmap image;
    EXPECT_EQ(image.Create(columns, rows, 32), 0);
    for (int y = 0; y < rows; ++y)
      for (int x = 0; x < columns; ++x)
        image.Colors()[y * columns + x] = color(b.north - (y + 0.5) * (b.north - b.south) / rows,
                                                b.west + (x + 0.5) * (b.east - b.west) / columns);
    const std::string path = m_dir / "image.png";
    EXPECT_EQ(image.WritePNG(path.c_str()), 0);
    UnderlayLayer layer(path, b);
    EXPECT_EQ(layer.Load(m_progress), "");
    PixelGrfx g;
    K7MapPath map(view);
    layer.DrawAreas({view, m_day, 1, m_progress}, map, g);
    return g.pixels;
  }

  TempDir m_dir;
  NoProgress m_progress;
  Theme m_day;
};

// Colours that grow with the distance from the north pole and from Greenwich: without a seam at 180 degrees.
TEST_F(UnderlayTest, EachPixelHasTheColourOfItsPlace) {
  const auto byte = [](double v) { return static_cast<uint8_t>(std::lround(v)); };
  for (int type = K7_PROJ_LAMBERT; type <= K7_PROJ_GNOMONIC; ++type)
    for (const double range : {0.0, 900.0}) {
      const std::unique_ptr<K7Projection> projection(
          K7MapView::CreateProjection(static_cast<K7ProjType>(type), 62, 178, range, nullptr));
      ASSERT_TRUE(projection);
      K7MapView view(projection.get(), 203, 151);
      ASSERT_EQ(view.LookAt(62, 178, range), 0);
      const std::vector<uint32_t> seen = Draw(view, 360, 180, {}, [&](double lat, double lon) {
        return K7Color(byte((90 - lat) / 180 * 255), byte(std::fabs(lon) / 180 * 255), lon < 0 ? 0 : 255);
      });
      int shown = 0;
      for (int y = 0; y < 151; ++y)
        for (int x = 0; x < 203; ++x) {
          const K7Color color(seen[static_cast<size_t>(y) * 203 + static_cast<size_t>(x)]);
          double lat, lon, dx, dy;
          const bool onMap = view.FromDevice(x + 0.5, y + 0.5, lat, lon) && view.ToDevice(lat, lon, dx, dy) &&
                             std::hypot(dx - x - 0.5, dy - y - 0.5) < 0.1;
          ASSERT_EQ(color.A(), onMap ? 255 : 0) << projection->Name() << x << "," << y;
          if (!onMap || std::fabs(lat) > 87) continue;
          ++shown;
          lon = std::remainder(lon, 360);
          ASSERT_NEAR(color.R(), (90 - lat) / 180 * 255, 2) << projection->Name() << x << "," << y;
          ASSERT_NEAR(color.G(), std::fabs(lon) / 180 * 255, 2.5) << projection->Name() << x << "," << y;
          if (std::fabs(lon) > 5 && std::fabs(lon) < 175) {
            ASSERT_EQ(color.B(), lon < 0 ? 0 : 255);
          }
        }
      EXPECT_GT(shown, 5000) << projection->Name();
    }
}

TEST_F(UnderlayTest, PicturesEndAtTheirBoundsAndGoOnBehindThePole) {
  K7OrthographicProjection projection;
  K7MapView view(&projection, 101, 101);
  ASSERT_EQ(view.LookAt(90, 0, 0), 0);
  const auto half = [](double, double lon) { return lon < 0 ? K7Color(0, 0, 0) : K7Color(200, 200, 200); };
  EXPECT_NEAR(K7Color(Draw(view, 8, 4, {}, half)[50 * 101 + 50]).R(), 100, 1);

  const auto ground = [](double lat, double) { return K7Color(50, 60, 70, lat > 0 ? 255 : 0); };
  const std::vector<uint32_t> part = Draw(view, 20, 20, {170, 10, 190, 60}, ground);
  const auto at = [&](double lat, double lon) {
    double x, y;
    EXPECT_TRUE(view.ToDevice(lat, lon, x, y));
    return K7Color(part[static_cast<size_t>(y) * 101 + static_cast<size_t>(x)]);
  };
  for (const double lon : {173.0, 180.0, -173.0}) EXPECT_EQ(at(40, lon), K7Color(50, 60, 70)) << lon;
  for (const double lon : {160.0, -160.0, 0.0}) EXPECT_EQ(at(40, lon), K7Color()) << lon;
  EXPECT_EQ(at(70, 180), K7Color());
  EXPECT_NE(UnderlayLayer("/nowhere.png").Load(m_progress), "");
}

}  // namespace
