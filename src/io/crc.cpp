#include <k7/io/crc.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>

#include "io/read.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr int CHUNK_SIZE = 100000;
constexpr uint32_t POLYNOMIAL = 0x04C11DB7;

constexpr std::array<uint32_t, 256> MakeTable() {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < table.size(); ++i) {
    uint32_t value = i << 24;
    for (int bit = 0; bit < 8; ++bit) value = (value << 1) ^ (value >> 31 ? POLYNOMIAL : 0);
    table[i] = value;
  }
  return table;
}

constexpr std::array<uint32_t, 256> TABLE = MakeTable();

// The index comes from the low byte although the shift goes left: the checksum of all existing companions.
constexpr uint32_t Step(uint32_t crc, unsigned char byte) { return (crc << 8) ^ TABLE[(byte ^ crc) & 0xFF]; }

// Division leaves a sum of remainders, one for each byte (D. V. Sarwate, "Computation of cyclic redundancy
// checks via table look-up", CACM 31(8), 1988), so that bytes are looked up side by side: SLICES[k] holds
// what a byte comes to with 7 - k bytes behind it. The running value's upper three bytes are shifted out by
// then; its low byte is added to the first byte.
constexpr int SLICE_COUNT = 8;

constexpr std::array<std::array<uint32_t, 256>, SLICE_COUNT> MakeSlices() {
  std::array<std::array<uint32_t, 256>, SLICE_COUNT> slices{};
  slices[SLICE_COUNT - 1] = TABLE;
  for (size_t k = SLICE_COUNT - 1; k-- > 0;)
    for (size_t i = 0; i < TABLE.size(); ++i) slices[k][i] = Step(slices[k + 1][i], 0);
  return slices;
}

constexpr std::array<std::array<uint32_t, 256>, SLICE_COUNT> SLICES = MakeSlices();

constexpr uint64_t EVERY_BYTE = 0x0101010101010101;

// Nonzero when a byte of `word` is `c` (Henry S. Warren, "Hacker's Delight", 2nd edition, section 6-1).
constexpr uint64_t HasByte(uint64_t word, unsigned char c) {
  const uint64_t rest = word ^ (EVERY_BYTE * c);
  return (rest - EVERY_BYTE) & ~rest & (EVERY_BYTE << 7);
}

// Null when the file system has no memory or the file does not open.
std::unique_ptr<K7File> OpenFile(const char* path, const char* mode) {
  K7IO* const io = K7IO::Inst();
  std::unique_ptr<K7File> file(io ? io->CreateFileX(path, mode) : nullptr);
  if (file && !file->IsValid()) file.reset();
  return file;
}

// 0, K7_ERR_BAD_ARGUMENT for a path without ".", or K7_ERR_MEMORY.
int CompanionPath(const char* path, K7String& companion) {
  const char* const dot = std::strrchr(path, '.');
  if (!dot) return K7_ERR_BAD_ARGUMENT;
  if (companion.Copy(path, static_cast<int>(dot - path)) < 0) return K7_ERR_MEMORY;
  return companion += K7CRC::CRC_FILE_EXTENSION;
}

int ReadCompanion(const char* companion, unsigned& crc) {
  const std::unique_ptr<K7File> file = OpenFile(companion, "rb");
  if (!file) return K7_ERR_CRC_MISSING;
  return k7read::Exact(file.get(), &crc, sizeof crc) == 0 ? 0 : K7_ERR_CRC_UNREADABLE;
}

}  // namespace

int K7CRC::setSeed(unsigned* crc) {
  if (!crc) return K7_ERR_INVALID_DATA;
  *crc = crcSeed;
  return 0;
}

int K7CRC::complement(unsigned* crc) {
  if (!crc) return K7_ERR_INVALID_DATA;
  if (complementCrc == 1) *crc ^= crcComplement;
  return 0;
}

unsigned K7CRC::crcData(const unsigned char* data, unsigned n, unsigned crc) {
  if (!data) return 0;
  const auto skipped = [](unsigned char c) { return c == '\n' || c == '\r'; };
  const unsigned char* const end = data + n;
  while (end - data >= SLICE_COUNT) {
    uint64_t word;
    std::memcpy(&word, data, sizeof word);
    if (HasByte(word, '\n') | HasByte(word, '\r')) {
      for (int i = 0; i < SLICE_COUNT; ++i, ++data)
        if (!skipped(*data)) crc = Step(crc, *data);
      continue;
    }
    word ^= crc & 0xFF;
    crc = 0;
    for (size_t k = 0; k < SLICE_COUNT; ++k, word >>= 8) crc ^= SLICES[k][word & 0xFF];
    data += SLICE_COUNT;
  }
  for (; data != end; ++data)
    if (!skipped(*data)) crc = Step(crc, *data);
  return crc;
}

int K7CRC::crcFile(K7File* file, unsigned* crc) {
  if (!file || !crc) return K7_ERR_INVALID_DATA;
  const std::unique_ptr<unsigned char[]> chunk(new (std::nothrow) unsigned char[CHUNK_SIZE]);
  if (!chunk) return K7_ERR_MEMORY;
  setSeed(crc);
  int n;
  while ((n = file->Read(chunk.get(), CHUNK_SIZE)) > 0) {
    if (n > CHUNK_SIZE) return K7_ERR_FILE_IO;
    *crc = crcData(chunk.get(), static_cast<unsigned>(n), *crc);
  }
  complement(crc);
  return n;
}

int K7CRC::crcFileFromOffset(const char* path, unsigned offset, unsigned* crc) {
  if (!path) return K7_ERR_BAD_ARGUMENT;
  const std::unique_ptr<K7File> file = OpenFile(path, "rb");
  // A larger offset would be a negative position, which means the end of the file.
  if (!file || offset > INT32_MAX || !file->Seek(static_cast<int>(offset))) return K7_ERR_FILE_IO;
  const int err = crcFile(file.get(), crc);
  // Streams answer a read that failed like one at their end.
  return err == 0 && k7read::BytesLeft(file.get()) > 0 ? int{K7_ERR_FILE_IO} : err;
}

int K7CRC::CheckCRC(const char* path, int offset) {
  if (!path) return K7_ERR_BAD_ARGUMENT;
  K7String companion;
  // A path without "." is one that has no file here and a bad argument when writing: callers tell them apart.
  if (const int err = CompanionPath(path, companion)) return err == K7_ERR_MEMORY ? err : K7_ERR_FILE_IO;
  unsigned expected = 0;
  if (const int err = ReadCompanion(companion, expected)) return err;
  unsigned crc = 0;
  if (const int err = crcFileFromOffset(path, static_cast<unsigned>(offset), &crc)) return err;
  return crc == expected ? 0 : K7_ERR_CRC_MISMATCH;
}

int K7CRC::createCRCFile(const char* path) {
  unsigned crc = 0;
  if (const int err = crcFileFromOffset(path, 0, &crc)) return err;
  K7String companion;
  if (const int err = CompanionPath(path, companion)) return err;
  if (companion == path) return K7_ERR_BAD_ARGUMENT;
  std::unique_ptr<K7File> file = OpenFile(companion, "wb");
  if (!file || file->Write(&crc, sizeof crc) != sizeof crc) return K7_ERR_FILE_IO;
  file.reset();
  // A full disk may show itself only when the buffer is written, and closing does not report it.
  unsigned written = 0;
  return ReadCompanion(companion, written) == 0 && written == crc ? 0 : K7_ERR_FILE_IO;
}
