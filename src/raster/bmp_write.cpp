#include "raster/bmp.h"
#include "raster/load.h"

#include <cstring>
#include <memory>

namespace {

// A file's header, in the order of its fields.
class Header {
 public:
  void Bytes(const char* text, size_t n) {
    std::memcpy(m_bytes + m_size, text, n);
    m_size += n;
  }
  void Word16(int value) { Put(static_cast<uint16_t>(value)); }
  void Word32(int64_t value) { Put(static_cast<uint32_t>(value)); }
  const void* Data() const { return m_bytes; }
  int Size() const { return static_cast<int>(m_size); }

 private:
  template <class T>
  void Put(T value) {
    std::memcpy(m_bytes + m_size, &value, sizeof value);
    m_size += sizeof value;
  }

  unsigned char m_bytes[k7raster::BMP_FILE_HEADER + k7raster::BMP_INFO_HEADER + 4 * 256] = {};
  size_t m_size = 0;
};

bool Write(K7File* file, const void* bytes, int n) { return file->Write(bytes, n) == n; }

Header MakeHeader(const K7Bitmap& bitmap, int bits, int64_t rowBytes) {
  const int colors = bitmap.PaletteCount();
  const int offset = k7raster::BMP_FILE_HEADER + k7raster::BMP_INFO_HEADER + 4 * colors;
  const int64_t imageBytes = rowBytes * bitmap.Height();
  Header header;
  header.Bytes("BM", 2);
  header.Word32(offset + imageBytes);
  header.Word32(0);
  header.Word32(offset);

  header.Word32(k7raster::BMP_INFO_HEADER);
  header.Word32(bitmap.Width());
  header.Word32(bitmap.Height());
  header.Word16(1);  // planes
  header.Word16(bits);
  header.Word32(0);  // not compressed
  header.Word32(imageBytes);
  header.Word32(0);  // pixels a metre
  header.Word32(0);
  header.Word32(colors);
  header.Word32(0);  // important colours
  for (int i = 0; i < colors; ++i) header.Word32(bitmap.GetPaletteEntry(i).BGR());
  return header;
}

bool WriteRows(K7File* file, const K7Bitmap& bitmap) {
  for (int y = bitmap.Height() - 1; y >= 0; --y)
    if (!Write(file, bitmap.Row(y), bitmap.RowBytes())) return false;
  return true;
}

// Without the alpha. Only true colour of 32 bits comes here.
int WriteRows24(K7File* file, const K7Bitmap& bitmap, int rowBytes) {
  k7read::Block row;
  if (!row.Alloc(rowBytes)) return K7_ERR_MEMORY;
  std::memset(row.Bytes(), 0, row.Size());
  for (int y = bitmap.Height() - 1; y >= 0; --y) {
    const uint8_t* from = bitmap.Row(y);
    unsigned char* to = row.Bytes();
    for (int x = 0; x < bitmap.Width(); ++x, from += 4, to += 3) std::memcpy(to, from, 3);
    if (!Write(file, row.Bytes(), rowBytes)) return K7_ERR_FILE_IO;
  }
  return 0;
}

}  // namespace

int K7Bitmap::WriteBMP(const char* path, bool to24) const {
  if (!path) return K7_ERR_BAD_ARGUMENT;
  if (IsEmpty()) return K7_ERR_BITMAP;
  K7File* opened = nullptr;
  if (const int err = k7raster::Open(path, "wb", opened)) return err;
  const std::unique_ptr<K7File> file(opened);
  const bool narrow = to24 && m_bits == 32;
  const int rowBytes = narrow ? (m_width * 3 + 3) / 4 * 4 : m_rowBytes;
  const Header header = MakeHeader(*this, narrow ? 24 : m_bits, rowBytes);
  if (!Write(opened, header.Data(), header.Size())) return K7_ERR_FILE_IO;
  if (narrow) return WriteRows24(opened, *this, rowBytes);
  // What has a palette lies in memory as in the file.
  const bool written = m_bits <= 8 ? Write(opened, m_data, m_rowBytes * m_height) : WriteRows(opened, *this);
  return written ? 0 : K7_ERR_FILE_IO;
}
