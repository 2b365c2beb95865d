#include "grid/elev_grid.h"

#include "grid/formats.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>

namespace {

struct Format {
  const char* extension;
  std::string (*open)(const std::string& path, std::unique_ptr<ElevGrid>& grid);
};

constexpr Format FORMATS[] = {
    {".hgt", OpenHgt}, {".asc", OpenAsc}, {".csv", OpenCsv}, {".tif", OpenGeoTiff}, {".tiff", OpenGeoTiff},
};

const Format* FormatOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const Format& format : FORMATS)
    if (extension == format.extension) return &format;
  return nullptr;
}

// Longitudes may run from 0 to 360 as well.
bool IsOnTheGlobe(const GridAxis& axis, double limit) {
  return axis.Count() > 1 && axis.Spacing() > 0 && std::abs(axis.First()) <= limit &&
         std::abs(axis.Last()) <= limit;
}

}  // namespace

std::string ElevGrid::SetAxes(GridAxis lats, GridAxis lons) {
  if (!IsOnTheGlobe(lats, 90) || !IsOnTheGlobe(lons, 360) || lons.Last() - lons.First() > 360.000001)
    return m_path + ": its posts are not on the globe, in degrees of latitude and longitude";
  m_lats = std::move(lats);
  m_lons = std::move(lons);
  return {};
}

bool IsGridName(const std::string& path) { return FormatOf(path) != nullptr; }

std::string OpenGrid(const std::string& path, std::unique_ptr<ElevGrid>& grid) {
  const Format* const format = FormatOf(path);
  if (!format) return path + ": its name ends in none of .hgt, .asc, .csv, .tif and .tiff";
  return format->open(path, grid);
}

void LoadedPosts::Set(std::vector<float> metres, int cols) {
  m_metres = std::move(metres);
  m_cols = static_cast<size_t>(cols);
}

void LoadedPosts::Read(const GridWindow& window, std::vector<float>& metres) const {
  metres.clear();
  for (int row = window.row; row < window.row + window.rows; ++row) {
    const float* const first =
        m_metres.data() + static_cast<size_t>(row) * m_cols + static_cast<size_t>(window.col);
    metres.insert(metres.end(), first, first + window.cols);
  }
}
