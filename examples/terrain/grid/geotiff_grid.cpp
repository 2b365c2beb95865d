#include "grid/formats.h"
#include "grid/text.h"

#if defined(K7TERRAIN_GDAL)

#include <gdal.h>
#include <ogr_srs_api.h>

#include <cmath>
#include <limits>
#include <mutex>

namespace {

class GeoTiffGrid final : public ElevGrid {
 public:
  explicit GeoTiffGrid(const std::string& path) : ElevGrid(path) {}
  ~GeoTiffGrid() override { Release(); }

  std::string Open();
  std::string Read(const GridWindow& window, std::vector<float>& metres) override;
  void Release() override;

 private:
  bool OpenFile();
  bool IsInDegrees() const;
  void TakeUnits();

  GDALDatasetH m_file = nullptr;
  GDALRasterBandH m_band = nullptr;
  double m_scale = 1;  // metres of what the file holds
  double m_offset = 0;
};

bool GeoTiffGrid::OpenFile() {
  static std::once_flag once;
  std::call_once(once, [] {
    GDALAllRegister();
    // What goes wrong is told in the program's own line.
    CPLSetErrorHandler(CPLQuietErrorHandler);
  });
  const char* const drivers[] = {"GTiff", nullptr};
  m_file = GDALOpenEx(Path().c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers, nullptr, nullptr);
  m_band = m_file && GDALGetRasterCount(m_file) > 0 ? GDALGetRasterBand(m_file, 1) : nullptr;
  return m_band != nullptr;
}

// A file that names no reference system is taken at its numbers.
bool GeoTiffGrid::IsInDegrees() const {
  OGRSpatialReferenceH system = GDALGetSpatialRef(m_file);
  return !system || OSRIsGeographic(system);
}

// Decimetres and feet are published too.
void GeoTiffGrid::TakeUnits() {
  constexpr double METRES_PER_FOOT = 0.3048;
  m_scale = GDALGetRasterScale(m_band, nullptr);
  m_offset = GDALGetRasterOffset(m_band, nullptr);
  const std::string unit = Lower(GDALGetRasterUnitType(m_band));
  if (unit.find("ft") == std::string::npos && unit.find("foot") == std::string::npos && unit != "feet")
    return;
  m_scale *= METRES_PER_FOOT;
  m_offset *= METRES_PER_FOOT;
}

std::string GeoTiffGrid::Open() {
  if (!OpenFile()) return "cannot open " + Path() + " as a GeoTIFF";
  // Where a pixel's corner lies: x0, its width, 0, y0, 0, its height downwards.
  double place[6];
  if (GDALGetGeoTransform(m_file, place) != CE_None || !(place[1] > 0) || !(place[5] < 0) || place[2] != 0 ||
      place[4] != 0 || !IsInDegrees())
    return Path() + ": does not lie north up in degrees of latitude and longitude";
  TakeUnits();
  const int rows = GDALGetRasterYSize(m_file), cols = GDALGetRasterXSize(m_file);
  return SetAxes(GridAxis(place[3] + place[5] * (rows - 0.5), -place[5], rows),
                 GridAxis(place[0] + place[1] / 2, place[1], cols));
}

std::string GeoTiffGrid::Read(const GridWindow& window, std::vector<float>& metres) {
  if ((!m_file && !OpenFile()) || GDALGetRasterYSize(m_file) != Lats().Count() ||
      GDALGetRasterXSize(m_file) != Lons().Count())
    return "cannot open " + Path() + " again";
  std::vector<float> downwards(static_cast<size_t>(window.rows) * static_cast<size_t>(window.cols));
  std::vector<unsigned char> there(downwards.size());
  const auto read = [&](GDALRasterBandH band, void* into, GDALDataType type) {
    return GDALRasterIO(band, GF_Read, window.col, Lats().Count() - window.row - window.rows, window.cols,
                        window.rows, into, window.cols, window.rows, type, 0, 0) == CE_None;
  };
  // The mask knows the value that stands for none, and whatever else says where there is something.
  if (!read(m_band, downwards.data(), GDT_Float32) || !read(GDALGetMaskBand(m_band), there.data(), GDT_Byte))
    return Path() + ": cannot be read to its end";
  metres.clear();
  for (int row = window.rows; row-- > 0;)
    for (int col = 0; col < window.cols; ++col) {
      const size_t at =
          static_cast<size_t>(row) * static_cast<size_t>(window.cols) + static_cast<size_t>(col);
      const double value = downwards[at] * m_scale + m_offset;
      const bool absent = !there[at] || downwards[at] == VOID_POST || std::isnan(downwards[at]);
      if (!absent && !IsPost(value)) return Path() + ": has an elevation that is none";
      metres.push_back(absent ? std::numeric_limits<float>::quiet_NaN() : static_cast<float>(value));
    }
  return {};
}

void GeoTiffGrid::Release() {
  if (m_file) GDALClose(m_file);
  m_file = nullptr;
}

}  // namespace

std::string OpenGeoTiff(const std::string& path, std::unique_ptr<ElevGrid>& grid) {
  auto tiff = std::make_unique<GeoTiffGrid>(path);
  std::string problem = tiff->Open();
  tiff->Release();
  if (problem.empty()) grid = std::move(tiff);
  return problem;
}

#else

std::string OpenGeoTiff(const std::string& path, std::unique_ptr<ElevGrid>&) {
  return path + ": this program was built without GDAL, which reads GeoTIFF";
}

#endif
