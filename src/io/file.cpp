#include <k7/io/file.h>

#include <k7/foundation/error_string.h>
#include <k7/io/io.h>

#include "foundation/forever.h"
#include "io/os.h"

#include <algorithm>
#include <bit>

// Files are little-endian, and fields are read straight into memory.
static_assert(std::endian::native == std::endian::little);

namespace {

// 0, the file's negative result, or K7_ERR_FILE_IO when nothing came.
int ReadField(K7File& file, K7Mutex& mutex, void* p, int n) {
  const K7LockGuard lock(mutex);
  const int result = file.Read(p, n);
  if (result < 0) return result;
  return result == 0 ? K7_ERR_FILE_IO : 0;
}

void ReverseBytes(void* p, int n) {
  char* const bytes = static_cast<char*>(p);
  std::reverse(bytes, bytes + n);
}

}  // namespace

K7File::~K7File() = default;

int K7File::Read16(void* p) { return ReadField(*this, m_mutex, p, 2); }
int K7File::Read32(void* p) { return ReadField(*this, m_mutex, p, 4); }
int K7File::Read64(void* p) { return ReadField(*this, m_mutex, p, 8); }

void K7File::ByteSwap16(void* p) { ReverseBytes(p, 2); }
void K7File::ByteSwap32(void* p) { ReverseBytes(p, 4); }
void K7File::ByteSwap64(void* p) { ReverseBytes(p, 8); }

bool K7File::FilePathExists(const char* path) {
  static K7Forever<K7Mutex> mutex;
  const K7LockGuard lock(*mutex);
  return k7os::IsReadable(path);
}
