#include "raster/bmp.h"
#include "raster/bmp_rle.h"
#include "raster/load.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>

namespace {

using k7read::Cursor;

enum Compression : uint32_t { RGB = 0, RLE8 = 1, RLE4 = 2, BIT_FIELDS = 3, ALPHA_BIT_FIELDS = 6 };

struct Header {
  int32_t width = 0;
  int32_t height = 0;
  bool topDown = false;
  uint16_t bits = 0;
  uint32_t compression = RGB;
  uint32_t colors = 0;
  uint32_t entryBytes = 4;
  uint32_t pixelOffset = 0;
  uint32_t masks[4] = {};  // red, green, blue, alpha
};

// One component of a pixel under a mask, brought to 8 bits.
class Channel {
 public:
  void Init(uint32_t mask, uint8_t without) {
    const int low = mask ? std::countr_zero(mask) : 0;
    m_mask = mask;
    m_shift = low + std::max(static_cast<int>(std::bit_width(mask >> low)) - 8, 0);
    const uint32_t top = mask >> m_shift;
    for (uint32_t i = 0; i < 256; ++i)
      m_scaled[i] = top ? static_cast<uint8_t>((std::min(i, top) * 255 + top / 2) / top) : without;
  }
  uint8_t Of(uint32_t pixel) const { return m_scaled[(pixel & m_mask) >> m_shift]; }

