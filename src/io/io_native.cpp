#include <k7/io/io_native.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>

#include "io/os.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// Whether `path` is `folder` or lies below it; both as the system spells them.
bool IsWithin(const K7String& path, const K7String& folder) {
  const int n = folder.Len();
  if (n == 0 || path.Len() < n || std::strncmp(path, folder, static_cast<size_t>(n)) != 0) return false;
  return path.Len() == n || IsSeparator(folder[n - 1]) || IsSeparator(path[n]);
}

// A link to a folder in which it lies, be it by a folder that its path names or by where that really is: what
// is behind it has been listed. True also when memory is short.
bool LeadsUp(const K7String& link) {
  if (!k7os::IsLink(link)) return false;
  K7String target, folder, real;
  if (!k7os::FollowLinks(link, target)) return true;
  for (int i = link.Len() - 1; i >= 0; --i) {
    if (!IsSeparator(link[i])) continue;
    if (folder.Copy(link, i > 0 ? i : 1) <= 0 || !k7os::FollowLinks(folder, real) || IsWithin(real, target))
      return true;
  }
  return !IsSeparator(link[0]) && (!k7os::FollowLinks(".", real) || IsWithin(real, target));
}

}  // namespace

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
  m_stream = path && mode ? k7os::OpenStream(path, mode) : nullptr;
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
  // The text is a format without arguments: "%%" is a percent sign, and any other conversion, having nothing
  // to take, stands as it is.
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
  return static_cast<int>(k7os::ReadStream(m_stream, buf, static_cast<size_t>(n)));
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
  const int64_t pos = m_stream ? k7os::TellStream(m_stream) : -1;
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

void K7IOK7::FindFiles(const char* pattern, K7StrArray& out) {
  if (!pattern) return;
  K7StrArray names;
  k7os::ListDir(pattern, false, names);
  for (int i = 0; i < names.Count(); ++i) {
    const size_t length = std::strlen(names[i]);
    if (length > 0 && names[i][length - 1] == '~') continue;
    if (out += names[i]) return;
  }
}

void K7IOK7::FindDirs(const char* pattern, K7StrArray& out) {
  if (!pattern) return;
  K7StrArray names;
  k7os::ListDir(pattern, true, names);
  for (int i = 0; i < names.Count(); ++i) {
    if (std::strcmp(names[i], ".") == 0 || std::strcmp(names[i], "..") == 0) continue;
    if (out += names[i]) return;
  }
}

void K7IOK7::FindDirsRecur(const char* dir, K7StrArray& out, int depth) {
  static const int MAX_DEPTH = 10;
  if (!dir || depth > MAX_DEPTH) return;
  K7StrArray names;
  K7String path;
  // Cut short by a lack of memory, a path would be that of another folder.
  if (path.Create(dir) < 0 || (path += '*')) return;
  FindDirs(path, names);
  for (int i = 0; i < names.Count(); ++i) {
    if (path.Create(dir) < 0 || (path += names[i])) return;
    const bool leadsUp = LeadsUp(path);
    if ((path += '\\') || (out += path)) return;
    if (!leadsUp) FindDirsRecur(path, out, depth + 1);
  }
}

bool K7IOK7::DeleteFileX(const char* path) {
  const k7os::NativePath native(path);
  return native.Text() && k7os::DeleteFile(native.Text());
}

bool K7IOK7::ReadURL(const char* url, const char* localPath) {
  const K7LockGuard lock(m_mutex);
  if (!url || !localPath) return false;

  // The target is made with the first bytes that come, so that a server that cannot be reached leaves an
  // existing file alone.
  struct Target {
    const char* path;
    std::FILE* stream;
    bool Open() { return stream || (stream = k7os::OpenStream(path, "wb")); }
    static bool Deliver(void* context, const void* data, size_t size) {
      Target& target = *static_cast<Target*>(context);
      return target.Open() && std::fwrite(data, 1, size, target.stream) == size;
    }
  } target{localPath, nullptr};

  const bool fetched = k7os::FetchURL(m_internet, url, Target::Deliver, &target) && target.Open();
  if (!target.stream) return false;
  // A full disk may show itself only here, when the last buffer is written.
  const bool whole = std::fclose(target.stream) == 0 && fetched;
  if (!whole) DeleteFileX(localPath);
  return whole;
}

void* K7IOK7::LoadLibraryX(const char* file) {
  const k7os::NativePath native(file);
  return native.Text() ? k7os::OpenLibrary(native.Text()) : nullptr;
}

void* K7IOK7::GetSymbol(void* module, const char* name) {
  return module && name ? k7os::FindSymbol(module, name) : nullptr;
}

void K7IOK7::UnLoadLibrary(void* module) {
  if (module) k7os::CloseLibrary(module);
}

int K7IOK7::RetrieveRVXVersionString(const char* dir) {
  K7IO* const io = Inst();
  if (!io) return K7_ERR_INVALID_DATA;
  K7String path;
  if (path.Create(dir) < 0 || (path += "RVX.version")) return K7_ERR_MEMORY;
  K7File* const file = io->CreateFileX(path, "r");
  const bool read = file && file->IsValid() && file->ReadLine(m_version, sizeof m_version);
  delete file;
  return read ? 0 : K7_ERR_INVALID_DATA;
}

int K7IOK7::GetRVXVersionString(char* dst, int len) {
  if (dst && len > 0)
    std::memcpy(dst, m_version, std::min(static_cast<size_t>(len), std::strlen(m_version) + 1));
  return 0;
}
