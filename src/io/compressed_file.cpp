// Compressed data files: the length of the data, then a zlib stream whose ends are masked.

#include <k7/io/file.h>

#include "io/deflate.h"
#include "io/read.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int MASKED_BYTES = 9;

// XORs the first and then the last bytes; where the two ranges of a short stream overlap they cancel out.
void MaskEnds(unsigned char* stream, int size, unsigned char mask) {
  const int n = std::min(size, MASKED_BYTES);
  for (int i = 0; i < n; ++i) stream[i] ^= mask;
  for (int i = size - n; i < size; ++i) stream[i] ^= mask;
}

}  // namespace

int K7File::SecureCompress(const char* data, int n) {
  const K7LockGuard lock(m_mutex);
  if (!data || n < 0) return -1;
  const int64_t room = k7deflate::PackedRoom(n);
  k7read::Block stream;
  if (!stream.Alloc(room)) return -1;
  const int64_t size = k7deflate::Pack(data, n, stream.Bytes(), room);
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
  if (size <= 0 || length == 0 || !k7deflate::MayHold(size, length) || length >= INT32_MAX) return -1;
  unsigned char* const stream = contents.Bytes() + sizeof length;
  MaskEnds(stream, size, static_cast<unsigned char>(length));

  k7read::Block text;
  if (!text.Alloc(int64_t{length} + 1) || !k7deflate::Unpack(stream, size, text.Bytes(), length)) return -1;
  text.Bytes()[length] = 0;
  *out = text.Release();
  return 0;
}
