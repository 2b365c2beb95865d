// Region files read byte by byte, apart from the library.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

class RegionBytes {
 public:
  explicit RegionBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    m_bytes.assign(std::istreambuf_iterator<char>(file), {});
    const int table = At<int32_t>(64);
    for (int i = 0; i < At<int32_t>(68); ++i)
      m_tiles.push_back(MakeTile(static_cast<size_t>(table + 44 * i)));
  }
  size_t Tiles() const { return m_tiles.size(); }
  double North() const { return At<double>(32); }
  double South() const { return At<double>(40); }
  double East() const { return At<double>(48); }
  double West() const { return At<double>(56); }

  // By the rule of lookups: the tile's cell that holds the position; -5000 where there is no tile.
  int Metres(double lat, double lon) const {
    for (const Tile& tile : m_tiles) {
      const double row = (lat - tile.south) / (tile.north - tile.south) * tile.rows;
      const double col = (lon - tile.west) / (tile.east - tile.west) * tile.cols;
      if (row < 0 || col < 0 || row >= tile.rows || col >= tile.cols) continue;
      return tile.metres[static_cast<size_t>(static_cast<int>(row) * tile.cols + static_cast<int>(col))];
    }
    return -5000;
  }

 private:
  struct Tile {
    double north, south, east, west;
    int rows, cols;
    std::vector<int16_t> metres;
  };
  template <class T>
  T At(size_t at) const {
    T value{};
    if (at + sizeof value <= m_bytes.size()) std::memcpy(&value, &m_bytes[at], sizeof value);
    return value;
  }
  Tile MakeTile(size_t at) const {
    Tile tile{At<double>(at),
              At<double>(at + 8),
              At<double>(at + 16),
              At<double>(at + 24),
              At<int16_t>(at + 40),
              At<int16_t>(at + 42),
              {}};
    tile.metres.resize(static_cast<size_t>(tile.rows * tile.cols));
    auto size = static_cast<uLongf>(tile.metres.size() * 2);
    const auto* const data = reinterpret_cast<const Bytef*>(m_bytes.data() + At<int32_t>(at + 32));
    const int code = uncompress(reinterpret_cast<Bytef*>(tile.metres.data()), &size, data,
                                static_cast<uLong>(At<int32_t>(at + 36)));
    if (code != Z_OK || size != tile.metres.size() * 2) tile.metres.assign(tile.metres.size(), -9999);
    return tile;
  }

  std::vector<char> m_bytes;
  std::vector<Tile> m_tiles;
};
