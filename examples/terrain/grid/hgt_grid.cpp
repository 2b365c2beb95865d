#include "grid/formats.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>

namespace {

// A third of an arc-second.
constexpr int MOST_POSTS = 10801;

class HgtGrid : public ElevGrid {
 public:
  explicit HgtGrid(const std::string& path) : ElevGrid(path) {}

  std::string Open();
  std::string Read(const GridWindow& window, std::vector<float>& metres) override;

 private:
  int m_posts = 0;  // along each side
};

// "N48W123", in either case, at the start of a file's name.
bool CornerOf(const std::string& path, int& south, int& west) {
  const std::string name = std::filesystem::path(path).stem().string();
  char northSouth = 0, eastWest = 0;
  int read = 0;
  if (name.find_first_of("+- ") < 7) return false;
  if (std::sscanf(name.c_str(), "%c%2d%c%3d%n", &northSouth, &south, &eastWest, &west, &read) != 4 ||
      read != 7)
    return false;
  northSouth = static_cast<char>(std::toupper(static_cast<unsigned char>(northSouth)));
  eastWest = static_cast<char>(std::toupper(static_cast<unsigned char>(eastWest)));
  if ((northSouth != 'N' && northSouth != 'S') || (eastWest != 'E' && eastWest != 'W')) return false;
  if (northSouth == 'S') south = -south;
  if (eastWest == 'W') west = -west;
  return south >= -90 && south < 90 && west >= -180 && west < 180;
}

std::string HgtGrid::Open() {
  int south = 0, west = 0;
  if (!CornerOf(Path(), south, west)) return Path() + ": its name does not say where it lies, as N48W123.hgt";
  std::error_code failed;
  const uintmax_t size = std::filesystem::file_size(Path(), failed);
  if (failed) return "cannot open " + Path();
  m_posts = static_cast<int>(std::lround(std::sqrt(static_cast<double>(size) / 2)));
  const auto posts = static_cast<uintmax_t>(m_posts);
  if (m_posts < 2 || m_posts > MOST_POSTS || posts * posts * 2 != size)
    return Path() + ": its length is that of no square grid";
  const double step = 1.0 / (m_posts - 1);
  return SetAxes(GridAxis(south, step, m_posts), GridAxis(west, step, m_posts));
}

std::string HgtGrid::Read(const GridWindow& window, std::vector<float>& metres) {
  std::ifstream file(Path(), std::ios::binary);
  std::vector<unsigned char> bytes(static_cast<size_t>(window.cols) * 2);
  metres.clear();
  for (int row = window.row; row < window.row + window.rows; ++row) {
    file.seekg((static_cast<std::streamoff>(m_posts - 1 - row) * m_posts + window.col) * 2);
    if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size())))
      return Path() + ": cannot be read to its end";
    for (size_t i = 0; i < bytes.size(); i += 2) {
      const int value = static_cast<int16_t>(bytes[i] << 8 | bytes[i + 1]);
      metres.push_back(value == VOID_POST ? std::numeric_limits<float>::quiet_NaN()
                                          : static_cast<float>(value));
    }
  }
  return {};
}

}  // namespace

std::string OpenHgt(const std::string& path, std::unique_ptr<ElevGrid>& grid) {
  auto hgt = std::make_unique<HgtGrid>(path);
  std::string problem = hgt->Open();
  if (problem.empty()) grid = std::move(hgt);
  return problem;
}
