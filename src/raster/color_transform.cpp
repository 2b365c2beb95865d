// Images made of other images, and changes of all their colours or rows.
#include <k7/foundation/error_string.h>
#include <k7/raster/bitmap.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// One of the three rows of a matrix, for a colour's components.
uint8_t Component(const double* row, const uint8_t* bgr) {
  const double value = row[0] * bgr[2] + row[1] * bgr[1] + row[2] * bgr[0] + row[3] + 0.5;
  // Sums of huge numbers may be no number, which is 0.
  if (value >= 255) return 255;
  return value > 0 ? static_cast<uint8_t>(value) : uint8_t{0};
}

void Transform(const double* matrix, uint8_t* bgr) {
  const uint8_t red = Component(matrix, bgr);
  const uint8_t green = Component(matrix + 4, bgr);
  const uint8_t blue = Component(matrix + 8, bgr);
  bgr[0] = blue;
  bgr[1] = green;
  bgr[2] = red;
}

// The colours of a row.
void GenRow(const K7Bitmap& bitmap, int y, const K7Color* palette, K7Color* to) {
  const uint8_t* from = bitmap.Row(y);
  const int width = bitmap.Width();
  switch (bitmap.BitsPerPixel()) {
    case 8:
      for (int x = 0; x < width; ++x) to[x] = palette[from[x]];
      break;
    case 24:
      for (int x = 0; x < width; ++x, from += 3) to[x] = K7Color(from[2], from[1], from[0]);
      break;
    case 32:
      std::memcpy(to, from, static_cast<size_t>(bitmap.RowBytes()));
      break;
    default:
      for (int x = 0; x < width; ++x) to[x] = palette[bitmap.GetValue(x, y)];
      break;
  }
}

}  // namespace

int K7Bitmap::Gen32bit(K7Bitmap& out) const { return Gen32bit(out, false); }

int K7Bitmap::GenTransparent(K7Bitmap& out) const { return Gen32bit(out, true); }

int K7Bitmap::Gen32bit(K7Bitmap& out, bool transparent) const {
  K7Bitmap made;
  int err = K7_ERR_BITMAP;
  if (!IsEmpty()) err = made.Create(m_width, m_height, 32);
  if (err != 0) {
    out.Clear();
    return err;
  }
  K7Color palette[256];
  std::copy(m_palette, m_palette + 256, palette);
  const bool keyed = transparent && m_transparent >= 0;
  if (keyed && m_bits <= 8) palette[m_transparent] = K7Color();
  for (int y = 0; y < m_height; ++y) GenRow(*this, y, palette, made.Colors() + int64_t{y} * m_width);
  if (keyed && m_bits > 8) {
    K7Color* const end = made.Colors() + int64_t{m_width} * m_height;
    const uint32_t key = static_cast<uint32_t>(m_transparent);
    std::replace_if(
        made.Colors(), end, [key](K7Color color) { return color.BGR() == key; }, K7Color());
  }
  out.Swap(made);
  return 0;
}

int K7Bitmap::GenMask(K7Bitmap& out) const {
  K7Bitmap colors;
  K7Bitmap made;
  int err = GenTransparent(colors);
  if (err == 0) err = made.Create(m_width, m_height, 1);
  if (err != 0) {
    out.Clear();
    return err;
  }
  made.SetPaletteEntry(1, K7Color(255, 255, 255));
  const K7Color* from = colors.Colors();
  for (int y = 0; y < m_height; ++y) {
    uint8_t* const row = made.Row(y);
    for (int x = 0; x < m_width; ++x, ++from)
      if (from->A() >= 128) row[x / 8] = static_cast<uint8_t>(row[x / 8] | 128 >> x % 8);
  }
  out.Swap(made);
  return 0;
}

int K7Bitmap::ColorTransform(const double* matrix) {
  if (IsEmpty()) return K7_ERR_BITMAP;
  if (!matrix || !std::all_of(matrix, matrix + 12, [](double v) { return std::isfinite(v); }))
    return K7_ERR_BAD_ARGUMENT;
  if (m_bits <= 8) {
    for (int i = 0; i < PaletteCount(); ++i) Transform(matrix, reinterpret_cast<uint8_t*>(&m_palette[i]));
    return 0;
  }
  for (int y = 0; y < m_height; ++y)
    for (int x = 0; x < m_width; ++x) Transform(matrix, Row(y) + int64_t{x} * m_bits / 8);
  if (m_transparent >= 0) {
    K7Color key(static_cast<uint32_t>(m_transparent));
    Transform(matrix, reinterpret_cast<uint8_t*>(&key));
    m_transparent = static_cast<int32_t>(key.BGR());
  }
  return 0;
}

void K7Bitmap::FlipVert() {
  for (int top = 0, bottom = m_height - 1; top < bottom; ++top, --bottom)
    std::swap_ranges(Row(top), Row(top) + m_rowBytes, Row(bottom));
}
