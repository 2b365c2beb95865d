#include "raster/load.h"
#include "raster/png_memory.h"

#include <algorithm>
#include <climits>
#include <csetjmp>
#include <memory>

namespace {

// What libpng reads from and decodes to. It leaves by longjmp, past functions that hold nothing. Files of
// noise are large: they come piece by piece, into memory that is warm.
struct PngReader {
  k7raster::PngMemory memory;
  K7File* file = nullptr;
  int64_t left = 0;  // bytes of the file
  K7Bitmap* bitmap = nullptr;
  png_structp png = nullptr;
  png_infop info = nullptr;
  int err = K7_ERR_INVALID_DATA;  // of whatever ends the reading now
};

void Fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void Warn(png_structp, png_const_charp) {}

void TakeBytes(png_structp png, png_bytep to, size_t n) {
  PngReader& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
  if (n == 0) return;
  if (n > INT_MAX || static_cast<int64_t>(n) > reader.left) png_error(png, "cut short");
  reader.left -= static_cast<int64_t>(n);
  if (const int err = k7read::Exact(reader.file, to, static_cast<int>(n))) {
    reader.err = err;
    png_error(png, "not read");
  }
}

// Greys of up to 8 bits are a palette of as many.
void SetGreys(PngReader& reader, int depth) {
  const int top = (1 << depth) - 1;
  for (int i = 0; i <= top; ++i) {
    const uint8_t grey = static_cast<uint8_t>(i * 255 / top);
    reader.bitmap->SetPaletteEntry(i, K7Color(grey, grey, grey));
  }
  png_color_16p clear = nullptr;
  if (!png_get_tRNS(reader.png, reader.info, nullptr, nullptr, &clear) || !clear || clear->gray > top) return;
  K7Color color = reader.bitmap->GetPaletteEntry(clear->gray);
  reader.bitmap->SetPaletteEntry(clear->gray, K7Color(color.R(), color.G(), color.B(), 0));
  reader.bitmap->SetTransparentPixel(clear->gray);
}

void SetPalette(PngReader& reader) {
  png_colorp colors = nullptr;
  png_bytep alphas = nullptr;
  int count = 0;
  int alphaCount = 0;
  if (!png_get_PLTE(reader.png, reader.info, &colors, &count)) return;
  png_get_tRNS(reader.png, reader.info, &alphas, &alphaCount, nullptr);
  for (int i = 0; i < count; ++i) {
    const uint8_t alpha = alphas && i < alphaCount ? alphas[i] : 255;
    reader.bitmap->SetPaletteEntry(i, K7Color(colors[i].red, colors[i].green, colors[i].blue, alpha));
    if (alpha == 0 && reader.bitmap->GetTransparentPixel() < 0) reader.bitmap->SetTransparentPixel(i);
  }
}

// Asks libpng for rows as the bitmap has them. Answers its bits.
int ChooseForm(PngReader& reader, int depth, int type) {
  const png_structp png = reader.png;
  if (depth == 16) png_set_scale_16(png);
  if (type == PNG_COLOR_TYPE_PALETTE || (type == PNG_COLOR_TYPE_GRAY && depth <= 8)) {
    png_set_packing(png);
    return 8;
  }
  const bool cleared = png_get_valid(png, reader.info, PNG_INFO_tRNS) != 0;
  if (type == PNG_COLOR_TYPE_GRAY && !cleared) return 8;
  if (cleared) png_set_tRNS_to_alpha(png);
  if (type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png);
  png_set_bgr(png);
  return cleared || (type & PNG_COLOR_MASK_ALPHA) ? 32 : 24;
}

void ReadImage(PngReader& reader) {
  const png_structp png = reader.png;
  png_read_info(png, reader.info);
  const int depth = png_get_bit_depth(png, reader.info);
  const int type = png_get_color_type(png, reader.info);
  const int width = static_cast<int>(png_get_image_width(png, reader.info));
  const int height = static_cast<int>(png_get_image_height(png, reader.info));
  const int bits = ChooseForm(reader, depth, type);
  if (const int err = reader.bitmap->Create(width, height, bits)) {
    reader.err = err;
    png_error(png, "no bitmap");
  }
  if (type == PNG_COLOR_TYPE_PALETTE)
    SetPalette(reader);
  else if (bits == 8)
    SetGreys(reader, std::min(depth, 8));
  const int passes = png_set_interlace_handling(png);
  png_read_update_info(png, reader.info);
  if (png_get_rowbytes(png, reader.info) > static_cast<size_t>(reader.bitmap->RowBytes()))
    png_error(png, "rows do not fit");
  for (int pass = 0; pass < passes; ++pass)
    for (int y = 0; y < height; ++y) png_read_row(png, reader.bitmap->Row(y), nullptr);
  png_read_end(png, nullptr);
}

bool Run(PngReader& reader) {
  if (setjmp(png_jmpbuf(reader.png))) return false;
  ReadImage(reader);
  return true;
}

int DecodePNG(K7File* file, K7Bitmap& bitmap) {
  PngReader reader{{}, file, k7read::BytesLeft(file), &bitmap};
  if (reader.left < 0) return K7_ERR_FILE_IO;
  reader.png = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, nullptr, Fail, Warn, &reader.memory,
                                        k7raster::PngAllocate, k7raster::PngFree);
  if (reader.png) reader.info = png_create_info_struct(reader.png);
  bool done = false;
  if (reader.info) {
    png_set_read_fn(reader.png, &reader, TakeBytes);
    done = Run(reader);
  }
  png_destroy_read_struct(&reader.png, &reader.info, nullptr);
  if (done) return 0;
  return reader.memory.ranOut ? int{K7_ERR_MEMORY} : reader.err;
}

}  // namespace

int K7Bitmap::ReadPNG(const char* path) {
  Clear();
  K7File* opened = nullptr;
  if (const int err = k7raster::Open(path, "rb", opened)) return err;
  const std::unique_ptr<K7File> file(opened);
  const int err = DecodePNG(opened, *this);
  if (err != 0) Clear();
  return err;
}
