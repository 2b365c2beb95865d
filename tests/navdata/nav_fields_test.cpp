#include <k7/navdata.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

// Rows of the tables as they are published, split at tabs.
std::vector<std::vector<std::string>> Rows(const char* file) {
  std::ifstream in(std::string(K7_TEST_DATA "/navdata/") + file);
  std::vector<std::vector<std::string>> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("#")) continue;
    std::istringstream cells(line);
    rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, '\t');) rows.back().push_back(cell);
  }
  return rows;
}

K7NavType Type(const std::string& text) { return static_cast<K7NavType>(std::stoul(text)); }

// A record of the type in memory filled with `byte`, as files deliver it.
std::vector<uint8_t> Image(K7NavType type, uint8_t byte) {
  std::vector<uint8_t> image(static_cast<size_t>(K7NavData::GetRecSize(type)) + 8, byte);
  const K7NavKey key(7, type);
  std::memcpy(image.data(), &key, sizeof key);
  return image;
}

// The number at a field's published position, in its published form.
double Stored(const uint8_t* at, int storage, int bits) {
  uint32_t word;
  std::memcpy(&word, at, sizeof word);
  if (storage == K7STORE_ALT_FLAG) return word >> 24;
  if (storage == K7STORE_FLOAT) return static_cast<double>(std::bit_cast<float>(word));
  word <<= 32 - bits;
  if (storage == K7STORE_FIXED_DEGREES) return static_cast<int32_t>(word) / 8388608.0;
  if (storage == K7STORE_I16 || storage == K7STORE_I32) return static_cast<int32_t>(word) >> (32 - bits);
  return word >> (32 - bits);
}

}  // namespace

TEST(NavTypes, NamesSizesAndFieldCountsAreThePublishedOnes) {
  const auto rows = Rows("types.tsv");
  ASSERT_EQ(rows.size(), 74u);
  for (const auto& row : rows) {
    const K7NavType type = Type(row[0]);
    SCOPED_TRACE(row[0]);
    EXPECT_STREQ(K7NavData::TypeName(type), row[1].c_str());
    EXPECT_EQ(K7NavData::GetRecSize(type), std::stoi(row[2]));
    EXPECT_EQ(K7NavData::GetFieldCount(type), std::stoi(row[4]));
    const std::unique_ptr<K7NavRec> rec(K7NavData::CreateRecord(type));
    EXPECT_EQ(rec != nullptr, row[3] == "1");
    if (!rec) continue;
    EXPECT_TRUE(rec->key.NoRecord());
    EXPECT_FALSE(static_cast<const char*>(rec->notes));
    rec->key = K7NavKey(0, type);
    for (int i = 0; i < K7NavData::GetFieldCount(type); i++) {
      K7NavFieldDataType kind;
      const char *name, *note;
      K7NavField value;
      ASSERT_TRUE(K7NavData::GetFieldInfo(type, i, kind, name, note));
      if (!K7NavData::GetField(rec.get(), i, &value)) continue;
      SCOPED_TRACE(name);
      const bool isText = kind == K7FIELD_STRING, isKey = kind == K7FIELD_KEY;
      EXPECT_TRUE(!isText || !value.str || !*value.str);
      EXPECT_TRUE(!isKey || value.key.NoRecord() == (type != K7NAV_SMART_NOTE));
      EXPECT_TRUE(isText || isKey || value.d == 0.0);
    }
  }
  for (const unsigned bad : {74u, 0xFFFFFFFFu}) {
    EXPECT_EQ(K7NavData::CreateRecord(static_cast<K7NavType>(bad)), nullptr);
    EXPECT_EQ(K7NavData::GetRecSize(static_cast<K7NavType>(bad)), 0);
    EXPECT_EQ(K7NavData::GetFieldCount(static_cast<K7NavType>(bad)), 0);
    EXPECT_STREQ(K7NavData::TypeName(static_cast<K7NavType>(bad)), "Unknown");
  }
}

// Numbers are read from any bytes at the published position.
TEST(NavFields, AreThePublishedOnes) {
  std::mt19937 random(7);
  const auto rows = Rows("fields.tsv");
  ASSERT_EQ(rows.size(), 498u);
  std::map<std::string, int> counts;
  for (const auto& row : rows) {
    const K7NavType type = Type(row[0]);
    const int index = counts[row[0]]++, storage = std::stoi(row[3]), at = std::stoi(row[4]);
    SCOPED_TRACE(row[0] + " " + row[1]);
    K7NavFieldDataType kind;
    const char *name, *note;
    K7NavFieldLayout layout;
    ASSERT_TRUE(K7NavData::GetFieldInfo(type, index, kind, name, note));
    ASSERT_TRUE(K7NavData::GetFieldLayout(type, index, layout));
    EXPECT_EQ(name, row[1]);
    EXPECT_EQ(kind, std::stoi(row[2]));
    EXPECT_EQ(layout.storage, storage);
    EXPECT_EQ(layout.at, at);
    EXPECT_EQ(layout.bits, std::stoi(row[5]));
    EXPECT_EQ(layout.scale, std::stod(row[6]));
    EXPECT_STREQ(
        note, row[1] == "Acft Type" || (row[0] == "44" && row[1] == "Aircraft Type") ? "Same as Fleet" : "");
    EXPECT_EQ(K7NavData::GetFieldIndex(type, name), index);

    std::vector<uint8_t> image = Image(type, 0);
    for (size_t i = sizeof(K7NavKey); i < image.size(); i++) image[i] = static_cast<uint8_t>(random());
    if (storage == K7STORE_FLOAT) image[static_cast<size_t>(at) + 3] = 0x42;
    K7NavField value;
    const bool fits =
        storage == K7STORE_CHAR ? kind == K7FIELD_CHAR : storage != K7STORE_TEXT || kind == K7FIELD_STRING;
    EXPECT_EQ(K7NavData::GetField(reinterpret_cast<K7NavRec*>(image.data()), index, &value), fits);
    if (!fits || kind < K7FIELD_INTEGER || kind > K7FIELD_REAL) continue;
    const double expected = Stored(image.data() + at, storage, layout.bits) * layout.scale;
    if (kind == K7FIELD_REAL)
      EXPECT_EQ(value.d, expected);
    else
      EXPECT_EQ(value.u, static_cast<uint32_t>(static_cast<int64_t>(expected)));
  }
}

