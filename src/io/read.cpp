#include "io/read.h"

#include <cstdlib>
#include <utility>

namespace {

constexpr int64_t SMALL = 65536;

}  // namespace

int64_t k7read::BytesLeft(K7File* file) {
  const int pos = file->Tell();
  if (pos < 0 || !file->Seek(-1)) return INT64_MIN;
  const int end = file->Tell();
  file->Seek(pos);
  return end < 0 ? INT64_MIN : int64_t{end} - pos;
}

bool k7read::Holds(K7File* file, int64_t size) { return size <= SMALL || size <= BytesLeft(file); }

void k7read::SkipWithin(K7File* file, int64_t size) {
  if (size > 0 && size <= BytesLeft(file)) file->Seek(static_cast<int>(file->Tell() + size));
}

k7read::Block::~Block() { std::free(m_bytes); }

bool k7read::Block::Alloc(int64_t size) {
  std::free(m_bytes);
  m_size = 0;
  m_bytes = static_cast<unsigned char*>(std::malloc(static_cast<size_t>(size > 0 ? size : 1)));
  if (m_bytes) m_size = static_cast<size_t>(size);
  return m_bytes != nullptr;
}

int k7read::Block::ReadFile(K7File* file) {
  file->Seek(0);
  const int64_t size = BytesLeft(file);
  if (size < 0) return K7_ERR_FILE_IO;
  if (!Alloc(size + 1)) return K7_ERR_MEMORY;
  m_bytes[--m_size] = 0;
  return size > 0 ? Exact(file, m_bytes, static_cast<int>(size)) : 0;
}

char* k7read::Block::Release() {
  m_size = 0;
  return reinterpret_cast<char*>(std::exchange(m_bytes, nullptr));
}
