#include <k7/navdata.h>

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "store/columns.h"
#include "store/nav_store.h"
#include "store/nav_writer.h"
#include "support/temp_dir.h"

namespace {

// Bytes of a type's record that do not come back, counted off the structures: what they reserve, and the byte
// behind each text that always ends it.
const std::map<uint32_t, size_t> LOST = {
    {0, 4},   {1, 8},   {2, 8},   {3, 6},   {4, 6},   {5, 8},    {6, 8},    {7, 2},   {8, 3},   {9, 46},
    {10, 46}, {11, 4},  {12, 17}, {13, 80}, {14, 88}, {15, 70},  {16, 70},  {17, 23}, {19, 4},  {20, 8},
    {21, 3},  {22, 6},  {24, 3},  {25, 3},  {26, 3},  {27, 15},  {28, 139}, {37, 4},  {39, 8},  {41, 2},
    {42, 6},  {43, 22}, {44, 11}, {45, 6},  {46, 4},  {47, 4},   {48, 17},  {50, 1},  {51, 21}, {52, 46},
    {53, 46}, {54, 6},  {55, 6},  {56, 6},  {57, 70}, {58, 21},  {59, 8},   {60, 9},  {61, 8},  {63, 4},
    {64, 1},  {65, 1},  {66, 1},  {67, 1},  {68, 42}, {69, 242}, {70, 8},   {72, 187}};

}  // namespace

// Every byte of every record is a letter: numbers, flags, keys and full texts. Pointers point to texts of all
// characters.
TEST(Store, EveryMemberOfEveryTypeComesBack) {
  std::string all;
  for (int c = 1; c < 256; c++) all += static_cast<char>(c);
  std::mt19937 random(5);
  TempDir dir;
  std::string problem;
  NavWriter writer;
  ASSERT_TRUE(writer.Open((dir / "all.db"), problem)) << problem;
  std::map<uint32_t, std::vector<char>> written;
  for (uint32_t i = 0; i < K7NAV_TYPE_COUNT; i++) {
    const auto type = static_cast<K7NavType>(i);
    const std::unique_ptr<K7NavRec> rec(K7NavData::CreateRecord(type));
    if (!rec) continue;
    const auto size = static_cast<size_t>(K7NavData::GetRecSize(type));
    char* bytes = reinterpret_cast<char*>(rec.get());
    for (size_t at = sizeof(K7NavRec); at < size; at++) bytes[at] = static_cast<char>('A' + random() % 26);
    for (const Column& column : TableOf(type).columns) {
      const char* text = all.c_str();
      if (column.storage == K7STORE_POINTER) std::memcpy(bytes + column.at, &text, sizeof text);
    }
    if (type == K7NAV_CRUISE_TABLE) std::memcpy(bytes + 20, "\x24\0\x07", 4);
    rec->key = K7NavKey(99, type);
    rec->notes = all.c_str();
    EXPECT_EQ(writer.Add(*rec), K7NavKey(0, type));
    written[i].assign(bytes, bytes + size);
  }
  ASSERT_TRUE(writer.Finish(problem)) << problem;

  NavStore store;
  ASSERT_EQ(store.Open((dir / "all.db").c_str()), 0);
  for (const auto& [type, before] : written) {
    SCOPED_TRACE(type);
    const K7NavRec* rec = store.GetRec(K7NavKey(0, static_cast<K7NavType>(type)));
    ASSERT_TRUE(rec);
    EXPECT_STREQ(rec->notes, all.c_str());
    std::vector<char> after(before.size());
    std::memcpy(after.data(), static_cast<const void*>(rec), before.size());
    std::vector<bool> isText(before.size());
    for (const Column& column : TableOf(rec->Type()).columns) {
      if (column.storage != K7STORE_POINTER) continue;
      const char* text;
      std::memcpy(&text, after.data() + column.at, sizeof text);
      EXPECT_STREQ(text, all.c_str()) << column.name;
      // A slot has 64 bits, however long a pointer is.
      std::fill_n(isText.begin() + column.at, 8, true);
    }
    size_t lost = 0;
    for (size_t at = sizeof(K7NavRec); at < before.size(); at++) {
      lost += !isText[at] && after[at] != before[at];
    }
    EXPECT_EQ(lost, LOST.contains(type) ? LOST.at(type) : 0);
  }
  int segments = 0;
  EXPECT_TRUE(store.VisitAirwayNetwork([&](const K7AirwaySeg& segment) {
    const auto& whole = static_cast<const K7AirwaySeg&>(*store.GetRec(segment.key));
    const auto filled = [](const K7AirwaySeg& s) {
      return std::tuple(s.fromLat, s.fromLon, s.toLat, s.toLon, s.mea.Word(), s.meaOpposite.Word(),
                        s.maa.Word(), s.direction);
    };
    EXPECT_EQ(filled(segment), filled(whole));
    ++segments;
  }));
  EXPECT_EQ(segments, 4);
}
