#include "raster/load.h"

#include <k7/io/io.h>

#include <memory>

int k7raster::Open(const char* path, const char* mode, K7File*& file) {
  file = nullptr;
  if (!path) return K7_ERR_BAD_ARGUMENT;
  K7IO* const io = K7IO::Inst();
  std::unique_ptr<K7File> opened(io ? io->CreateFileX(path, mode) : nullptr);
  if (!opened) return K7_ERR_MEMORY;
  if (!opened->IsValid()) return K7_ERR_FILE_IO;
  file = opened.release();
  return 0;
}

int k7raster::Load(const char* path, Decoder decode, int option, K7Bitmap& bitmap) {
  bitmap.Clear();
  k7read::Block bytes;
  {
    K7File* file = nullptr;
    if (const int err = Open(path, "rb", file)) return err;
    const std::unique_ptr<K7File> owner(file);
    if (const int err = bytes.ReadFile(file)) return err;
  }
  const int err = decode(bytes, option, bitmap);
  if (err != 0) bitmap.Clear();
  return err;
}
