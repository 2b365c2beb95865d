// Elevations: region files, and ground of the host's own.
#include <k7/core.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace {

/// A cone of 6000 ft on the equator, whose sides fall 100 ft a mile.
class Cone : public K7Terrain {
 public:
  int Read(const char*) override { return 0; }
  void Clear() override {}
  int GetElev(double lat, double lon, double) override {
    const double miles = K7LatLon(lat, lon).Distance(K7LatLon(0, 0));
    return miles < 60 ? static_cast<int>(std::lround(6000 - 100 * miles)) : K7_NO_ELEV;
  }
};

void PrintProfile(K7Terrain& terrain, const K7LatLon& from, const K7LatLon& to, double spacing) {
  K7Array profile(sizeof(K7TerElevPoint), 64);
  const int count = terrain.GetElevUnderLine(from, to, 30, spacing, profile);
  if (count < 0) std::puts(K7ErrorString::ErrorString(count));
  for (int i = 0; i < count; ++i) {
    const auto* const point = static_cast<const K7TerElevPoint*>(profile[i]);
    std::printf(" %.0f NM %d ft;", point->distance, point->elev);
  }
  std::puts("");
}

/// The picture that a terrain draws goes to a file.
class ImageFile : public K7GrfxK7 {
 public:
  ImageFile(int width, int height, const char* path) : K7GrfxK7(width, height), m_path(path) {}
  void Image(const uint32_t* pixels, int width, int height, double, double, double, double) override {
    K7Bitmap bitmap;
    m_code = bitmap.Populate(width, height, 32, pixels, static_cast<ptrdiff_t>(width) * 4);
    if (m_code == 0) m_code = bitmap.WritePNG(m_path);
  }
  int Code() const { return m_code; }

 private:
  const char* m_path;
  int m_code = K7_ERR_NOT_FOUND;
};

int DrawRelief(K7Terrain& terrain, const char* path) {
  int code = 0;
  const std::unique_ptr<K7Projection> projection(
      K7MapView::CreateProjection(K7_PROJ_MERCATOR, 49, -123, 40, &code));
  if (!projection) return code;
  K7MapView view(projection.get(), 320, 240);
  if ((code = view.LookAt(49, -123, 40)) != 0) return code;
  K7TerParams params;
  const int32_t limits[] = {0, 300, 1000};
  const K7Color colors[] = {{170, 200, 160}, {230, 220, 160}, {200, 160, 110}};
  if (!params.ColorMap().Init(3, limits, colors)) return K7_ERR_BAD_ARGUMENT;
  ImageFile grfx(view.Width(), view.Height(), path);
  view.SetUp(&grfx);
  code = terrain.Render(&grfx, view, params);
  return code != 0 ? code : grfx.Code();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  Cone cone;
  PrintProfile(cone, K7LatLon(0, 0), K7LatLon(0, 0.9), 18);

  K7TerrainK7* const terrain = K7TerrainK7::Inst();
  int code = terrain ? terrain->Read(argv[1]) : K7_ERR_MEMORY;
  if (code == 0) {
    std::printf("at N49 40 W123 20: %d ft\n", terrain->GetElev(49 + 40 / 60.0, -123 - 20 / 60.0, 30));
    code = DrawRelief(*terrain, argv[2]);
  }
  if (code != 0) std::puts(K7ErrorString::ErrorString(code));
  K7TerrainK7::Destroy();
  return code == 0 ? 0 : 1;
}
