// Region files, byte by byte as docs/formats.md has them.
#pragma once

#include "support/temp_dir.h"

#include <zlib.h>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

template <class T>
void Put(std::string& out, T value) {
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

struct TilePlan {
  double north, south, east, west;
  int rows, columns;
  std::vector<int16_t> posts;  // row by row from the south
};

inline std::string Packed(const void* data, size_t size) {
  uLongf length = compressBound(static_cast<uLong>(size));
  std::string out(length, '\0');
  compress2(reinterpret_cast<Bytef*>(out.data()), &length, static_cast<const Bytef*>(data),
            static_cast<uLong>(size), 6);
  out.resize(length);
  return out;
}
inline std::string Packed(const TilePlan& tile) {
  return Packed(tile.posts.data(), tile.posts.size() * sizeof(int16_t));
}

struct RegionPlan {
  int32_t rows = 1, columns = 1;
  double tileHeight = 1, tileWidth = 1;
  double north, south, east, west;
  std::vector<TilePlan> tiles;

  // `streams` in the place of the tiles' own.
  std::string Bytes(std::vector<std::string> streams = {}) const {
    if (streams.empty())
      for (const TilePlan& tile : tiles) streams.push_back(Packed(tile));
    std::string out;
    for (const int32_t word : {11, 22, rows, columns}) Put(out, word);
    for (const double value : {tileHeight, tileWidth, north, south, east, west}) Put(out, value);
    Put(out, int32_t{72});
    Put(out, static_cast<int32_t>(tiles.size()));
    size_t offset = 72 + 44 * tiles.size();
    for (size_t i = 0; i < tiles.size(); ++i) {
      for (const double limit : {tiles[i].north, tiles[i].south, tiles[i].east, tiles[i].west})
        Put(out, limit);
      Put(out, static_cast<int32_t>(offset));
      Put(out, static_cast<int32_t>(streams[i].size()));
      Put(out, static_cast<int16_t>(tiles[i].rows));
      Put(out, static_cast<int16_t>(tiles[i].columns));
      offset += streams[i].size();
    }
    for (const std::string& stream : streams) out += stream;
    return out;
  }
};

// A region of rows x columns tiles of one degree with n x n posts each, given by `post(row, column)` counted
// over the whole region.
template <class Post>
RegionPlan MadeRegion(double south, double west, int rows, int columns, int n, Post post) {
  RegionPlan region{rows, columns, 1, 1, south + rows, south, west + columns, west, {}};
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) {
      TilePlan tile{south + row + 1, south + row, west + column + 1, west + column, n, n, {}};
      for (int i = 0; i < n * n; ++i)
        tile.posts.push_back(static_cast<int16_t>(post(row * n + i / n, column * n + i % n)));
      region.tiles.push_back(tile);
    }
  return region;
}

// A folder that goes with the test; its path ends in a separator.
class TempFolder {
 public:
  const std::string& Path() const { return m_path; }
  std::string Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(m_path + name, std::ios::binary) << bytes;
    return m_path + name;
  }

 private:
  TempDir m_dir;
  std::string m_path = m_dir.Path() + "/";
};
