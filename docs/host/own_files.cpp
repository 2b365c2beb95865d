// A file system of the host's own: here texts that are part of the program. The library reads them as files.
#include <k7/core.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

class TextFile : public K7File {
 public:
  explicit TextFile(const char* text)
      : m_text(text), m_size(text ? static_cast<int>(std::strlen(text)) : 0) {}

  bool IsValid() override { return m_text != nullptr; }
  bool Open(const char*, const char*) override { return false; }
  void Close() override { m_text = nullptr; }
  int Read(void* buf, int n) override {
    const K7LockGuard lock(m_mutex);
    const int count = m_text ? std::clamp(m_size - m_pos, 0, std::max(n, 0)) : 0;
    if (count > 0) std::memcpy(buf, m_text + m_pos, static_cast<size_t>(count));
    m_pos += count;
    return count;
  }
  bool ReadLine(char* buf, int size) override {
    const K7LockGuard lock(m_mutex);
    int n = 0;
    bool any = false;
    for (char c; n + 1 < size && Read(&c, 1) == 1;) {
      any = true;
      if (c == '\n') break;
      buf[n++] = c;
    }
    if (size > 0) buf[n] = 0;
    return any;
  }
  int Write(const void*, int) override { return 0; }  // nothing here can be written
  bool WriteLine(const char*) override { return false; }
  bool Seek(int pos) override {
    const K7LockGuard lock(m_mutex);
    m_pos = pos < 0 ? m_size : pos;
    return IsValid();
  }
  int Tell() override { return m_text ? m_pos : -1; }
  void Flush() override {}

 private:
  const char* m_text;
  int m_size;
  int m_pos = 0;
};

class TextIO : public K7IO {
 public:
  K7File* CreateFileX(const char* path, const char* mode) override {
    const bool found = path && mode && mode[0] == 'r' && std::strcmp(path, "host.xml") == 0;
    return new (std::nothrow) TextFile(found ? OPTIONS : nullptr);
  }
  void FindFiles(const char*, K7StrArray& out) override { out += "host.xml"; }

 private:
  static constexpr const char* OPTIONS =
      "<Options>\n\t<TerrainCacheSize Group=\"Terrain\">48</TerrainCacheSize>\n</Options>\n";
};

}  // namespace

int main() {
  TextIO io;
  K7IO::SetInst(&io);  // before the library opens anything
  K7Options* const options = K7Options::Inst();
  const int missing = options ? options->Read("other.xml") : K7_ERR_MEMORY;
  const int code = options ? options->Read("host.xml") : K7_ERR_MEMORY;
  if (code == 0) std::printf("cache of %s MiB\n", options->GetValueByKey("TerrainCacheSize"));
  std::printf("other.xml: %s\n", K7ErrorString::ErrorString(missing));
  K7Options::Destroy();
  K7IO::SetInst(nullptr);  // this one stands on the stack
  return code == 0 ? 0 : 1;
}
