// A number that stands for contents: others have another, as good as always.
#pragma once

#include <cstdint>
#include <string_view>

/// The function FNV-1a of 64 bits of G. Fowler, L. C. Noll and K.-P. Vo; carries `key` on.
inline uint64_t ContentKey(std::string_view bytes, uint64_t key = 0xCBF29CE484222325) {
  for (const char byte : bytes) key = (key ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return key;
}
