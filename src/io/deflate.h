// Blocks of bytes as zlib streams (RFC 1950), packed and unpacked in one call.
#pragma once

#include <cstdint>

namespace k7deflate {

/// Room that a packed block of `n` bytes is given.
inline int64_t PackedRoom(int64_t n) { return n * 1001 / 1000 + 12; }

/// Packs at level 6. The bytes of the finished stream, or -1.
int64_t Pack(const void* data, int64_t n, void* out, int64_t room);

/// False when a stream of `size` bytes cannot hold `length`: what claims so is not worth its memory.
bool MayHold(int64_t size, int64_t length);

/// True when the stream is whole, its checksum right, and it yields exactly `length` bytes.
bool Unpack(const void* stream, int64_t size, void* out, int64_t length);

}  // namespace k7deflate
