#include <k7/io/io_native.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include "io/os.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

K7FileK7::K7FileK7(const char* path, const char* mode) {
  if (path && mode) K7FileK7::Open(path, mode);
}

K7FileK7::~K7FileK7() { K7FileK7::Close(); }

bool K7FileK7::IsValid() {
  const K7LockGuard lock(m_mutex);
  return m_stream != nullptr;
}

bool K7FileK7::Open(const char* path, const char* mode) {
  const K7LockGuard lock(m_mutex);
  m_stream = nullptr;
  if (!path || !mode) return false;
  const k7os::NativePath native(path);
  if (native.Text()) m_stream = std::fopen(native.Text(), mode);
  return m_stream != nullptr;
}

void K7FileK7::Close() {
  const K7LockGuard lock(m_mutex);
  if (m_stream) std::fclose(m_stream);
  m_stream = nullptr;
}

bool K7FileK7::ReadLine(char* buf, int size) {
  const K7LockGuard lock(m_mutex);
  if (!m_stream || !buf || size < 1 || !std::fgets(buf, size, m_stream)) return false;
  const size_t length = std::strlen(buf);
  if (length > 0 && buf[length - 1] == '\n') buf[length - 1] = 0;
  return true;
}

bool K7FileK7::WriteLine(const char* text) {
  const K7LockGuard lock(m_mutex);
  if (!m_stream || !text) return false;
  // The text is a format without arguments: "%%" is a percent sign, and any other conversion, having nothing to
  // take, stands as it is.
  while (*text) {
    const char* const percent = std::strstr(text, "%%");
    const size_t length = percent ? static_cast<size_t>(percent + 1 - text) : std::strlen(text);
    if (std::fwrite(text, 1, length, m_stream) != length) return false;
    text += length + (percent ? 1 : 0);
  }
  return true;
}

int K7FileK7::Read(void* buf, int n) {
  const K7LockGuard lock(m_mutex);
  if (!m_stream || !buf || n <= 0) return 0;
  return static_cast<int>(std::fread(buf, 1, static_cast<size_t>(n), m_stream));
}

int K7FileK7::Write(const void* buf, int n) {
  const K7LockGuard lock(m_mutex);
  if (!m_stream || !buf || n <= 0) return 0;
  return static_cast<int>(std::fwrite(buf, 1, static_cast<size_t>(n), m_stream));
}

bool K7FileK7::Seek(int pos) {
  const K7LockGuard lock(m_mutex);
  if (!m_stream) return false;
  std::fseek(m_stream, pos < 0 ? 0 : pos, pos < 0 ? SEEK_END : SEEK_SET);
  return true;
}

int K7FileK7::Tell() {
  const K7LockGuard lock(m_mutex);
  const long pos = m_stream ? std::ftell(m_stream) : -1;
  return pos > INT32_MAX ? -1 : static_cast<int>(pos);
}

void K7FileK7::Flush() {
  const K7LockGuard lock(m_mutex);
  if (m_stream) std::fflush(m_stream);
}

K7IOK7::K7IOK7() : m_internet(k7os::OpenInternet()) { m_mutex.Initialize(); }

K7IOK7::~K7IOK7() { k7os::CloseInternet(m_internet); }

K7File* K7IOK7::CreateFileX(const char* path, const char* mode) {
  const K7LockGuard lock(m_mutex);
  return new (std::nothrow) K7FileK7(path, mode);
}
