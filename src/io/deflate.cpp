#include "io/deflate.h"

#include <zlib.h>

namespace {

constexpr int LEVEL = 6;
// Deflate packs at most 1032 bytes into one (RFC 1951: a match of 258 bytes takes at least two bits).
constexpr int64_t MAX_EXPANSION = 1032;

void Connect(z_stream& stream, const void* in, int64_t inSize, void* out, int64_t outSize) {
  stream.next_in = static_cast<Bytef*>(const_cast<void*>(in));
  stream.avail_in = static_cast<uInt>(inSize);
  stream.next_out = static_cast<Bytef*>(out);
  stream.avail_out = static_cast<uInt>(outSize);
}

}  // namespace

int64_t k7deflate::Pack(const void* data, int64_t n, void* out, int64_t room) {
  z_stream stream{};
  if (deflateInit(&stream, LEVEL) != Z_OK) return -1;
  Connect(stream, data, n, out, room);
  const int result = deflate(&stream, Z_FINISH);
  const int64_t size = static_cast<int64_t>(stream.total_out);
  return deflateEnd(&stream) == Z_OK && result == Z_STREAM_END ? size : -1;
}

bool k7deflate::MayHold(int64_t size, int64_t length) { return length <= size * MAX_EXPANSION; }

bool k7deflate::Unpack(const void* data, int64_t size, void* out, int64_t length) {
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return false;
  Connect(stream, data, size, out, length);
  const int result = inflate(&stream, Z_FINISH);
  const bool whole = result == Z_STREAM_END && static_cast<int64_t>(stream.total_out) == length;
  return inflateEnd(&stream) == Z_OK && whole;
}
