// A compressed data file of any bytes, through the file interface.

#include "support/mem_io.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  MemFile file(std::make_shared<Bytes>(data, data + size), "rb");
  char* text = nullptr;
  if (file.SecureDecompress(&text) != 0) return 0;

  // What was accepted is whole: it compresses, and comes back the same.
  uint32_t length;
  std::memcpy(&length, data, sizeof length);
  MemFile again(std::make_shared<Bytes>(), "wb");
  if (again.SecureCompress(text, static_cast<int>(length)) != 0) std::abort();
  char* copy = nullptr;
  if (again.SecureDecompress(&copy) != 0 || std::memcmp(copy, text, length) != 0) std::abort();
  std::free(copy);
  std::free(text);
  return 0;
}
