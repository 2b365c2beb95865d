// What the readers of shapefile records share.
#pragma once

#include <k7/io/file.h>

#include <cstddef>
#include <cstdint>

namespace k7shp {

inline bool ReadExact(K7File* file, void* p, int n) { return file->Read(p, n) == n; }

/// False when the file ends within the next `size` bytes, or cannot tell. Sizes of no weight are believed:
/// reading will show, and the question costs a stdio stream its buffer.
bool FileHolds(K7File* file, int64_t size);

/// Skips `size` bytes that a record states behind its shape, unless the file ends within them: then the
/// record's length is wrong, and the next record is where the shape ended.
void SkipRest(K7File* file, int64_t size);

/// Bytes that a content length, in 16-bit words, leaves behind the shape type and `used` further bytes.
/// Negative when it has no room for these, and so is no content length at all.
inline int64_t RoomBehind(int contentLength, int used) { return int64_t{contentLength} * 2 - 4 - used; }

}  // namespace k7shp
