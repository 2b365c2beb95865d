#include <k7/core.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <zlib.h>
#include <cstdlib>
#include <random>
#include <set>
#include <string>

namespace {

const char PATH[] = "data.bin";

Bytes Compress(const std::string& text) {
  MemIO io;
  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "wb"));
  EXPECT_EQ(file->SecureCompress(text.data(), static_cast<int>(text.size())), 0);
  return io.Get(PATH);
}

// The text, or "refused"; a refusal leaves the result pointer alone.
std::string Decompress(const Bytes& bytes) {
  MemIO io;
  io.Put(PATH, bytes);
  char untouched[] = "refused";
  char* out = untouched;
  const int err = std::unique_ptr<K7File>(io.CreateFileX(PATH, "rb"))->SecureDecompress(&out);
  EXPECT_EQ(err, out == untouched ? -1 : 0);
  const std::string text = out;
  if (out != untouched) std::free(out);
  return text;
}

// The layout by hand: the length, then zlib's own stream, its head masked and then its tail.
Bytes CompressByHand(const std::string& text) {
  uLongf size = compressBound(static_cast<uLong>(text.size()));
  Bytes bytes(4 + size);
  for (size_t i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(text.size() >> 8 * i);
  unsigned char* const stream = bytes.data() + 4;
  EXPECT_EQ(compress2(stream, &size, reinterpret_cast<const Bytef*>(text.data()),
                      static_cast<uLong>(text.size()), 6),
            Z_OK);
  for (size_t i = 0; i < 9; ++i) stream[i] ^= bytes[0];
  for (size_t i = size - 9; i < size; ++i) stream[i] ^= bytes[0];
  bytes.resize(4 + size);
  return bytes;
}

std::string Letters(size_t length, int kinds) {
  std::string text(length, 'a');
  for (std::mt19937 random(7); char& c : text)
    c = static_cast<char>(1 + random() % static_cast<unsigned>(kinds));
  return text;
}

TEST(CompressedFile, HasTheStatedBytesAndComesBackWhole) {
  // Short texts make streams whose masked ends overlap; noise takes more room than it has bytes.
  for (const size_t length : {1u, 2u, 3u, 9u, 10u, 255u, 256u, 257u, 65536u, 200000u})
    for (const int kinds : {1, 4, 255}) {
      const std::string text = Letters(length, kinds);
      EXPECT_TRUE(Compress(text) == CompressByHand(text)) << length;
      EXPECT_TRUE(Decompress(CompressByHand(text)) == text) << length;
    }
}

TEST(CompressedFile, DamageIsRefused) {
  const std::string text = Letters(500, 20);
  const Bytes whole = Compress(text);
  for (size_t at = 0; at < whole.size(); ++at) {
    EXPECT_EQ(Decompress(Bytes(whole.data(), whole.data() + at)), "refused") << at;
    Bytes damaged = whole;
    damaged[at] ^= 0x10;
    // Deflate leaves a few bits unused.
    EXPECT_TRUE((std::set{text, std::string("refused")}).count(Decompress(damaged))) << at;
  }
  EXPECT_EQ(Decompress(Compress("")), "refused");
}

TEST(CompressedFile, WritingReportsAFullDisk) {
  MemIO io;
  io.room = 4;
  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "wb"));
  // Of the second not even the length is written.
  for (const int code :
       {file->SecureCompress("abc", 3), file->SecureCompress("abc", 3), file->SecureCompress(nullptr, 3),
        file->SecureCompress("abc", -1), file->SecureDecompress(nullptr)})
    EXPECT_EQ(code, -1);
}

TEST(StringFile, StringsCarryTheirCount) {
  MemIO io;
  const std::string longest(65534, 'y');
  const std::unique_ptr<K7File> out(io.CreateFileX(PATH, "wb"));
  EXPECT_EQ(K7String("AB").Write(out.get()), 0);
  EXPECT_EQ(K7String().Write(out.get()), 0);
  EXPECT_EQ(K7String((longest + 'y').c_str()).Write(out.get()), 0) << "the count wraps to 0";
  EXPECT_EQ(K7String(longest.c_str()).Write(out.get()), 0);
  const std::string expected = std::string("\3\0AB\0\0\0\0\0\xFF\xFF", 11) + longest + '\0';
  EXPECT_TRUE(io.Get(PATH) == Bytes(expected.begin(), expected.end()));

  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "rb"));
  K7String text("left over from before");
  for (const std::string& written : {std::string("AB"), std::string(), std::string(), longest}) {
    EXPECT_EQ(text.Read(file.get()), 0);
    EXPECT_TRUE(text == written.c_str()) << written.size();
  }
  EXPECT_EQ(text.Read(file.get()), K7_ERR_FILE_IO);
}

TEST(StringFile, DamagedFilesAreReported) {
  MemIO io;
  K7String text;
  const std::pair<Bytes, int> FILES[] = {
      {{5, 0, 'a', 'b'}, K7_ERR_FILE_IO}, {{5}, K7_ERR_FILE_IO}, {{2, 0, 'a', 'b'}, 0}};
  for (const auto& [bytes, expected] : FILES) {
    io.Put(PATH, bytes);
    EXPECT_EQ(text.Read(std::unique_ptr<K7File>(io.CreateFileX(PATH, "rb")).get()), expected);
  }
  EXPECT_STREQ(text, "ab") << "a damaged file may hold no terminator";
  EXPECT_EQ(text.Read(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(text.Write(nullptr), K7_ERR_BAD_ARGUMENT);
}

}  // namespace
