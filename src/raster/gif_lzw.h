// The pixels of a GIF image.
#pragma once

#include <cstddef>
#include <cstdint>

namespace k7raster {

/// Decoded pixels, from `malloc`.
class GifPixels {
 public:
  GifPixels() = default;
  ~GifPixels();
  GifPixels(const GifPixels&) = delete;
  GifPixels& operator=(const GifPixels&) = delete;

  /// Decodes `count` pixels from the codes in `size` bytes, the sub-blocks joined, which begin with codes
  /// one bit wider than `minBits`. 0, K7_ERR_MEMORY, or K7_ERR_INVALID_DATA when the codes are none or end
  /// too early.
  int Decode(const uint8_t* codes, size_t size, int minBits, size_t count);
  const uint8_t* Data() const { return m_buffer ? m_buffer + HEAD : nullptr; }
  /// How many pixels there are: fewer than asked for where an end code came early.
  size_t Count() const { return m_count; }

 private:
  // Strings lie in the pixels before them. The single bytes lie in front of all pixels.
  static constexpr size_t HEAD = 256;

  uint8_t* m_buffer = nullptr;
  size_t m_count = 0;
};

}  // namespace k7raster
