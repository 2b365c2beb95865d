// Compressed data files: the length of the data, then a zlib stream whose ends are masked.

#include <k7/io/file.h>

#include "io/read.h"

#include <zlib.h>
#include <algorithm>
#include <cstdint>

namespace {

constexpr int LEVEL = 6;
constexpr int MASKED_BYTES = 9;
// Deflate packs at most 1032 bytes into one (RFC 1951: a match of 258 bytes takes at least two bits), so that
// a longer length than this cannot be true.
constexpr int64_t MAX_EXPANSION = 1032;

// XORs the first and then the last bytes; where the two ranges of a short stream overlap they cancel out.
void MaskEnds(unsigned char* stream, int size, unsigned char mask) {
  const int n = std::min(size, MASKED_BYTES);
  for (int i = 0; i < n; ++i) stream[i] ^= mask;
  for (int i = size - n; i < size; ++i) stream[i] ^= mask;
}

// Bytes of the finished stream, or -1.
int64_t Deflate(const char* data, int n, unsigned char* out, int64_t room) {
  z_stream stream{};
  if (deflateInit(&stream, LEVEL) != Z_OK) return -1;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
  stream.avail_in = static_cast<uInt>(n);
  stream.next_out = out;
  stream.avail_out = static_cast<uInt>(room);
  const int result = deflate(&stream, Z_FINISH);
  const int64_t size = static_cast<int64_t>(stream.total_out);
  return deflateEnd(&stream) == Z_OK && result == Z_STREAM_END ? size : -1;
}

// True when the stream is whole, its checksum right, and it yields exactly `length` bytes.
bool Inflate(unsigned char* data, int size, unsigned char* out, uint32_t length) {
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return false;
  stream.next_in = data;
  stream.avail_in = static_cast<uInt>(size);
  stream.next_out = out;
  stream.avail_out = length;
  const int result = inflate(&stream, Z_FINISH);
  const bool whole = result == Z_STREAM_END && stream.total_out == length;
  return inflateEnd(&stream) == Z_OK && whole;
}

}  // namespace

int K7File::SecureCompress(const char* data, int n) {
  const K7LockGuard lock(m_mutex);
  if (!data || n < 0) return -1;
  const int64_t room = static_cast<int64_t>(n) * 1001 / 1000 + 12;
  k7read::Block stream;
  if (!stream.Alloc(room)) return -1;
  const int64_t size = Deflate(data, n, stream.Bytes(), room);
  // A failed compression counts as success with an empty file: its callers never looked for another answer.
  if (size < 0 || size > INT32_MAX) return 0;

  const uint32_t length = static_cast<uint32_t>(n);
  MaskEnds(stream.Bytes(), static_cast<int>(size), static_cast<unsigned char>(length));
  if (Write(&length, sizeof length) <= 0) return -1;
  return Write(stream.Bytes(), static_cast<int>(size)) > 0 ? 0 : -1;
}

int K7File::SecureDecompress(char** out) {
  const K7LockGuard lock(m_mutex);
  k7read::Block contents;
  if (!out || contents.ReadFile(this) != 0) return -1;
  k7read::Cursor cursor(contents.Bytes(), contents.Size());
  uint32_t length = 0;
  cursor.Little(length);
  const int size = static_cast<int>(cursor.Left());
  if (size <= 0 || length == 0 || length > static_cast<int64_t>(size) * MAX_EXPANSION || length >= INT32_MAX)
    return -1;
  unsigned char* const stream = contents.Bytes() + sizeof length;
  MaskEnds(stream, size, static_cast<unsigned char>(length));

  k7read::Block text;
  if (!text.Alloc(int64_t{length} + 1) || !Inflate(stream, size, text.Bytes(), length)) return -1;
  text.Bytes()[length] = 0;
  *out = text.Release();
  return 0;
}
