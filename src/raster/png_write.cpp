#include "raster/load.h"
#include "raster/png_memory.h"

#include <csetjmp>
#include <memory>

namespace {

// What libpng writes. It leaves by longjmp, past functions that hold nothing.
struct PngWriter {
  k7raster::PngMemory memory;
  const K7Bitmap* bitmap = nullptr;
  K7File* file = nullptr;
  png_structp png = nullptr;
  png_infop info = nullptr;
};

void Fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void Warn(png_structp, png_const_charp) {}

void PutBytes(png_structp png, png_bytep bytes, size_t n) {
  const PngWriter& writer = *static_cast<PngWriter*>(png_get_io_ptr(png));
  const int count = static_cast<int>(n);
  if (writer.file->Write(bytes, count) != count) png_error(png, "disk full");
}

void Flush(png_structp) {}

void WritePalette(const PngWriter& writer) {
  png_color colors[256] = {};
  png_byte alphas[256] = {};
  int alphaCount = 0;
  const int count = writer.bitmap->PaletteCount();
  for (int i = 0; i < count; ++i) {
    const K7Color color = writer.bitmap->GetPaletteEntry(i);
    colors[i] = {color.R(), color.G(), color.B()};
    alphas[i] = i == writer.bitmap->GetTransparentPixel() ? uint8_t{0} : color.A();
    if (alphas[i] < 255) alphaCount = i + 1;
  }
  png_set_PLTE(writer.png, writer.info, colors, count);
  if (alphaCount > 0) png_set_tRNS(writer.png, writer.info, alphas, alphaCount, nullptr);
}

void WriteTransparentColor(const PngWriter& writer) {
  const int key = writer.bitmap->GetTransparentPixel();
  if (key < 0) return;
  const K7Color color(static_cast<uint32_t>(key));
  png_color_16 clear = {};
  clear.red = color.R();
  clear.green = color.G();
  clear.blue = color.B();
  png_set_tRNS(writer.png, writer.info, nullptr, 0, &clear);
}

void WriteImage(const PngWriter& writer) {
  const K7Bitmap& bitmap = *writer.bitmap;
  const int bits = bitmap.BitsPerPixel();
  const int type = bits <= 8 ? PNG_COLOR_TYPE_PALETTE : bits == 24 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA;
  png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(bitmap.Width()),
               static_cast<png_uint_32>(bitmap.Height()), bits <= 8 ? bits : 8, type, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (bits <= 8)
    WritePalette(writer);
  else if (bits == 24)
    WriteTransparentColor(writer);
  png_write_info(writer.png, writer.info);
  if (bits > 8) png_set_bgr(writer.png);
  for (int y = 0; y < bitmap.Height(); ++y) png_write_row(writer.png, bitmap.Row(y));
  png_write_end(writer.png, nullptr);
}

bool Run(PngWriter& writer) {
  if (setjmp(png_jmpbuf(writer.png))) return false;
  WriteImage(writer);
  return true;
}

int Encode(const K7Bitmap& bitmap, K7File* file) {
  PngWriter writer{{}, &bitmap, file};
  writer.png = png_create_write_struct_2(PNG_LIBPNG_VER_STRING, nullptr, Fail, Warn, &writer.memory,
                                         k7raster::PngAllocate, k7raster::PngFree);
  if (writer.png) writer.info = png_create_info_struct(writer.png);
  bool done = false;
  if (writer.info) {
    png_set_write_fn(writer.png, &writer, PutBytes, Flush);
    done = Run(writer);
  }
  png_destroy_write_struct(&writer.png, &writer.info);
  if (done) return 0;
  return writer.memory.ranOut ? K7_ERR_MEMORY : K7_ERR_FILE_IO;
}

}  // namespace

int K7Bitmap::WritePNG(const char* path) const {
  if (!path) return K7_ERR_BAD_ARGUMENT;
  if (IsEmpty()) return K7_ERR_BITMAP;
  K7Bitmap plain;
  const K7Bitmap* image = this;
  // PNG has no transparent colour beside an alpha.
  if (m_bits == 32 && m_transparent >= 0) {
    if (const int err = GenTransparent(plain)) return err;
    image = &plain;
  }
  K7File* opened = nullptr;
  if (const int err = k7raster::Open(path, "wb", opened)) return err;
  const std::unique_ptr<K7File> file(opened);
  return Encode(*image, opened);
}
