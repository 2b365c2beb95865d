#include "io/os.h"

#include <k7/foundation/array.h>
#include <k7/foundation/string.h>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <wininet.h>

#include <io.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#undef DeleteFile
#undef ReplaceFile

namespace {

int CompareNames(const void* a, const void* b) {
  const char* const left = *static_cast<const char* const*>(a);
  const char* const right = *static_cast<const char* const*>(b);
  const int order = K7String::IComp(left, right);
  return order ? order : std::strcmp(left, right);
}

}  // namespace

bool k7os::LocalTime(int64_t seconds, std::tm& fields) {
  const __time64_t moment = seconds;
  return _localtime64_s(&fields, &moment) == 0;
}

bool k7os::MakeTime(std::tm& fields, int64_t& seconds) {
  // Its -1 is a moment too, but only success sets the weekday.
  fields.tm_wday = -1;
  const __time64_t moment = _mktime64(&fields);
  if (fields.tm_wday < 0) return false;
  seconds = moment;
  return true;
}

k7os::NativePath::NativePath(const char* path) : m_text(K7String::Dup(path)) {}

k7os::NativePath::~NativePath() { std::free(m_text); }

void k7os::ListDir(const char* pattern, bool dirsOnly, K7StrArray& out) {
  WIN32_FIND_DATAA data;
  const HANDLE search = dirsOnly ? FindFirstFileExA(pattern, FindExInfoStandard, &data,
                                                    FindExSearchLimitToDirectories, nullptr, 0)
                                 : FindFirstFileA(pattern, &data);
  if (search == INVALID_HANDLE_VALUE) return;
  K7StrArray names;
  do {
    // Limiting the search to directories is only advice to the file system.
    if (dirsOnly && !(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) continue;
    if (names += data.cFileName) break;
  } while (FindNextFileA(search, &data));
  FindClose(search);
  names.QuickSort(CompareNames);
  for (int i = 0; i < names.Count(); ++i)
    if (out += names[i]) return;
}

std::FILE* k7os::OpenStream(const char* path, const char* mode) {
  return path ? std::fopen(path, mode) : nullptr;
}

size_t k7os::ReadStream(std::FILE* stream, void* p, size_t n) { return _fread_nolock(p, 1, n, stream); }

bool k7os::IsReadable(const char* path) {
  std::FILE* const stream = OpenStream(path, "rb");
  if (stream) std::fclose(stream);
  return stream != nullptr;
}

bool k7os::IsLink(const char* path) {
  const DWORD attributes = GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool k7os::DeleteFile(const char* path) { return DeleteFileA(path) != 0; }

bool k7os::FollowLinks(const char* path, K7String& target) {
  const HANDLE file = CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  char real[4096];
  const DWORD n = file == INVALID_HANDLE_VALUE ? 0 : GetFinalPathNameByHandleA(file, real, sizeof real, 0);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  return target.Create(n > 0 && n < sizeof real ? real : path) >= 0;
}

bool k7os::CanTakePlace(std::FILE*, const char* to) {
  static const DWORD REFUSED = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY |
                               FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE;
  const DWORD attributes = GetFileAttributesA(to);
  return attributes == INVALID_FILE_ATTRIBUTES || (attributes & REFUSED) == 0;
}

bool k7os::Store(std::FILE* stream) {
  if (std::fflush(stream) != 0) return false;
  const int file = _fileno(stream);
  return _isatty(file) != 0 || _commit(file) == 0;
}

bool k7os::ReplaceFile(const char* from, const char* to) {
  return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) != 0;
}

bool k7os::FenceThreads() {
  FlushProcessWriteBuffers();
  return true;
}

void* k7os::OpenLibrary(const char* file) { return LoadLibraryA(file); }

void* k7os::FindSymbol(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void k7os::CloseLibrary(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

void* k7os::OpenInternet() { return InternetOpenA(nullptr, INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0); }

void k7os::CloseInternet(void* internet) {
  if (internet) InternetCloseHandle(internet);
}

bool k7os::FetchURL(void* internet, const char* url, FetchSink sink, void* context) {
  const HINTERNET request =
      internet ? InternetOpenUrlA(internet, url, nullptr, 0, INTERNET_FLAG_RELOAD, 0) : nullptr;
  if (!request) {
    char response[80];
    DWORD error = 0;
    DWORD length = sizeof response;
    InternetGetLastResponseInfoA(&error, response, &length);
    return false;
  }
  char chunk[8192];
  DWORD length = 0;
  bool whole = true;
  do {
    whole = InternetReadFile(request, chunk, sizeof chunk, &length) != 0 &&
            (length == 0 || sink(context, chunk, length));
  } while (whole && length > 0);
  InternetCloseHandle(request);
  return whole;
}
