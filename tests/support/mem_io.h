// A file system in memory: files served from byte vectors, for tests and fuzz targets that need no disk.
#pragma once

#include <k7/io/file.h>
#include <k7/io/io.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

/// A stream over bytes that the file system keeps; "w" empties them, "a" starts at their end.
class MemFile : public K7File {
 public:
  MemFile(std::shared_ptr<Bytes> bytes, const char* mode) : m_bytes(std::move(bytes)) {
    if (!m_bytes) return;
    if (mode[0] == 'w') m_bytes->clear();
    if (mode[0] == 'a') m_pos = m_bytes->size();
  }

  bool IsValid() override { return m_bytes != nullptr; }
  bool Open(const char*, const char*) override { return false; }
  void Close() override { m_bytes.reset(); }

  bool ReadLine(char* buf, int size) override {
    int n = 0;
    char c = 0;
    while (n + 1 < size && c != '\n' && Read(&c, 1) == 1) buf[n++] = c;
    buf[n] = 0;
    if (n > 0 && buf[n - 1] == '\n') buf[n - 1] = 0;
    return n > 0;
  }

  bool WriteLine(const char* text) override {
    std::string line;
    for (; *text; ++text) {
      line += *text;
      if (text[0] == '%' && text[1] == '%') ++text;
    }
    const int n = static_cast<int>(line.size());
    return Write(line.data(), n) == n;
  }

  int Read(void* buf, int n) override {
    if (!m_bytes || m_pos >= m_bytes->size() || n <= 0) return 0;
    const size_t count = std::min(static_cast<size_t>(n), m_bytes->size() - m_pos);
    std::memcpy(buf, m_bytes->data() + m_pos, count);
    m_pos += count;
    return static_cast<int>(count);
  }

  int Write(const void* buf, int n) override {
    if (!m_bytes || n <= 0) return 0;
    const unsigned char* p = static_cast<const unsigned char*>(buf);
    const size_t count = std::min(static_cast<size_t>(n), room > m_pos ? room - m_pos : 0);
    if (m_bytes->size() < m_pos + count) m_bytes->resize(m_pos + count);
    std::copy(p, p + count, m_bytes->begin() + static_cast<std::ptrdiff_t>(m_pos));
    m_pos += count;
    return static_cast<int>(count);
  }

  bool Seek(int pos) override {
    if (m_bytes) m_pos = pos < 0 ? m_bytes->size() : static_cast<size_t>(pos);
    return IsValid();
  }

  int Tell() override { return m_bytes ? static_cast<int>(m_pos) : -1; }
  void Flush() override {}

  size_t room = SIZE_MAX;  // bytes that fit before the disk is full

 private:
  std::shared_ptr<Bytes> m_bytes;
  size_t m_pos = 0;
};

/// Files by path. Reading needs a file that was put there; writing makes one.
class MemIO : public K7IO {
 public:
  K7File* CreateFileX(const char* path, const char* mode) override {
    auto* file = new (std::nothrow) MemFile(Find(path, mode), mode);
    if (file) file->room = room;
    return file;
  }
  void FindFiles(const char*, K7StrArray& out) override {
    for (const auto& [path, bytes] : files) out += path.c_str();
  }
  bool DeleteFileX(const char* path) override { return files.erase(path) > 0; }

  void Put(const char* path, Bytes bytes) { files[path] = std::make_shared<Bytes>(std::move(bytes)); }
  void Put(const char* path, const std::string& text) { Put(path, Bytes(text.begin(), text.end())); }
  Bytes Get(const char* path) const {
    const auto found = files.find(path);
    return found == files.end() ? Bytes() : *found->second;
  }
  std::string Text(const char* path) const {
    const Bytes bytes = Get(path);
    return {bytes.begin(), bytes.end()};
  }

  std::map<std::string, std::shared_ptr<Bytes>> files;
  size_t room = SIZE_MAX;

 protected:
  /// The bytes that a stream is opened over; null for one that reads and finds none.
  std::shared_ptr<Bytes> Find(const char* path, const char* mode) {
    if (mode[0] != 'r') files.try_emplace(path, std::make_shared<Bytes>());
    const auto found = files.find(path);
    return found == files.end() ? nullptr : found->second;
  }
};

/// Reading its files answers `result`, whatever was asked for, and brings as many bytes as that says.
class AnsweringIO : public MemIO {
 public:
  K7File* CreateFileX(const char* path, const char* mode) override {
    struct File : MemFile {
      File(std::shared_ptr<Bytes> bytes, const char* mode, int n) : MemFile(bytes, mode), answer(n) {}
      int Read(void* buf, int n) override { return MemFile::Read(buf, std::min(answer, n)), answer; }
      const int answer;
    };
    return new File(Find(path, mode), mode, result);
  }
  int result = 0;
};

/// Installs a file system for the length of a scope and leaves the library without one.
class ScopedIO {
 public:
  explicit ScopedIO(K7IO* io) { K7IO::SetInst(io); }
  ~ScopedIO() { K7IO::SetInst(nullptr); }
  ScopedIO(const ScopedIO&) = delete;
  ScopedIO& operator=(const ScopedIO&) = delete;
};