 private:
  uint32_t m_mask = 0;
  int m_shift = 0;
  uint8_t m_scaled[256] = {};
};

void TakeCoreHeader(Cursor& in, Header& header) {
  uint16_t width = 0;
  uint16_t height = 0;
  uint16_t planes = 0;
  in.Little(width);
  in.Little(height);
  in.Little(planes);
  in.Little(header.bits);
  header.width = width;
  header.height = height;
  header.entryBytes = 3;
}

// `size` counts its own four bytes, which have been read.
void TakeInfoHeader(Cursor& in, uint32_t size, Header& header) {
  const unsigned char* const start = in.Skip(size - 4);
  if (!start) return;
  Cursor fields(start, size - 4);
  uint16_t planes = 0;
  uint32_t unused[3];
  fields.Little(header.width);
  fields.Little(header.height);
  fields.Little(planes);
  fields.Little(header.bits);
  fields.Little(header.compression);
  fields.Little(unused);
  fields.Little(header.colors);
  fields.Skip(4);
  // Masks stand within the longer headers and behind the shortest.
  const bool within = size > k7raster::BMP_INFO_HEADER;
  const size_t count =
      within ? std::min<size_t>(fields.Left() / 4, 4) : (header.compression == ALPHA_BIT_FIELDS ? 4 : 3);
  if (header.compression != BIT_FIELDS && header.compression != ALPHA_BIT_FIELDS) return;
  for (size_t i = 0; i < count; ++i) (within ? fields : in).Little(header.masks[i]);
}

int TakeHeader(Cursor& in, Header& header) {
  const unsigned char* const magic = in.Skip(2);
  uint32_t size = 0;
  in.Skip(8);
  in.Little(header.pixelOffset);
  in.Little(size);
  if (!magic || std::memcmp(magic, "BM", 2) != 0) return K7_ERR_INVALID_DATA;
  if (size == k7raster::BMP_CORE_HEADER)
    TakeCoreHeader(in, header);
  else if (size >= k7raster::BMP_INFO_HEADER)
    TakeInfoHeader(in, size, header);
  else
    return K7_ERR_INVALID_DATA;
  header.topDown = header.height < 0;
  if (!in.IsWhole() || header.width < 1 || header.height == 0 || header.height == INT_MIN)
    return K7_ERR_INVALID_DATA;
  header.height = std::abs(header.height);
  return 0;
}

// Whether depth and compression go together.
int Check(const Header& header) {
  const int bits = header.bits;
  switch (header.compression) {
    case RGB:
      return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32
                 ? 0
                 : K7_ERR_INVALID_DATA;
    case RLE8:
      return bits == 8 && !header.topDown ? 0 : K7_ERR_INVALID_DATA;
    case RLE4:
      // 24 bits under this number are another system's.
      return bits == 4 && !header.topDown ? 0 : K7_ERR_INVALID_DATA;
    case BIT_FIELDS:
    case ALPHA_BIT_FIELDS:
      return bits == 16 || bits == 32 ? 0 : K7_ERR_INVALID_DATA;
    default:
      return K7_ERR_NOT_IMPLEMENTED;
  }
}

// A file may state fewer entries than the depth has, and its pixels may begin earlier than that.
bool TakePalette(Cursor& in, const Header& header, size_t position, K7Bitmap& bitmap) {
  uint32_t count = static_cast<uint32_t>(bitmap.PaletteCount());
  if (header.colors > 0) count = std::min(count, header.colors);
  if (header.pixelOffset >= position)
    count = std::min(count, static_cast<uint32_t>(header.pixelOffset - position) / header.entryBytes);
  const unsigned char* bgr = in.Skip(size_t{count} * header.entryBytes);
  if (!bgr) return false;
  for (uint32_t i = 0; i < count; ++i, bgr += header.entryBytes)
    bitmap.SetPaletteEntry(static_cast<int>(i), K7Color(bgr[2], bgr[1], bgr[0]));
  return true;
}

struct Channels {
  explicit Channels(const Header& header) {
    constexpr uint32_t MASKS_555[4] = {0x7C00, 0x03E0, 0x001F, 0};
    const uint32_t* const masks = header.compression == RGB ? MASKS_555 : header.masks;
    red.Init(masks[0], 0);
    green.Init(masks[1], 0);
    blue.Init(masks[2], 0);
    alpha.Init(masks[3], 255);
  }
  K7Color Of(uint32_t pixel) const {
    return {red.Of(pixel), green.Of(pixel), blue.Of(pixel), alpha.Of(pixel)};
  }
  Channel red, green, blue, alpha;
};

void StoreMasked(const Header& header, const Channels& channels, const unsigned char* from, uint8_t* row) {
  const size_t step = header.bits / 8u;
  for (int x = 0; x < header.width; ++x, from += step, row += 4) {
    uint32_t pixel = 0;
    std::memcpy(&pixel, from, step);
    const K7Color color = channels.Of(pixel);
    std::memcpy(row, &color, sizeof color);
  }
}

// Fourth bytes that are all 0 were never meant as alpha.
void SettleAlpha(int alpha, K7Bitmap& bitmap) {
  K7Color* const colors = bitmap.Colors();
  K7Color* const end = colors + int64_t{bitmap.Width()} * bitmap.Height();
  if (alpha && std::any_of(colors, end, [](K7Color c) { return c.A() != 0; })) return;
  for (K7Color* color = colors; color != end; ++color) *color = K7Color(color->BGR() | 0xFF000000u);
}

int StoreRows(const Header& header, Cursor& in, int alpha, K7Bitmap& bitmap) {
  const bool masked = header.bits == 16 || header.compression != RGB;
  const Channels channels(header);
  const size_t rowBytes = static_cast<size_t>((int64_t{header.width} * header.bits + 31) / 32 * 4);
  for (int i = 0; i < header.height; ++i) {
    const unsigned char* const from = in.Skip(rowBytes);
    if (!from) return K7_ERR_INVALID_DATA;
    uint8_t* const row = bitmap.Row(header.topDown ? i : header.height - 1 - i);
    if (masked)
      StoreMasked(header, channels, from, row);
    else
      std::memcpy(row, from, rowBytes);
  }
  if (header.bits == 32 && !masked) SettleAlpha(alpha, bitmap);
  return 0;
}

int DecodeBMP(k7read::Block& file, int alpha, K7Bitmap& bitmap) {
  Cursor in(file.Bytes(), file.Size());
  Header header;
  if (const int err = TakeHeader(in, header)) return err;
  if (const int err = Check(header)) return err;
  const bool runs = header.compression == RLE8 || header.compression == RLE4;
  const int64_t rowBytes = (int64_t{header.width} * header.bits + 31) / 32 * 4;
  if (!runs && rowBytes > static_cast<int64_t>(in.Left()) / header.height) return K7_ERR_INVALID_DATA;
  if (const int err = bitmap.Create(header.width, header.height, header.bits == 16 ? 32 : header.bits))
    return err;
  if (!TakePalette(in, header, file.Size() - in.Left(), bitmap)) return K7_ERR_INVALID_DATA;
  if (header.pixelOffset > file.Size()) return K7_ERR_INVALID_DATA;
  // Files without an offset have their pixels next.
  Cursor pixels = in;
  if (header.pixelOffset > 0)
    pixels = Cursor(file.Bytes() + header.pixelOffset, file.Size() - header.pixelOffset);
  if (runs) return k7raster::DecodeRuns(pixels, bitmap);
  return StoreRows(header, pixels, alpha, bitmap);
}

}  // namespace

int K7Bitmap::ReadBMP(const char* path, int alpha) { return k7raster::Load(path, DecodeBMP, alpha, *this); }
