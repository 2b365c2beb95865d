#include "raster/gif_lzw.h"
#include "raster/load.h"

#include <algorithm>
#include <cstring>

namespace {

using k7read::Cursor;

constexpr uint8_t TRAILER = ';';
constexpr uint8_t EXTENSION = '!';
constexpr uint8_t IMAGE = ',';
constexpr uint8_t GRAPHIC_CONTROL = 0xF9;
constexpr int FIRST_ROW[] = {0, 4, 2, 1};
constexpr int ROW_STEP[] = {8, 8, 4, 2};

// As stored: blue, green, red, 0.
struct ColorTable {
  uint8_t entries[256][4] = {};
};

struct Image {
  uint16_t width = 0;
  uint16_t height = 0;
  bool interlaced = false;
  ColorTable table;
};

bool TakeTable(Cursor& in, int count, ColorTable& table) {
  table = {};
  const unsigned char* rgb = in.Skip(static_cast<size_t>(count) * 3);
  if (!rgb) return false;
  for (int i = 0; i < count; ++i, rgb += 3)
    for (int c = 0; c < 3; ++c) table.entries[i][c] = rgb[2 - c];
  return true;
}

// A sub-block with its length; null at the terminator and where the file ends.
const unsigned char* TakeSubBlock(Cursor& in, uint8_t& length) {
  in.Little(length);
  return length ? in.Skip(length) : nullptr;
}

bool SkipSubBlocks(Cursor& in) {
  uint8_t length = 0;
  while (TakeSubBlock(in, length)) {
  }
  return in.IsWhole();
}

bool TakeExtension(Cursor& in, int& transparent) {
  uint8_t label = 0;
  in.Little(label);
  if (label == GRAPHIC_CONTROL) {
    // Its flags, a delay, and the index that bit 0 of the flags makes transparent.
    uint8_t length = 0;
    const unsigned char* const control = TakeSubBlock(in, length);
    if (!control || length < 4) return false;
    if (control[0] & 1) transparent = control[3];
  }
  return SkipSubBlocks(in);
}

bool TakeImage(Cursor& in, const ColorTable& global, Image& image) {
  uint16_t corner[2];
  uint8_t flags = 0;
  in.Little(corner);
  in.Little(image.width);
  in.Little(image.height);
  in.Little(flags);
  image.interlaced = (flags & 0x40) != 0;
  if (!(flags & 0x80))
    image.table = global;
  else if (!TakeTable(in, 1 << ((flags & 7) + 1), image.table))
    return false;
  return in.IsWhole() && image.width > 0 && image.height > 0;
}

// The sub-blocks are joined where they lie: what has been read of the file is not needed again.
int DecodePixels(Cursor& in, unsigned char* file, const Image& image, k7raster::GifPixels& pixels) {
  const int64_t count = int64_t{image.width} * image.height;
  if (count > K7Bitmap::MaxPixels()) return K7_ERR_BUFFER_EXCEEDED;
  uint8_t minBits = 0;
  in.Little(minBits);
  size_t size = 0;
  uint8_t length = 0;
  while (const unsigned char* const block = TakeSubBlock(in, length)) {
    std::memmove(file + size, block, length);
    size += length;
  }
  if (!in.IsWhole()) return K7_ERR_INVALID_DATA;
  return pixels.Decode(file, size, minBits, static_cast<size_t>(count));
}

// Pixels that an early end code leaves out stay 0. A short file may have millions of them in each of many
// images, so none is touched before its image is the one that is wanted.
void StoreRows(const Image& image, const k7raster::GifPixels& pixels, K7Bitmap& bitmap) {
  const uint8_t* from = pixels.Data();
  size_t left = pixels.Count();
  const auto store = [&](int y) {
    const size_t count = std::min<size_t>(image.width, left);
    std::memcpy(bitmap.Row(y), from, count);
    from += count;
    left -= count;
  };
  if (!image.interlaced) {
    for (int y = 0; y < image.height; ++y) store(y);
    return;
  }
  for (int pass = 0; pass < 4; ++pass)
    for (int y = FIRST_ROW[pass]; y < image.height; y += ROW_STEP[pass]) store(y);
}

int MakeBitmap(const Image& image, const k7raster::GifPixels& pixels, int transparent, K7Bitmap& bitmap) {
  if (const int err = bitmap.Create(image.width, image.height, 8)) return err;
  for (int i = 0; i < 256; ++i) {
    const uint8_t* const bgr = image.table.entries[i];
    bitmap.SetPaletteEntry(i, K7Color(bgr[2], bgr[1], bgr[0]));
  }
  StoreRows(image, pixels, bitmap);
  bitmap.SetTransparentPixel(transparent);
  return 0;
}

bool TakeHeader(Cursor& in, ColorTable& global) {
  const unsigned char* const signature = in.Skip(6);
  const unsigned char* const screen = in.Skip(7);
  if (!signature || !screen) return false;
  if (std::memcmp(signature, "GIF87a", 6) != 0 && std::memcmp(signature, "GIF89a", 6) != 0) return false;
  const int flags = screen[4];
  return !(flags & 0x80) || TakeTable(in, 2 << (flags & 7), global);
}

int DecodeGIF(k7read::Block& file, int wanted, K7Bitmap& bitmap) {
  Cursor in(file.Bytes(), file.Size());
  ColorTable global;
  if (!TakeHeader(in, global)) return K7_ERR_INVALID_DATA;
  int transparent = -1;
  // Extensions and images count alike, as callers that ask for block 1 rely on.
  for (int block = 0;; ++block) {
    uint8_t introducer = TRAILER;
    in.Little(introducer);
    if (introducer == EXTENSION) {
      if (!TakeExtension(in, transparent)) return K7_ERR_INVALID_DATA;
      continue;
    }
    Image image;
    if (introducer != IMAGE || !TakeImage(in, global, image)) return K7_ERR_INVALID_DATA;
    k7raster::GifPixels pixels;
    if (const int err = DecodePixels(in, file.Bytes(), image, pixels)) return err;
    if (block != wanted) continue;
    // The file is no longer needed, and large ones make room for the bitmap.
    file.Alloc(0);
    return MakeBitmap(image, pixels, transparent, bitmap);
  }
}

}  // namespace

int K7Bitmap::ReadGIF(const char* path, int block) { return k7raster::Load(path, DecodeGIF, block, *this); }
