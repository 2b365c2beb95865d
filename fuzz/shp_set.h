// A shapefile set from the input: the lengths of the main file and of the attribute table as 32-bit words,
// the two files, and the rest as the index.
#pragma once

#include "input.h"

#include "support/mem_io.h"

#include <algorithm>

inline Bytes TakeBytes(const uint8_t*& data, size_t& size, size_t n) {
  n = std::min(n, size);
  Bytes bytes(data, data + n);
  data += n;
  size -= n;
  return bytes;
}

inline uint32_t TakeLength(const uint8_t*& data, size_t& size) {
  uint32_t length = 0;
  const Bytes raw = TakeBytes(data, size, sizeof length);
  std::copy(raw.begin(), raw.end(), reinterpret_cast<unsigned char*>(&length));
  return length;
}

/// Puts "a.shp" and its companions.
inline void PutSet(MemIO& io, const uint8_t* data, size_t size) {
  const uint32_t mainLength = TakeLength(data, size);
  const uint32_t tableLength = TakeLength(data, size);
  io.Put("a.shp", TakeBytes(data, size, mainLength));
  io.Put("a.dbf", TakeBytes(data, size, tableLength));
  io.Put("a.shx", TakeBytes(data, size, size));
}
