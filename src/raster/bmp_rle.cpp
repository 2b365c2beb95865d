#include "raster/bmp_rle.h"

#include <algorithm>

namespace {

// Where the next pixel goes. Runs stop at the end of their row.
class Pen {
 public:
  explicit Pen(K7Bitmap& bitmap) : m_bitmap(bitmap), m_y(bitmap.Height() - 1), m_row(bitmap.Row(m_y)) {}

  bool IsBehind() const { return m_y < 0; }
  void Move(int right, int up) {
    m_x = std::min(m_x + right, m_bitmap.Width());
    m_y -= up;
    m_row = m_bitmap.Row(m_y);
  }
  void EndLine() { Move(-m_x, 1); }
  void Put(int index) {
    if (m_x >= m_bitmap.Width()) return;
    Store(index);
    ++m_x;
  }
  bool IsNarrow() const { return m_bitmap.BitsPerPixel() == 4; }

 private:
  void Store(int index) {
    uint8_t& byte = m_row[IsNarrow() ? m_x / 2 : m_x];
    if (!IsNarrow())
      byte = static_cast<uint8_t>(index);
    else if (m_x % 2)
      byte = static_cast<uint8_t>((byte & 0xF0) | index);
    else
      byte = static_cast<uint8_t>((byte & 0x0F) | index << 4);
  }

  K7Bitmap& m_bitmap;
  int m_x = 0;
  int m_y;
  uint8_t* m_row;
};

// Pixel `i` of a run: of 4 bits, two in a byte in turn.
int IndexOf(const Pen& pen, const unsigned char* bytes, int i) {
  if (!pen.IsNarrow()) return bytes[i];
  return i % 2 ? bytes[i / 2] & 15 : bytes[i / 2] >> 4;
}

void PutRun(Pen& pen, int count, unsigned char value) {
  for (int i = 0; i < count; ++i) pen.Put(IndexOf(pen, &value, pen.IsNarrow() ? i % 2 : 0));
}

// Pixels as they are, padded to an even number of bytes.
bool PutLiteral(Pen& pen, k7read::Cursor& in, int count) {
  const size_t bytes = static_cast<size_t>(pen.IsNarrow() ? (count + 1) / 2 : count);
  const unsigned char* const from = in.Skip((bytes + 1) / 2 * 2);
  if (!from) return false;
  for (int i = 0; i < count; ++i) pen.Put(IndexOf(pen, from, i));
  return true;
}

}  // namespace

int k7raster::DecodeRuns(k7read::Cursor& in, K7Bitmap& bitmap) {
  enum { END_OF_LINE = 0, END_OF_BITMAP = 1, DELTA = 2 };
  Pen pen(bitmap);
  while (!pen.IsBehind()) {
    const unsigned char* const code = in.Skip(2);
    if (!code) return K7_ERR_INVALID_DATA;
    if (code[0] > 0) {
      PutRun(pen, code[0], code[1]);
    } else if (code[1] == END_OF_LINE) {
      pen.EndLine();
    } else if (code[1] == END_OF_BITMAP) {
      return 0;
    } else if (code[1] == DELTA) {
      const unsigned char* const delta = in.Skip(2);
      if (!delta) return K7_ERR_INVALID_DATA;
      pen.Move(delta[0], delta[1]);
    } else if (!PutLiteral(pen, in, code[1])) {
      return K7_ERR_INVALID_DATA;
    }
  }
  return 0;
}
