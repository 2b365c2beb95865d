// Image files of any bytes, by what they begin with. The corpus has files of every format.

#include "input.h"
#include "support/mem_io.h"

#include <k7/raster.h>

#include <cstdint>

namespace {

void Walk(const K7Bitmap& bitmap) {
  Require(int64_t{bitmap.Width()} * bitmap.Height() <= K7Bitmap::MaxPixels());
  K7Bitmap mask, image, again;
  Require(bitmap.GenMask(mask) == 0 && bitmap.GenTransparent(image) == 0);
  Require(bitmap.WriteBMP("bmp", false) == 0 && again.Read("bmp") == 0);
  for (int y = 0; y < bitmap.Height(); ++y)
    for (int x = 0; x < bitmap.Width(); ++x) {
      Require(mask.GetValue(x, y) == (image.GetPixel(x, y).A() >= 128 ? 1 : 0));
      Require(again.GetPixel(x, y).BGR() == bitmap.GetPixel(x, y).BGR());
    }
  Require(bitmap.WritePNG("png") == 0 && again.Read("png") == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  K7Bitmap::SetMaxPixels(1 << 18);
  MemIO io;
  const ScopedIO scope(&io);
  io.Put("file", Bytes(data, data + size));
  K7Bitmap bitmap;
  for (const int err : {bitmap.Read("file"), bitmap.ReadGIF("file", 0), bitmap.ReadBMP("file", 0)})
    Require(err <= 0);
  if (bitmap.Read("file") == 0)
    Walk(bitmap);
  else
    Require(bitmap.IsEmpty());
  return 0;
}
