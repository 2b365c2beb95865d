#include <k7/core.h>

#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// The stated steps, the table's entry divided bit by bit.
unsigned Reference(const std::string& data) {
  uint32_t crc = 0xFFFFFFFF;
  for (const char c : data) {
    if (c == '\n' || c == '\r') continue;
    uint32_t entry = ((static_cast<unsigned char>(c) ^ crc) & 0xFF) << 24;
    for (int bit = 0; bit < 8; ++bit) entry = (entry << 1) ^ (entry >> 31 ? 0x04C11DB7u : 0);
    crc = (crc << 8) ^ entry;
  }
  return ~crc;
}

TEST(Crc, EveryLengthStartAndPlaceOfLineEnds) {
  MemIO io;
  const ScopedIO scope(&io);
  std::mt19937 random(3);
  const char bytes[] = {'\n', '\r', 'a', 0, 9, 11, 12, 14, '\x8A', '\x8D', '\xFF'};
  for (size_t length = 0; length <= 60; ++length)
    for (const bool any : {false, true}) {
      std::string data;
      // The longest takes three chunks.
      while (data.size() < (length < 60 ? length : 250000))
        data += any ? static_cast<char>(random()) : bytes[random() % sizeof bytes];
      io.Put("data.bin", data);
      for (unsigned offset = 0; offset <= std::min<size_t>(length, 9); ++offset) {
        unsigned crc = 0xDEAD;
        EXPECT_EQ(K7CRC::crcFileFromOffset("data.bin", offset, &crc), 0);
        EXPECT_EQ(crc, Reference(data.substr(offset))) << length;
      }
    }
}

TEST(Crc, ReadsThatFailGiveNoChecksum) {
  AnsweringIO io;
  const ScopedIO scope(&io);
  io.Put("data.bin", Bytes(9));
  for (const int result : {0, -7, 100001, INT32_MAX}) {
    io.result = result;
    const int expected = result < 0 ? result : int{K7_ERR_FILE_IO};
    EXPECT_EQ(K7CRC::createCRCFile("data.bin"), expected) << result;
    EXPECT_EQ(K7String().Read(std::unique_ptr<K7File>(io.CreateFileX("data.bin", "rb")).get()), expected)
        << result;
  }
}

// Expected values: a Python program that divides each index byte by the polynomial bit by bit.
TEST(Crc, CompanionIsWrittenAndVerified) {
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("v1.2/data.bin", std::string("123456789"));
  EXPECT_EQ(K7CRC::createCRCFile("v1.2/data.bin"), 0);
  EXPECT_EQ(io.Get("v1.2/data.crc"), (Bytes{0x27, 0xEC, 0x9C, 0x74}));
  EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 0), 0);
  EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 5), K7_ERR_CRC_MISMATCH);
  // A checksum from an offset, with more bytes behind it.
  io.Put("v1.2/data.crc", Bytes{0x68, 0x60, 0x1E, 0x43, 1, 2});
  EXPECT_EQ(K7CRC::CheckCRC("v1.2/data.bin", 5), 0);
}

TEST(Crc, FailuresAreToldApart) {
  MemIO io;
  const ScopedIO scope(&io);
  for (const char* const path : {"plain", "self.crc", "data.bin", "short.bin"})
    io.Put(path, std::string("x"));
  io.Put("short.crc", Bytes{1, 2, 3});
  io.Put("gone.crc", Bytes{1, 2, 3, 4});
  const struct {
    const char* path;
    int check, create;
  } CASES[] = {
      {nullptr, K7_ERR_BAD_ARGUMENT, K7_ERR_BAD_ARGUMENT},
      {"plain", K7_ERR_FILE_IO, K7_ERR_BAD_ARGUMENT},
      {"self.crc", K7_ERR_CRC_UNREADABLE, K7_ERR_BAD_ARGUMENT},
      {"data.bin", K7_ERR_CRC_MISSING, K7_ERR_FILE_IO},
      {"short.bin", K7_ERR_CRC_UNREADABLE, K7_ERR_FILE_IO},
      {"gone.bin", K7_ERR_FILE_IO, K7_ERR_FILE_IO},
  };
  for (const auto& [path, check, create] : CASES) {
    io.room = 4;
    EXPECT_EQ(K7CRC::CheckCRC(path, 0), check) << path;
    io.room = 3;  // the companion's four bytes do not fit
    EXPECT_EQ(K7CRC::createCRCFile(path), create) << path;
  }
  EXPECT_EQ(io.Get("self.crc").size(), 1u);
  EXPECT_EQ(K7CRC::CheckCRC("gone.bin", -1), K7_ERR_FILE_IO);
  io.Put("data.crc", Bytes{1, 2, 3, 4});
  EXPECT_EQ(K7CRC::CheckCRC("data.bin", -1), K7_ERR_FILE_IO);
  EXPECT_EQ(K7CRC::crcFileFromOffset("data.bin", 0, nullptr), K7_ERR_INVALID_DATA);
  unsigned crc = 0;
  EXPECT_EQ(K7CRC::crcFileFromOffset("data.bin", 2, &crc), 0);
}

}  // namespace
