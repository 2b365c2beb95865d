#include <k7/raster/bitmap.h>

#include "raster/load.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace {

std::atomic<int64_t> g_maxPixels{int64_t{1} << 27};

bool IsDepth(int bits) { return bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32; }

// Bytes that the pixels of a row fill, without padding.
int64_t PackedBytes(int width, int bits) { return (int64_t{width} * bits + 7) / 8; }

}  // namespace

int64_t K7Bitmap::MaxPixels() { return g_maxPixels.load(std::memory_order_relaxed); }

void K7Bitmap::SetMaxPixels(int64_t pixels) { g_maxPixels.store(pixels, std::memory_order_relaxed); }

K7Bitmap::~K7Bitmap() { std::free(m_data); }

void K7Bitmap::Clear() {
  std::free(std::exchange(m_data, nullptr));
  m_width = m_height = m_bits = m_rowBytes = 0;
  m_transparent = -1;
}

void K7Bitmap::Swap(K7Bitmap& other) noexcept {
  std::swap(m_width, other.m_width);
  std::swap(m_height, other.m_height);
  std::swap(m_bits, other.m_bits);
  std::swap(m_rowBytes, other.m_rowBytes);
  std::swap(m_transparent, other.m_transparent);
  std::swap(m_data, other.m_data);
  std::swap(m_palette, other.m_palette);
}

int K7Bitmap::Create(int width, int height, int bits) {
  Clear();
  if (width < 1 || height < 1 || !IsDepth(bits)) return K7_ERR_BAD_ARGUMENT;
  const int64_t rowBytes = (PackedBytes(width, bits) + 3) / 4 * 4;
  if (int64_t{width} * height > MaxPixels() || rowBytes > INT_MAX / height) return K7_ERR_BUFFER_EXCEEDED;
  m_data = static_cast<uint8_t*>(std::calloc(static_cast<size_t>(height), static_cast<size_t>(rowBytes)));
  if (!m_data) return K7_ERR_MEMORY;
  m_width = width;
  m_height = height;
  m_bits = bits;
  m_rowBytes = static_cast<int>(rowBytes);
  std::fill(m_palette, m_palette + 256, K7Color(0, 0, 0));
  return 0;
}

int K7Bitmap::Populate(int width, int height, int bits, const void* pixels, ptrdiff_t stride,
                       const K7Color* palette, int colors) {
  // The rows may be this bitmap's own.
  K7Bitmap old;
  Swap(old);
  const int64_t packed = PackedBytes(width, bits);
  const bool overlap = height > 1 && stride < packed && stride > -packed;
  if (!pixels || colors < 0 || (colors > 0 && !palette) || overlap) return K7_ERR_BAD_ARGUMENT;
  if (const int err = Create(width, height, bits)) return err;
  for (int y = 0; y < height; ++y)
    std::memcpy(Row(y), static_cast<const uint8_t*>(pixels) + y * stride, static_cast<size_t>(packed));
  std::copy_n(palette, std::min(colors, PaletteCount()), m_palette);
  return 0;
}

const uint8_t* K7Bitmap::RowAt(int y) const {
  if (y < 0 || y >= m_height) return nullptr;
  const int row = m_bits <= 8 ? m_height - 1 - y : y;
  return m_data + int64_t{row} * m_rowBytes;
}

uint32_t K7Bitmap::GetValue(int x, int y) const {
  const uint8_t* const row = RowAt(y);
  if (!row || x < 0 || x >= m_width) return 0;
  switch (m_bits) {
    case 1:
      return row[x / 8] >> (7 - x % 8) & 1u;
    case 4:
      return row[x / 2] >> (x % 2 ? 0 : 4) & 15u;
    case 8:
      return row[x];
    default:
      break;
  }
  uint32_t value = 0;
  std::memcpy(&value, row + int64_t{x} * m_bits / 8, static_cast<size_t>(m_bits / 8));
  return value;
}

K7Color K7Bitmap::GetPixel(int x, int y) const {
  if (x < 0 || x >= m_width || y < 0 || y >= m_height) return {};
  const uint32_t value = GetValue(x, y);
  if (m_bits <= 8) return m_palette[value];
  return K7Color(m_bits == 24 ? value | 0xFF000000u : value);
}

void K7Bitmap::SetPaletteEntry(int i, K7Color color) {
  if (i >= 0 && i < PaletteCount()) m_palette[i] = color;
}

void K7Bitmap::SetTransparentPixel(int value) {
  const int count = m_bits == 0 ? 0 : m_bits <= 8 ? PaletteCount() : 1 << 24;
  m_transparent = value >= 0 && value < count ? value : -1;
}

int K7Bitmap::Read(const char* path) {
  Clear();
  unsigned char magic[8] = {};
  {
    K7File* file = nullptr;
    if (const int err = k7raster::Open(path, "rb", file)) return err;
    const std::unique_ptr<K7File> owner(file);
    // A shorter file is told by what it has.
    const int64_t held = std::min<int64_t>(k7read::BytesLeft(file), sizeof magic);
    if (held < 0) return K7_ERR_FILE_IO;
    if (const int err = k7read::Exact(file, magic, static_cast<int>(held))) return err;
  }
  const auto begins = [&magic](const char* with) { return std::memcmp(magic, with, std::strlen(with)) == 0; };
  if (begins("BM")) return ReadBMP(path, 1);
  if (begins("\x0A")) return ReadPCX(path);
  if (begins("GIF87a") || begins("GIF89a")) return ReadGIF(path, 1);
  if (begins("\x89PNG")) return ReadPNG(path);
  if (begins("\xFF\xD8")) return ReadJPEG(path);
  return K7_ERR_OUT_OF_RANGE;
}

int K7Bitmap::ReadJPEG(const char*) {
  Clear();
  return K7_ERR_NOT_IMPLEMENTED;
}
