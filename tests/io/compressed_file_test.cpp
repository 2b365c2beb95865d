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

// The layout by hand: the length, then zlib's own stream, its head masked and then its tail.
Bytes CompressByHand(const std::string& text) {
  uLongf size = compressBound(text.size());
  Bytes bytes(4 + size);
  for (size_t i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(text.size() >> 8 * i);
  unsigned char* const stream = bytes.data() + 4;
  EXPECT_EQ(compress2(stream, &size, reinterpret_cast<const Bytef*>(text.data()), text.size(), 6), Z_OK);
  for (size_t i = 0; i < 9; ++i) stream[i] ^= bytes[0];
  for (size_t i = size - 9; i < size; ++i) stream[i] ^= bytes[0];
  bytes.resize(4 + size);
  return bytes;
}

std::string Text(size_t length) {
  std::mt19937 random(7);
  std::string text;
  while (text.size() < length) text += "waypoint " + std::to_string(random() % 1000) + "\n";
  text.resize(length);
  return text;
}

TEST(CompressedFile, HasTheStatedBytesAndComesBackWhole) {
  std::string noise(50000, '\0');  // takes more room than it has bytes
  for (std::mt19937 random(1); char& c : noise) c = static_cast<char>(random());
  std::vector<std::string> texts{noise, std::string(1000000, 'x')};
  // Short texts make streams whose masked ends overlap.
  for (const size_t length : {1u, 2u, 3u, 9u, 10u, 255u, 256u, 257u, 65536u, 300000u})
    texts.push_back(Text(length));
  for (const std::string& text : texts) {
    EXPECT_TRUE(Compress(text) == CompressByHand(text)) << text.size();
    const auto back = Decompress(CompressByHand(text));
    ASSERT_TRUE(back) << text.size();
    EXPECT_TRUE(*back == text) << text.size();
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
  EXPECT_FALSE(Decompress(Compress(""))) << "there are no files of no bytes";
}

TEST(CompressedFile, WritingReportsAFullDisk) {
  MemIO io;
  io.room = 4;
  const std::unique_ptr<K7File> file(io.CreateFileX(PATH, "wb"));
  EXPECT_EQ(file->SecureCompress("abc", 3), -1);
  EXPECT_EQ(file->SecureCompress("abc", 3), -1) << "not even its length";
  EXPECT_EQ(file->SecureCompress(nullptr, 3), -1);
  EXPECT_EQ(file->SecureCompress("abc", -1), -1);
  EXPECT_EQ(file->SecureDecompress(nullptr), -1);
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

TEST(StringFile, DamagedFilesAndFullDisksAreReported) {
  MemIO io;
  K7String text;
  const std::pair<Bytes, int> FILES[] = {
      {{5, 0, 'a', 'b'}, K7_ERR_FILE_IO}, {{5}, K7_ERR_FILE_IO}, {{2, 0, 'a', 'b'}, 0}};
  for (const auto& [bytes, expected] : FILES) {
    io.Put(PATH, bytes);
    EXPECT_EQ(text.Read(std::unique_ptr<K7File>(io.CreateFileX(PATH, "rb")).get()), expected);
  }
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
  EXPECT_EQ(K7String("AB").Write(std::unique_ptr<K7File>(io.CreateFileX(PATH, "wb")).get()), K7_ERR_FILE_IO);
  EXPECT_EQ(text.Read(nullptr), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(text.Write(nullptr), K7_ERR_BAD_ARGUMENT);
}

}  // namespace
