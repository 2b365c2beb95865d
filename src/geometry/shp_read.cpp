#include "geometry/shp_read.h"

namespace {

constexpr int64_t SMALL = 65536;

// The file's size, the position left where it was; negative for a file that cannot tell.
int FileSize(K7File* file, int pos) {
  if (pos < 0) return -1;
  file->Seek(-1);
  const int size = file->Tell();
  file->Seek(pos);
  return size;
}

}  // namespace

bool k7shp::FileHolds(K7File* file, int64_t size) {
  if (size <= SMALL) return true;
  const int pos = file->Tell();
  return size <= int64_t{FileSize(file, pos)} - pos;
}

void k7shp::SkipRest(K7File* file, int64_t size) {
  if (size <= 0) return;
  const int pos = file->Tell();
  const int end = FileSize(file, pos);
  if (size <= int64_t{end} - pos) file->Seek(static_cast<int>(pos + size));
}
