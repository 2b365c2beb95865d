#include "region/build_region.h"

#include "app_common/part_file.h"
#include "grid/resample.h"

#include <k7/foundation/error_string.h>
#include <k7/io/crc.h>
#include <k7/io/file.h>
#include <k7/io/io.h>
#include <k7/terrain/ter_region.h>

#include <algorithm>
#include <filesystem>

namespace {

constexpr int HEADER_SIZE = 72;
constexpr int TILE_HEADER_SIZE = 44;
// Offsets have 31 bits.
constexpr int64_t LARGEST_FILE = INT32_MAX;

// The headers of the tiles stand before their data and are known behind them: room is kept for all tiles that
// may be. Data follow tile by tile, so that no more than one is in memory.
class RegionWriter {
 public:
  RegionWriter(GridSpan grids, const RegionPlan& plan)
      : m_grids(GridsIn(grids, plan.Bounds())), m_plan(plan) {
    const double tile = static_cast<double>(plan.tilePosts) / plan.resolution;
    m_region.Init(plan.Bounds(), plan.TilesAlong(), plan.TilesAlong(), tile, tile);
  }

  std::string Write(const std::string& path, const RegionProgress& progress);
  int Tiles() const { return m_tiles; }

 private:
  int MostTiles() const;
  std::string WriteRow(int row);
  std::string WriteTile(int row, int col, GridSpan grids);
  std::string Append(std::unique_ptr<K7TerTile> tile);
  std::string Code(int code) const;

  std::vector<ElevGrid*> m_grids;
  const RegionPlan& m_plan;
  K7TerRegion m_region;
  std::unique_ptr<K7File> m_file;
  std::vector<int16_t> m_metres;
  int m_tiles = 0;
  int m_tried = 0;  // tiles, with elevations or without
  int m_end = 0;
};

std::string RegionWriter::Code(int code) const {
  return code ? "cannot write " + m_plan.Name() + ".ter: " + Explain(code) : std::string();
}

int RegionWriter::MostTiles() const {
  int tiles = 0;
  for (int row = 0; row < m_plan.TilesAlong(); ++row) {
    const std::vector<ElevGrid*> grids = GridsIn(m_grids, m_plan.RowBounds(row));
    for (int col = 0; col < m_plan.TilesAlong(); ++col)
      tiles += !GridsIn(grids, m_plan.TileBounds(row, col)).empty();
  }
  return tiles;
}

std::string RegionWriter::Append(std::unique_ptr<K7TerTile> tile) {
  m_file->Seek(m_end);
  tile->SetOffset(m_end);
  if (const int code = tile->Write(m_file.get())) return Code(code);
  const int64_t end = static_cast<int64_t>(m_end) + tile->GetCompSize();
  if (end > LARGEST_FILE)
    return m_plan.Name() + " does not go into a file of 2 gigabytes; build it at a lower --resolution";
  m_end = static_cast<int>(end);
  ++m_tiles;
  tile->FreeMesh();
  double lat, lon;
  tile->GetChartRect().Center(lat, lon);
  if (!m_region.SetTile(lat, lon, tile.get())) return Code(K7_ERR_INVALID_DATA);
  static_cast<void>(tile.release());
  return {};
}

std::string RegionWriter::WriteTile(int row, int col, GridSpan grids) {
  const int rows = m_plan.PostsOf(row), cols = m_plan.PostsOf(col);
  const K7ChartRect bounds = m_plan.TileBounds(row, col);
  const std::vector<ElevGrid*> near = GridsIn(grids, bounds);
  if (near.empty()) return {};
  ++m_tried;
  const TargetPosts posts = {m_plan.south + 1.0 * row * m_plan.tilePosts / m_plan.resolution,
                             m_plan.west + 1.0 * col * m_plan.tilePosts / m_plan.resolution,
                             1.0 / m_plan.resolution, rows, cols};
  if (std::string problem = Resample(near, posts, m_metres); !problem.empty()) return problem;
  if (std::all_of(m_metres.begin(), m_metres.end(), [](int16_t post) { return post == K7_NO_ELEV; }))
    return {};
  auto tile = std::make_unique<K7TerTile>(bounds, rows, cols);
  if (const int code = tile->AllocMesh()) return Code(code);
  for (int r = 0; r < rows; ++r)
    std::copy_n(m_metres.begin() + static_cast<ptrdiff_t>(r) * cols, cols, tile->GetMesh()[r]);
  return Append(std::move(tile));
}

std::string RegionWriter::WriteRow(int row) {
  const std::vector<ElevGrid*> grids = GridsIn(m_grids, m_plan.RowBounds(row));
  std::string problem;
  for (int col = 0; col < m_plan.TilesAlong() && problem.empty(); ++col) problem = WriteTile(row, col, grids);
  // What a grid keeps in memory is of no use when the rows have passed it.
  for (ElevGrid* const grid : grids)
    if (grid->Lats().Last() + grid->Lats().Spacing() < m_plan.RowBounds(row).North()) grid->Release();
  return problem;
}

std::string RegionWriter::Write(const std::string& path, const RegionProgress& progress) {
  m_file.reset(K7IO::Inst()->CreateFileX(path.c_str(), "wb"));
  if (!m_file || !m_file->IsValid()) return Code(K7_ERR_FILE_IO);
  if (const int code = m_region.AllocTilesMatrix())
    return code == K7_ERR_INVALID_DATA ? m_plan.Name() + " has too many tiles; build it with a larger --tile"
                                       : Code(code);
  const int most = MostTiles();
  m_end = HEADER_SIZE + most * TILE_HEADER_SIZE;
  for (int row = 0; row < m_plan.TilesAlong(); ++row) {
    if (most > 0) progress(static_cast<double>(m_tried) / most);
    if (std::string problem = WriteRow(row); !problem.empty()) return problem;
  }
  if (m_tiles == 0) return {};
  m_region.SetTileTable(HEADER_SIZE, m_tiles);
  m_file->Seek(0);
  if (const int code = m_region.Write(m_file.get())) return Code(code);
  m_file->Close();
  // What a full disk did not take is known by now.
  std::error_code failed;
  return std::filesystem::file_size(path, failed) == static_cast<uintmax_t>(m_end) ? std::string()
                                                                                   : Code(K7_ERR_FILE_IO);
}

}  // namespace

std::string Explain(int code) {
  const char* const text = K7ErrorString::ErrorString(code);
  return text ? text : "error " + std::to_string(code);
}

std::string BuildRegion(GridSpan grids, const RegionPlan& plan, const std::string& folder,
                        const RegionProgress& progress, int& tiles) {
  const std::filesystem::path place = std::filesystem::path(folder) / (plan.Name() + ".ter");
  PartFile part(place);
  RegionWriter writer(grids, plan);
  std::string problem = writer.Write(part.Path(), progress);
  tiles = writer.Tiles();
  if (!problem.empty() || tiles == 0) return problem;
  // The companion of the new file, which becomes that of its place.
  PartFile sum(std::filesystem::path(part.Path()).replace_extension(K7CRC::CRC_FILE_EXTENSION),
               std::filesystem::path(place).replace_extension(K7CRC::CRC_FILE_EXTENSION));
  if (const int code = K7CRC::createCRCFile(part.Path().c_str())) return sum.Path() + ": " + Explain(code);
  return part.TakePlace() && sum.TakePlace() ? std::string() : "cannot replace " + place.string();
}
