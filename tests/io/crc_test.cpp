#include <k7/foundation/error_string.h>
#include <k7/io/crc.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <random>

namespace {

std::string Numbers(int n) {
  std::string text;
  for (int i = 0; i < n; ++i) text += static_cast<char>(i * 7 + i / 256);
  return text;
}

unsigned Checksum(MemIO& io, const std::string& data, unsigned offset = 0) {
  io.Put("data.bin", data);
  unsigned crc = 0xDEAD;
  EXPECT_EQ(K7CRC::crcFileFromOffset("data.bin", offset, &crc), 0);
  return crc;
}

// Expected values: a Python program that divides each index byte by the polynomial bit by bit, without a
// table.
TEST(Crc, Values) {
  MemIO io;
  const ScopedIO scope(&io);
  EXPECT_EQ(Checksum(io, ""), 0u);
  EXPECT_EQ(Checksum(io, "\r\n\n\r"), 0u);
  EXPECT_EQ(Checksum(io, "A"), 0x81B02D8Bu);
  EXPECT_EQ(Checksum(io, "123456789"), 0x749CEC27u);
  EXPECT_EQ(Checksum(io, "123456789", 5), 0x431E6068u);
  EXPECT_EQ(Checksum(io, "123456789", 9), 0u);
  EXPECT_EQ(Checksum(io, Numbers(250000)), 0xE51B11FAu);  // three chunks
  EXPECT_EQ(Checksum(io, "line one\nline two\n"), 0x85FDCCEBu);
  EXPECT_EQ(Checksum(io, "line one\r\nline two\r\n"), 0x85FDCCEBu);
}

// The stated steps, the table's entry divided bit by bit.
TEST(Crc, EveryLengthStartAndPlaceOfLineEnds) {
  const auto reference = [](const std::string& data) {
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : data) {
      if (c == '\n' || c == '\r') continue;
      uint32_t entry = ((static_cast<unsigned char>(c) ^ crc) & 0xFF) << 24;
      for (int bit = 0; bit < 8; ++bit) entry = (entry << 1) ^ (entry >> 31 ? 0x04C11DB7u : 0);
      crc = (crc << 8) ^ entry;
    }
    return ~crc;
  };
  MemIO io;
  const ScopedIO scope(&io);
  std::mt19937 random(3);
  const char bytes[] = {'\n', '\r', 'a', 0, 9, 11, 12, 14, '\x8A', '\x8D', '\xFF'};
  for (size_t length = 0; length < 60; ++length)
    for (const size_t kinds : {sizeof bytes, size_t{256}}) {
      std::string data;
      while (data.size() < length)
        data += kinds == 256 ? static_cast<char>(random()) : bytes[random() % sizeof bytes];
      for (unsigned offset = 0; offset <= std::min<size_t>(length, 9); ++offset)
        EXPECT_EQ(Checksum(io, data, offset), reference(data.substr(offset))) << length;
    }
}

// Serves files whose second read answers `result`.
struct FlakyIO : MemIO {
  struct File : MemFile {
    File(FlakyIO& owner, const char* path) : MemFile(owner.files[path], "rb"), io(owner) {}
    int Read(void* buf, int n) override { return ++reads == 2 ? io.result : MemFile::Read(buf, n); }
    FlakyIO& io;
    int reads = 0;
  };
  K7File* CreateFileX(const char* path, const char* mode) override {
    return mode[0] == 'r' ? new File(*this, path) : MemIO::CreateFileX(path, mode);
  }
  int result = 0;
};

TEST(Crc, ReadsThatFailGiveNoChecksum) {
  FlakyIO io;
  const ScopedIO scope(&io);
  io.Put("data.bin", Numbers(250000));
  for (const int result : {0, -7, 100001, INT32_MAX}) {
    io.result = result;
    EXPECT_EQ(K7CRC::createCRCFile("data.bin"), result < 0 ? result : K7_ERR_FILE_IO) << result;
    EXPECT_EQ(io.files.count("data.crc"), 0u);
  }
}

TEST(Crc, CompanionIsWrittenAndVerified) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("v1.2/data.bin", std::string("123456789"));
  ASSERT_EQ(K7CRC::createCRCFile("v1.2/data.bin"), 0);
  EXPECT_EQ(io.Get("v1.2/data.crc"), (Bytes{0x27, 0xEC, 0x9C, 0x74}));
  EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 0), 0);
  EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 5), K7_ERR_CRC_MISMATCH);

  // A checksum from an offset, with more bytes behind it.
  io.Put("v1.2/data.crc", Bytes{0x68, 0x60, 0x1E, 0x43, 1, 2});
  EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 5), 0);

  // Every flipped bit of the data is noticed.
  ASSERT_EQ(K7CRC::createCRCFile("v1.2/data.bin"), 0);
  for (int bit = 0; bit < 9 * 8; ++bit) {
    (*io.files["v1.2/data.bin"])[static_cast<size_t>(bit / 8)] ^= static_cast<unsigned char>(1 << bit % 8);
    EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 0), K7_ERR_CRC_MISMATCH) << bit;
    (*io.files["v1.2/data.bin"])[static_cast<size_t>(bit / 8)] ^= static_cast<unsigned char>(1 << bit % 8);
  }
}

TEST(Crc, FailuresAreToldApart) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("plain", std::string("x"));
  io.Put("self.crc", std::string("precious"));
  io.Put("data.bin", std::string("x"));
  EXPECT_EQ(K7CRC::CheckCRC(nullptr, 0), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(K7CRC::CheckCRC("plain", 0), K7_ERR_FILE_IO);
  EXPECT_EQ(K7CRC::createCRCFile("plain"), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(K7CRC::createCRCFile("self.crc"), K7_ERR_BAD_ARGUMENT);
  EXPECT_EQ(io.Get("self.crc").size(), 8u);
  EXPECT_EQ(K7CRC::CheckCRC("data.bin", 0), K7_ERR_CRC_MISSING);
  io.Put("data.crc", Bytes{1, 2, 3});
  EXPECT_EQ(K7CRC::CheckCRC("data.bin", 0), K7_ERR_CRC_UNREADABLE);
  io.Put("data.crc", Bytes{1, 2, 3, 4});
  EXPECT_EQ(K7CRC::CheckCRC("data.bin", -1), K7_ERR_FILE_IO);
  EXPECT_EQ(K7CRC::createCRCFile("gone.bin"), K7_ERR_FILE_IO);
  EXPECT_EQ(K7CRC::crcFileFromOffset("data.bin", 0, nullptr), K7_ERR_INVALID_DATA);
  io.room = 3;
  EXPECT_EQ(K7CRC::createCRCFile("data.bin"), K7_ERR_FILE_IO);
}

}  // namespace