// What is written is read again, and no other byte of the record changes.
TEST(NavFields, WritingKeepsToTheField) {
  const std::string longText(5000, 'x');
  for (int t = 0; t < K7NAV_TYPE_COUNT; t++) {
    const K7NavType type = static_cast<K7NavType>(t);
    for (int i = 0; i < K7NavData::GetFieldCount(type); i++) {
      K7NavFieldDataType kind;
      const char *name, *note;
      K7NavFieldLayout layout;
      K7NavData::GetFieldInfo(type, i, kind, name, note);
      K7NavData::GetFieldLayout(type, i, layout);
      SCOPED_TRACE(std::to_string(t) + " " + name);
      std::vector<uint8_t> image = Image(type, 0), before = image;
      K7NavRec* rec = reinterpret_cast<K7NavRec*>(image.data());
      K7NavField in, out;
      if (kind == K7FIELD_CHAR) in.c = 'F';
      if (kind == K7FIELD_STRING) in.str = longText.c_str();
      if (kind == K7FIELD_INTEGER || kind == K7FIELD_UNSIGNED) in.u = 100;
      if (kind == K7FIELD_REAL) in.d = -12.5;
      if (kind == K7FIELD_KEY) in.key = K7NavKey(9, type);
      const bool readable = K7NavData::GetField(rec, i, &out);
      ASSERT_EQ(K7NavData::SetField(rec, i, in), readable);
      if (!readable) continue;
      ASSERT_TRUE(K7NavData::GetField(rec, i, &out));
      const bool isUnsigned = layout.storage >= K7STORE_U8 && layout.storage <= K7STORE_U32;
      const size_t room = static_cast<size_t>(layout.bits) / 8;
      EXPECT_TRUE(kind != K7FIELD_CHAR || out.c == 'F');
      EXPECT_TRUE(kind != K7FIELD_REAL || std::abs(out.d - (isUnsigned ? 0 : -12.5)) < 1e-6) << out.d;
      EXPECT_TRUE(kind != K7FIELD_KEY || out.key == in.key);
      EXPECT_TRUE((kind != K7FIELD_INTEGER && kind != K7FIELD_UNSIGNED) || out.u == 100) << out.u;
      EXPECT_TRUE(layout.storage != K7STORE_POINTER || out.str == in.str);
      if (layout.storage == K7STORE_TEXT) {
        EXPECT_EQ(strnlen(out.str, room), room);
        in.str = "A";
        EXPECT_TRUE(K7NavData::SetField(rec, i, in) && K7NavData::GetField(rec, i, &out));
        EXPECT_STREQ(out.str, "A") << "nothing is left of a longer text";
      }
      const size_t at = static_cast<size_t>(layout.at);
      const size_t bytes = layout.storage == K7STORE_POINTER ? sizeof(char*) : room;
      const size_t first = layout.storage == K7STORE_ALT_FLAG ? at + 3 : at;
      std::memset(image.data() + first, 0, bytes);
      std::memset(before.data() + first, 0, bytes);
      EXPECT_EQ(image, before);
    }
  }
}

TEST(NavFields, WhatIsNoFieldIsRefusedAndWhatHasNoRoomLimited) {
  K7Airport airport;
  K7NavField value;
  EXPECT_FALSE(K7NavData::GetField(nullptr, 0, &value));
  EXPECT_FALSE(K7NavData::GetField(&airport, 0, &value)) << "a record without a type";
  airport.key = K7NavKey(1, K7NAV_AIRPORT);
  for (const int index : {-1, 19}) EXPECT_FALSE(K7NavData::GetField(&airport, index, &value));
  for (const char* name : {"longest runway", static_cast<const char*>(nullptr)})
    EXPECT_EQ(K7NavData::GetFieldIndex(K7NAV_AIRPORT, name), -1);
  value.i = 99999999;
  EXPECT_TRUE(
      K7NavData::SetField(&airport, K7NavData::GetFieldIndex(K7NAV_AIRPORT, "Longest Runway"), value));
  EXPECT_EQ(airport.longestRunway, 32767);
}

TEST(NavFields, FixedDegreesAreTruncatedAndLimited) {
  const struct {
    double degrees;
    int fixed;
  } cases[] = {
      {1.99999999, 16777215},  {-1e-9, 0}, {-1.99999999, -16777215}, {180, 1509949440}, {300, 2147483647},
      {-300, -2147483647 - 1}, {NAN, 0}};
  for (const auto& [degrees, fixed] : cases) EXPECT_EQ(K7NavData::DecDeg2FixPt(degrees), fixed) << degrees;
  EXPECT_EQ(K7NavData::FixPt2DecDeg(8388608), 1.0);
}
