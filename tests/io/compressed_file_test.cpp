#include <k7/core.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <zlib.h>
#include <cstdlib>
#include <random>
#include <string>

namespace {

const char PATH[] = "data.bin";

Bytes Compress(const std::string& text) {
  MemIO io;
  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "wb"));
  EXPECT_EQ(file->SecureCompress(text.data(), static_cast<int>(text.size())), 0);
  return io.Get(PATH);
}

// The text, or null when the file is refused; a refusal leaves the result pointer alone.
std::unique_ptr<std::string> Decompress(const Bytes& bytes) {
  MemIO io;
  io.Put(PATH, bytes);
  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "rb"));
  char* const untouched = reinterpret_cast<char*>(&io);
  char* out = untouched;
  if (file->SecureDecompress(&out) != 0) {
    EXPECT_EQ(out, untouched);
    return nullptr;
  }
  uint32_t length;
  std::memcpy(&length, bytes.data(), 4);
  EXPECT_EQ(out[length], 0);
  auto text = std::make_unique<std::string>(out, length);
  std::free(out);
  return text;
}

// Undone by hand: head first, then tail, as the layout says.
std::string InflateByHand(Bytes bytes) {
  const unsigned char mask = bytes[0];
  unsigned char* const stream = bytes.data() + 4;
  const size_t size = bytes.size() - 4;
  for (size_t i = 0; i < 9; ++i) stream[i] ^= mask;
  for (size_t i = size - 9; i < size; ++i) stream[i] ^= mask;
  uLongf length = 1 << 20;
  std::string text(length, '\0');
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(text.data()), &length, stream, size), Z_OK);
  text.resize(length);
  return text;
}

std::string Text(size_t length) {
  std::mt19937 random(7);
  std::string text;
  while (text.size() < length) text += "waypoint " + std::to_string(random() % 1000) + "\n";
  text.resize(length);
  return text;
}

TEST(CompressedFile, HasTheStatedBytes) {
  const Bytes bytes = Compress("abc");
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{3, 0, 0, 0}));
  EXPECT_EQ(InflateByHand(bytes), "abc");
  EXPECT_EQ(InflateByHand(Compress(Text(100000))), Text(100000));
}

TEST(CompressedFile, ComesBackWhole) {
  // Short texts make streams whose masked ends overlap.
  for (const size_t length : {1u, 2u, 3u, 9u, 10u, 255u, 256u, 257u, 65536u, 300000u}) {
    const auto text = Decompress(Compress(Text(length)));
    ASSERT_TRUE(text) << length;
    EXPECT_EQ(*text, Text(length));
  }
}

TEST(CompressedFile, DamageIsRefused) {
  const Bytes whole = Compress(Text(500));
  for (size_t cut = 0; cut < whole.size(); ++cut)
    EXPECT_FALSE(Decompress(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut)))) << cut;
  for (size_t at = 0; at < whole.size(); ++at) {
    Bytes damaged = whole;
    damaged[at] ^= 0x10;
    EXPECT_FALSE(Decompress(damaged)) << at;
  }
  Bytes empty = whole;
  std::fill(empty.begin(), empty.begin() + 4, static_cast<unsigned char>(0));
  EXPECT_FALSE(Decompress(empty));
  Bytes absurd = whole;
  std::fill(absurd.begin(), absurd.begin() + 4, static_cast<unsigned char>(0xFF));
  EXPECT_FALSE(Decompress(absurd));
}

TEST(CompressedFile, WritingReportsAFullDisk) {
  MemIO io;
  io.room = 4;
  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "wb"));
  EXPECT_EQ(file->SecureCompress("abc", 3), -1);
  EXPECT_EQ(file->SecureCompress(nullptr, 3), -1);
  EXPECT_EQ(file->SecureDecompress(nullptr), -1);
}

TEST(StringFile, StringsCarryTheirCount) {
  MemIO io;
  {
    const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "wb"));
    EXPECT_EQ(K7String("AB").Write(file.get()), 0);
    EXPECT_EQ(K7String().Write(file.get()), 0);
    EXPECT_EQ(K7String(std::string(65535, 'x').c_str()).Write(file.get()), 0) << "the count wraps to 0";
    EXPECT_EQ(K7String(std::string(65534, 'y').c_str()).Write(file.get()), 0);
  }
  Bytes expected = {3, 0, 'A', 'B', 0, 0, 0, 0, 0, 0xFF, 0xFF};
  expected.insert(expected.end(), 65534, 'y');
  expected.push_back(0);
  EXPECT_EQ(io.Get(PATH), expected);

  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "rb"));
  K7String text("left over from before");
  EXPECT_EQ(text.Read(file.get()), 0);
  EXPECT_STREQ(text, "AB");
  EXPECT_EQ(text.Read(file.get()), 0);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(text.Read(file.get()), 0);
  EXPECT_EQ(text.Read(file.get()), 0);
  EXPECT_EQ(text.Len(), 65534);
  EXPECT_EQ(text.Read(file.get()), K7_ERR_FILE_IO);
}

TEST(StringFile, DamagedFilesAndFullDisksAreReported) {
  MemIO io;
  K7String text;
  const auto read = [&](const Bytes& bytes) {
    io.Put(PATH, bytes);
    const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "rb"));
    return text.Read(file.get());
  };
  EXPECT_EQ(read({5, 0, 'a', 'b'}), K7_ERR_FILE_IO);
  EXPECT_EQ(read({5}), K7_ERR_FILE_IO);
  EXPECT_EQ(read({2, 0, 'a', 'b'}), 0);
  EXPECT_STREQ(text, "ab") << "a damaged file may hold no terminator";
  struct Failing : MemFile {
    using MemFile::MemFile;
    int Read(void*, int) override { return -7; }
    int Write(const void*, int) override { return -8; }
  } failing(std::make_shared<Bytes>(9), "rb");
  EXPECT_EQ(text.Read(&failing), -7);
  EXPECT_EQ(failing.Read32(&io), -7);
  EXPECT_EQ(K7String("AB").Write(&failing), -8);
  io.room = 1;
  const std::unique_ptr<K7File> full(io.CreateFileX(PATH, "wb"));
  EXPECT_EQ(K7String("AB").Write(full.get()), K7_ERR_FILE_IO);
}

}  // namespace
