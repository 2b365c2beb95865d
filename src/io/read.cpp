#include "io/read.h"

#include "foundation/alloc.h"

#include <cstdlib>
#include <utility>

namespace {

constexpr int64_t SMALL = 65536;

}  // namespace

int64_t k7read::BytesLeft(K7File* file) {
  const int pos = file->Tell();
  if (pos < 0 || !file->Seek(-1)) return INT64_MIN;
  const int end = file->Tell();
  return !file->Seek(pos) || end < 0 ? INT64_MIN : int64_t{end} - pos;
}

bool k7read::Holds(K7File* file, int64_t size) { return size <= SMALL || size <= BytesLeft(file); }

void k7read::SkipWithin(K7File* file, int64_t size) {
  if (size > 0 && size <= BytesLeft(file)) file->Seek(static_cast<int>(file->Tell() + size));
}

k7read::Block::~Block() { std::free(m_bytes); }

bool k7read::Block::Alloc(int64_t size) {
  std::free(m_bytes);
  m_size = 0;
  m_bytes = static_cast<unsigned char*>(ReallocArray(nullptr, size > 0 ? size : 1, 1));
  if (m_bytes) m_size = static_cast<size_t>(size);
  return m_bytes != nullptr;
}

int k7read::Block::AllocFor(K7File* file) {
  const int64_t size = file->Seek(0) ? BytesLeft(file) : INT64_MIN;
  if (size < 0) return K7_ERR_FILE_IO;
  if (!Alloc(size + 1)) return K7_ERR_MEMORY;
  m_bytes[--m_size] = 0;
  return static_cast<int>(size);
}

int k7read::Block::ReadFile(K7File* file) {
  const int size = AllocFor(file);
  return size > 0 ? Exact(file, m_bytes, size) : size;
}

int k7read::Block::ReadText(K7File* file) {
  const int size = AllocFor(file);
  if (size <= 0) return size;
  const int n = file->Read(m_bytes, size);
  if (n <= 0 || n > size) return K7_ERR_FILE_IO;
  m_size = static_cast<size_t>(n);
  m_bytes[n] = 0;
  return 0;
}

char* k7read::Block::Release() {
  m_size = 0;
  return reinterpret_cast<char*>(std::exchange(m_bytes, nullptr));
}
