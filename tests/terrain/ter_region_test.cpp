#include "support/mem_io.h"
#include "terrain/region_file.h"

#include <gtest/gtest.h>
#include <k7/core.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>

namespace {

constexpr int N = 4;

// Files in memory for as long as it lives: thousands of damaged ones need no disk.
class Files {
 public:
  Files() { K7IO::SetInst(&m_io); }
  ~Files() { K7IO::SetInst(m_native); }
  const char* Write(const std::string& bytes) {
    m_io.Put("r.ter", bytes);
    return "r.ter";
  }
  std::string Text() const { return m_io.Text("r.ter"); }

 private:
  MemIO m_io;
  K7IO* const m_native = K7IO::Inst();
};

int Post(int row, int column) { return row * 100 + column; }

RegionPlan Small() { return MadeRegion(40, 10, 2, 3, N, Post); }

// Asks for all that a region can be asked for; a crash or a sanitizer's word is what would fail.
void Exercise(K7TerRegion& region, K7TerLevel& level) {
  for (double lat = 39.5; lat < 43; lat += 0.5)
    for (double lon = 9.5; lon < 14; lon += 0.5) region.GetElev(lat, lon, &level);
  region.ClearSRTImages();
}

TEST(TerRegion, AnswersEachPostInFeet) {
  Files files;
  K7TerRegion region;
  K7TerLevel level(120);
  ASSERT_EQ(region.Read(files.Write(Small().Bytes())), 0);
  EXPECT_EQ(region.FirstWord(), 11);
  EXPECT_EQ(region.SecondWord(), 22);
  EXPECT_EQ(region.GetElev(40.1, 10.1, nullptr), K7_NO_ELEV);
  for (int row = 0; row < 2 * N; ++row)
    for (int column = 0; column < 3 * N; ++column)
      EXPECT_EQ(region.GetElev(40 + (row + 0.5) / N, 10 + (column + 0.5) / N, &level),
                std::lround(Post(row, column) * 3.2808399 - 1e-9));
  // Outside the bounds is sea; the north edge lies in them and in no row.
  EXPECT_EQ(region.GetElev(39.99, 11, &level), 0);
  EXPECT_EQ(region.GetElev(41, 13.01, &level), 0);
  EXPECT_EQ(region.GetElev(42, 11, &level), K7_NO_ELEV);
}

TEST(TerRegion, ServesBothSidesOf180) {
  Files files;
  // Three tiles of two degrees; the middle one lies across 180 itself.
  RegionPlan plan{1, 3, 2, 2, 2, 0, -177, 177, {}};
  int16_t post = 1;
  for (const auto& [west, east] : {std::pair{177, 179}, {179, -179}, {-179, -177}})
    plan.tiles.push_back({2, 0, double(east), double(west), 1, 2, {post++, post++}});
  K7TerRegion region;
  K7TerLevel level(120);
  ASSERT_EQ(region.Read(files.Write(plan.Bytes())), 0);
  const double lons[] = {177.5, 178.5, 179.5, -179.5, -178.5, -177.5};
  const int feet[] = {3, 7, 10, 13, 16, 20};  // of 1 to 6 metres
  for (int i = 0; i < 6; ++i) EXPECT_EQ(region.GetElev(1, lons[i], &level), feet[i]) << lons[i];
  EXPECT_EQ(region.GetElev(1, 0, &level), 0);
}

// What the library writes is the file that was laid out by hand, stream for stream.
TEST(TerRegion, WritesTheBytesOfTheFormat) {
  Files files;
  const RegionPlan plan = Small();

  K7TerRegion region;
  region.Init(K7ChartRect(plan.north, plan.south, plan.east, plan.west), plan.rows, plan.columns, 1, 1);
  region.SetWords(11, 22);
  region.SetTileTable(72, 6);
  ASSERT_EQ(region.AllocTilesMatrix(), 0);
  const std::unique_ptr<K7File> file(K7IO::Inst()->CreateFileX("r.ter", "wb"));
  file->Seek(72 + 6 * 44);
  for (const TilePlan& made : plan.tiles) {
    K7TerTile* const tile = new K7TerTile(K7ChartRect(made.north, made.south, made.east, made.west), N, N);
    ASSERT_EQ(tile->AllocMesh(), 0);
    for (int i = 0; i < N * N; ++i) tile->GetMesh()[i / N][i % N] = made.posts[static_cast<size_t>(i)];
    ASSERT_TRUE(region.SetTile(made.south + 0.5, made.west + 0.5, tile));
    tile->SetOffset(file->Tell());
    ASSERT_EQ(tile->Write(file.get()), 0);
  }
  file->Seek(0);
  ASSERT_EQ(region.Write(file.get()), 0);
  file->Close();
  EXPECT_TRUE(files.Text() == plan.Bytes());
}

TEST(TerRegion, CutAtEveryByte) {
  Files files;
  const RegionPlan plan = Small();
  const std::string bytes = plan.Bytes();
  for (size_t size = 0; size < bytes.size(); ++size) {
    K7TerRegion region;
    K7TerLevel level(120);
    const int code = region.Read(files.Write(bytes.substr(0, size)));
    EXPECT_EQ(code, size < 72 + 6 * 44 ? K7_ERR_FILE_IO : 0) << size;
    // The last tile's stream reaches to the file's end.
    EXPECT_EQ(region.GetElev(41.5, 12.5, &level), code == 0 ? K7_NO_ELEV : 0);
    Exercise(region, level);
  }
}

TEST(TerRegion, DamageGivesACode) {
  Files files;
  const std::string bytes = Small().Bytes();
  std::minstd_rand random(5);
  for (int round = 0; round < 3000; ++round) {
    std::string damaged = bytes;
    const size_t at = random() % (round % 2 ? bytes.size() : 72 + 6 * 44);
    const int width = 1 << random() % 4;
    for (size_t i = at; i < std::min(at + static_cast<size_t>(width), damaged.size()); ++i)
      damaged[i] = static_cast<char>(round % 3 ? random() : 0xFF - (i + 1 == at + width) * 0x80);
    K7TerRegion region;
    K7TerLevel level(120);
    region.Read(files.Write(damaged));
    Exercise(region, level);
  }
}

TEST(TerRegion, AbsurdHeaders) {
  Files files;
  const auto code = [&](size_t at, auto value) {
    std::string bytes = Small().Bytes();
    std::memcpy(&bytes[at], &value, sizeof value);
    return K7TerRegion().Read(files.Write(bytes));
  };
  EXPECT_EQ(code(8, INT32_MAX), K7_ERR_INVALID_DATA);     // rows
  EXPECT_EQ(code(12, int32_t{-3}), K7_ERR_INVALID_DATA);  // columns
  EXPECT_EQ(code(16, 0.0), K7_ERR_INVALID_DATA);          // tile height
  EXPECT_EQ(code(64, INT32_MAX), K7_ERR_FILE_IO);         // tile table
  EXPECT_EQ(code(64, int32_t{-1}), K7_ERR_FILE_IO);
  EXPECT_EQ(code(68, INT32_MAX), K7_ERR_FILE_IO);  // tiles
  EXPECT_EQ(code(72, 1e9), K7_ERR_INVALID_DATA);   // a tile's north edge: its centre is elsewhere
  EXPECT_EQ(K7TerRegion().Read(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(K7TerRegion().Read("absent"), K7_ERR_FILE_IO);
  // Two tiles in one cell: the later one counts.
  RegionPlan twice = MadeRegion(40, 10, 1, 1, 1, [](int, int) { return 1; });
  twice.tiles.push_back(twice.tiles[0]);
  twice.tiles[1].posts[0] = 1000;
  K7TerRegion region;
  K7TerLevel level(120);
  ASSERT_EQ(region.Read(files.Write(twice.Bytes())), 0);
  EXPECT_EQ(region.GetElev(40.5, 10.5, &level), 3281);
}

TEST(TerRegion, StreamsMakeExactlyTheGrid) {
  Files files;
  const RegionPlan plan = MadeRegion(40, 10, 1, 1, N, Post);
  const std::vector<int16_t> posts(N * N + 1, 7);
  const std::string whole = Packed(posts.data(), N * N * 2);
  std::string wrongSum = whole, zeros(1 << 20, '\0');
  wrongSum.back() = static_cast<char>(wrongSum.back() ^ 1);
  const auto code = [&](const std::string& stream) {
    K7TerRegion region;
    EXPECT_EQ(region.Read(files.Write(plan.Bytes({stream}))), 0);
    const int read = region.Tile(0, 0)->Read();
    EXPECT_EQ(region.Tile(0, 0)->GetElev(40.5, 10.5, true, 0), read == 0 ? 7 : K7_NO_ELEV);
    return read;
  };
  EXPECT_EQ(code(whole), 0);
  EXPECT_EQ(code(whole + "behind"), 0);
  EXPECT_EQ(code(wrongSum), K7_ERR_INVALID_DATA);
  EXPECT_EQ(code(Packed(posts.data(), N * N * 2 - 1)), K7_ERR_INVALID_DATA);
  EXPECT_EQ(code(Packed(posts.data(), N * N * 2 + 1)), K7_ERR_INVALID_DATA);
  EXPECT_EQ(code(Packed(zeros.data(), zeros.size())), K7_ERR_INVALID_DATA);
  EXPECT_EQ(code("x"), K7_ERR_INVALID_DATA);
  EXPECT_EQ(code(std::string()), K7_ERR_INVALID_DATA);
}

}  // namespace
