#include "raster/load.h"

#include <cstring>

namespace {

using k7read::Cursor;

constexpr size_t HEADER_SIZE = 128;
constexpr size_t PALETTE_SIZE = 769;  // a mark and 256 colours, at the end of the file
constexpr unsigned char PALETTE_MARK = 0x0C;
// The longest run, of two bytes.
constexpr int64_t LONGEST_RUN = 63;

struct Header {
  uint8_t encoding = 0;
  uint8_t bits = 0;  // of a plane
  uint8_t planes = 0;
  uint16_t lineBytes = 0;  // of a plane
  int width = 0;
  int height = 0;
  unsigned char colors[48] = {};
};

int TakeHeader(Cursor in, Header& header) {
  uint8_t magic = 0;
  uint8_t version = 0;
  uint8_t reserved = 0;
  uint16_t window[4];  // left, top, right, bottom, all of them within
  in.Little(magic);
  in.Little(version);
  in.Little(header.encoding);
  in.Little(header.bits);
  in.Little(window);
  in.Skip(4);  // dots per inch
  in.Little(header.colors);
  in.Little(reserved);
  in.Little(header.planes);
  in.Little(header.lineBytes);
  header.width = window[2] - window[0] + 1;
  header.height = window[3] - window[1] + 1;
  const bool sound = magic == 0x0A && header.encoding <= 1 && header.width > 0 && header.height > 0 &&
                     header.lineBytes * 8 >= header.width * header.bits;
  return sound ? 0 : K7_ERR_INVALID_DATA;
}

// The bits of the bitmap that such an image becomes; 0 for none.
int BitmapBits(const Header& header) {
  if (header.bits == 8 && header.planes == 3) return 24;
  if (header.bits == 8 && header.planes == 4) return 32;
  const bool planar = header.bits == 1 && header.planes >= 1 && header.planes <= 4;
  const bool packed = header.planes == 1 && (header.bits == 2 || header.bits == 4 || header.bits == 8);
  return planar || packed ? 8 : 0;
}

void SetColors(const unsigned char* rgb, int count, K7Bitmap& bitmap) {
  for (int i = 0; i < count; ++i, rgb += 3) bitmap.SetPaletteEntry(i, K7Color(rgb[0], rgb[1], rgb[2]));
}

// Black and white images often leave their two colours out.
void SetHeaderColors(const Header& header, K7Bitmap& bitmap) {
  const int count = 1 << (header.bits * header.planes);
  SetColors(header.colors, count, bitmap);
  if (count == 2 && bitmap.GetPaletteEntry(0) == bitmap.GetPaletteEntry(1)) {
    bitmap.SetPaletteEntry(0, K7Color(0, 0, 0));
    bitmap.SetPaletteEntry(1, K7Color(255, 255, 255));
  }
}

// The bytes of all rows one behind the other, in which runs may cross from row to row.
class ByteStream {
 public:
  ByteStream(Cursor in, bool packed) : m_in(in), m_packed(packed) {}

  bool Take(uint8_t* to, int n) {
    if (!m_packed) {
      const unsigned char* const from = m_in.Skip(static_cast<size_t>(n));
      if (from) std::memcpy(to, from, static_cast<size_t>(n));
      return from != nullptr;
    }
    while (n > 0) {
      if (m_run == 0 && !TakeRun()) return false;
      const int count = m_run < n ? m_run : n;
      std::memset(to, m_value, static_cast<size_t>(count));
      to += count;
      n -= count;
      m_run -= count;
    }
    return true;
  }

 private:
  bool TakeRun() {
    m_in.Little(m_value);
    m_run = 1;
    if (m_value >= 0xC0) {
      m_run = m_value & 0x3F;
      m_in.Little(m_value);
    }
    return m_in.IsWhole();
  }

  Cursor m_in;
  bool m_packed;
  int m_run = 0;
  uint8_t m_value = 0;
};

// True colour: a plane for red, green, blue and alpha each. Indexes: their bits, or the bits of each plane,
// the lowest plane first.
void StoreLine(const Header& header, const uint8_t* line, K7Bitmap& bitmap, int y) {
  uint8_t* const row = bitmap.Row(y);
  const int step = bitmap.BitsPerPixel() / 8;
  for (int plane = 0; plane < header.planes; ++plane, line += header.lineBytes)
    for (int x = 0; x < header.width; ++x) {
      if (step > 1) {
        row[x * step + (plane < 3 ? 2 - plane : 3)] = line[x];
        continue;
      }
      const int bit = x * header.bits;
      const int value = line[bit / 8] >> (8 - header.bits - bit % 8) & ((1 << header.bits) - 1);
      row[x] = static_cast<uint8_t>(row[x] | value << plane);
    }
}

int StoreLines(const Header& header, Cursor in, K7Bitmap& bitmap) {
  const int lineBytes = header.lineBytes * header.planes;
  k7read::Block line;
  if (!line.Alloc(lineBytes)) return K7_ERR_MEMORY;
  ByteStream stream(in, header.encoding == 1);
  for (int y = 0; y < header.height; ++y) {
    if (!stream.Take(line.Bytes(), lineBytes)) return K7_ERR_INVALID_DATA;
    StoreLine(header, line.Bytes(), bitmap, y);
  }
  return 0;
}

int DecodePCX(k7read::Block& file, int, K7Bitmap& bitmap) {
  if (file.Size() < HEADER_SIZE) return K7_ERR_INVALID_DATA;
  Header header;
  if (const int err = TakeHeader(Cursor(file.Bytes(), HEADER_SIZE), header)) return err;
  const int bits = BitmapBits(header);
  if (bits == 0) return K7_ERR_NOT_IMPLEMENTED;

  size_t size = file.Size() - HEADER_SIZE;
  const unsigned char* palette = nullptr;
  if (bits == 8 && header.bits == 8) {
    if (size < PALETTE_SIZE) return K7_ERR_INVALID_DATA;
    size -= PALETTE_SIZE;
    palette = file.Bytes() + HEADER_SIZE + size;
    if (*palette++ != PALETTE_MARK) return K7_ERR_INVALID_DATA;
  }
  const int64_t bytes = int64_t{header.lineBytes} * header.planes * header.height;
  const int64_t most =
      header.encoding ? static_cast<int64_t>(size) * LONGEST_RUN : static_cast<int64_t>(size);
  if (bytes > most) return K7_ERR_INVALID_DATA;
  if (const int err = bitmap.Create(header.width, header.height, bits)) return err;
  if (palette)
    SetColors(palette, 256, bitmap);
  else if (bits == 8)
    SetHeaderColors(header, bitmap);
  return StoreLines(header, Cursor(file.Bytes() + HEADER_SIZE, size), bitmap);
}

}  // namespace

int K7Bitmap::ReadPCX(const char* path) { return k7raster::Load(path, DecodePCX, 0, *this); }
