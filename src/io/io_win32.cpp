#include "io/os.h"

#include <k7/foundation/array.h>
#include <k7/foundation/string.h>

#include "foundation/calendar.h"
#include "io/wild_card.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <wininet.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <utility>

#undef DeleteFile
#undef ReplaceFile

namespace {

using namespace k7calendar;

int64_t YearOf(const std::tm& fields) { return int64_t{fields.tm_year} + FIRST_TM_YEAR; }

// Wall-clock seconds of a rule such as the last Sunday of March, or of a date, in `year`.
int64_t RuleSeconds(int64_t year, const SYSTEMTIME& rule) {
  int64_t days = DaysFromDate(year, rule.wMonth, 1);
  if (rule.wYear) {
    days += rule.wDay - 1;
  } else {
    const int64_t next =
        rule.wMonth == 12 ? DaysFromDate(year + 1, 1, 1) : DaysFromDate(year, rule.wMonth + 1, 1);
    days += (rule.wDayOfWeek + 7 - WeekDay(days)) % 7 + 7 * (rule.wDay - 1);
    while (days >= next) days -= 7;
  }
  return days * DAY + rule.wHour * 3600 + rule.wMinute * 60 + rule.wSecond;
}

// The machine's zone in one year; what is added to its clock gives universal time.
struct ZoneYear {
  explicit ZoneYear(int64_t year) {
    TIME_ZONE_INFORMATION zone = {};
    const USHORT known = static_cast<USHORT>(year < 1601 ? 1601 : year > 30827 ? 30827 : year);
    if (!GetTimeZoneInformationForYear(known, nullptr, &zone)) return;
    standard = int64_t{zone.Bias + zone.StandardBias} * 60;
    daylight = standard;
    if (!zone.DaylightDate.wMonth || !zone.StandardDate.wMonth) return;
    daylight = int64_t{zone.Bias + zone.DaylightBias} * 60;
    start = RuleSeconds(year, zone.DaylightDate) + standard;
    end = RuleSeconds(year, zone.StandardDate) + daylight;
  }
  bool IsDaylight(int64_t seconds) const {
    if (start <= end) return start <= seconds && seconds < end;
    return seconds < end || start <= seconds;  // south of the equator
  }

  int64_t standard = 0;
  int64_t daylight = 0;
  int64_t start = 0;
  int64_t end = 0;
};

struct Free {
  void operator()(void* p) const { std::free(p); }
};
template <class T>
using Block = std::unique_ptr<T[], Free>;

template <class T>
Block<T> Alloc(size_t size) {
  return Block<T>(static_cast<T*>(std::malloc(size * sizeof(T))));
}

// Null for what is no UTF-8.
Block<wchar_t> ToWide(const char* text) {
  const int n = text ? MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0) : 0;
  Block<wchar_t> wide = n > 0 ? Alloc<wchar_t>(static_cast<size_t>(n)) : nullptr;
  if (wide) MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, wide.get(), n);
  return wide;
}

// Null for what is no UTF-16: the system takes any units for a name.
Block<char> FromWide(const wchar_t* wide) {
  const int n = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, -1, nullptr, 0, nullptr, nullptr);
  Block<char> text = n > 0 ? Alloc<char>(static_cast<size_t>(n)) : nullptr;
  if (text) WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, -1, text.get(), n, nullptr, nullptr);
  return text;
}

// A path as the wide calls take it. These refuse more than 260 characters but for paths in full that say so
// by their prefix; shorter ones stay as they are, for "NUL" and its kin are no devices behind that prefix.
class WidePath {
 public:
  explicit WidePath(const char* path) : m_text(ToWide(path)) {
    static const DWORD LONGEST = MAX_PATH - 12;  // of folders, into which a short name must fit
    const DWORD n = m_text ? GetFullPathNameW(m_text.get(), 0, nullptr, nullptr) : 0;
    if (n <= LONGEST || HasPrefix(m_text.get())) return;
    static const wchar_t LOCAL[] = L"\\\\?\\";
    static const wchar_t SHARE[] = L"\\\\?\\UNC";
    static const DWORD ROOM = sizeof SHARE / sizeof *SHARE;
    Block<wchar_t> full = Alloc<wchar_t>(n + ROOM);
    if (full && GetFullPathNameW(m_text.get(), n, full.get() + ROOM, nullptr) < n) {
      // A share's two backslashes become the one behind its prefix.
      const bool isShare = full[ROOM] == L'\\';
      const wchar_t* const prefix = isShare ? SHARE : LOCAL;
      const size_t prefixSize = std::wcslen(prefix);
      wchar_t* const rest = full.get() + ROOM + (isShare ? 1 : 0);
      std::wmemmove(full.get() + prefixSize, rest, std::wcslen(rest) + 1);
      std::wmemcpy(full.get(), prefix, prefixSize);
    } else {
      full.reset();
    }
    m_text = std::move(full);
  }
  // Null for what is no UTF-8, and without memory; the calls fail with it.
  const wchar_t* Text() const { return m_text.get(); }

 private:
  static bool HasPrefix(const wchar_t* path) {
    return std::wcsncmp(path, L"\\\\?\\", 4) == 0 || std::wcsncmp(path, L"\\\\.\\", 4) == 0;
  }
  Block<wchar_t> m_text;
};

// An open file, closed with the block.
class Handle {
 public:
  // To look at the file only, with `access` 0; a directory opens with `FILE_FLAG_BACKUP_SEMANTICS` alone.
  Handle(const char* path, DWORD access, DWORD flags) {
    static const DWORD SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const WidePath wide(path);
    if (wide.Text())
      m_file = CreateFileW(wide.Text(), access, SHARED, nullptr, OPEN_EXISTING, flags, nullptr);
  }
  ~Handle() {
    if (IsOpen()) CloseHandle(m_file);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  bool IsOpen() const { return m_file != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return m_file; }

 private:
  HANDLE m_file = INVALID_HANDLE_VALUE;
};

HANDLE FileOf(std::FILE* stream) { return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))); }

// Who owns a file and who may do what with it.
struct Security {
  explicit Security(HANDLE file) {
    static const SECURITY_INFORMATION ALL =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    DWORD size = 0;
    GetKernelObjectSecurity(file, ALL, nullptr, 0, &size);
    if (size > 0) bytes = Alloc<char>(size);
    if (bytes && GetKernelObjectSecurity(file, ALL, bytes.get(), size, &size)) length = size;
  }
  bool operator==(const Security& other) const {
    return length > 0 && length == other.length && std::memcmp(bytes.get(), other.bytes.get(), length) == 0;
  }
  Block<char> bytes;
  DWORD length = 0;
};

// A field of an HTTP answer's head as a number, `none` where it is not there.
int64_t HeadNumber(HINTERNET request, DWORD field, int64_t none) {
  char text[32];
  DWORD size = sizeof text;
  return HttpQueryInfoA(request, field, text, &size, nullptr) ? std::strtoll(text, nullptr, 10) : none;
}

bool HasHead(HINTERNET request, DWORD field) {
  DWORD size = 0;
  return HttpQueryInfoA(request, field, nullptr, &size, nullptr) ||
         GetLastError() == ERROR_INSUFFICIENT_BUFFER;
}

// False when there is no answer, or one that leads where no redirection may.
bool IsAnswer(HINTERNET request) {
  DWORD type = 0;
  DWORD size = sizeof type;
  if (!InternetQueryOptionA(request, INTERNET_OPTION_HANDLE_TYPE, &type, &size)) return false;
  if (type != INTERNET_HANDLE_TYPE_HTTP_REQUEST) return true;
  const int64_t status = HeadNumber(request, HTTP_QUERY_STATUS_CODE, 0);
  return status > 0 && (status / 100 != 3 || !HasHead(request, HTTP_QUERY_LOCATION));
}

// Takes the body to the end that was announced, in chunks: a connection that closes before it looks to the
// system like the end of any other.
bool TakeBody(HINTERNET request, k7os::FetchSink sink, void* context) {
  const bool isChunked = HasHead(request, HTTP_QUERY_TRANSFER_ENCODING);
  int64_t left = isChunked ? -1 : HeadNumber(request, HTTP_QUERY_CONTENT_LENGTH, -1);
  const bool isAnnounced = left >= 0;
  char chunk[8192];
  DWORD n = 1;
  while (n > 0 && left != 0) {
    const DWORD size = isAnnounced && left < int64_t{sizeof chunk} ? static_cast<DWORD>(left) : sizeof chunk;
    if (!InternetReadFile(request, chunk, size, &n) || (n > 0 && !sink(context, chunk, n))) return false;
    if (isAnnounced) left -= n;
  }
  return left <= 0;
}

void SetSeconds(HINTERNET internet, DWORD option, DWORD seconds) {
  DWORD milliseconds = seconds * 1000;
  InternetSetOptionA(internet, option, &milliseconds, sizeof milliseconds);
}

}  // namespace

bool k7os::LocalTime(int64_t seconds, std::tm& fields) {
  if (!SplitSeconds(seconds, fields)) return false;
  ZoneYear zone(YearOf(fields));
  // The year that counts is that of the zone.
  if (!SplitSeconds(seconds - zone.standard, fields)) return false;
  zone = ZoneYear(YearOf(fields));
  const bool summer = zone.IsDaylight(seconds);
  if (!SplitSeconds(seconds - (summer ? zone.daylight : zone.standard), fields)) return false;
  fields.tm_isdst = summer;
  return true;
}

bool k7os::MakeTime(std::tm& fields, int64_t& seconds) {
  const int64_t carried = FloorDiv(fields.tm_mon, 12);
  const int64_t year = YearOf(fields) + carried;
  const int64_t days = DaysFromDate(year, fields.tm_mon - carried * 12 + 1, 1) + fields.tm_mday - 1;
  const int64_t wall =
      days * DAY + fields.tm_hour * int64_t{3600} + fields.tm_min * int64_t{60} + fields.tm_sec;
  const ZoneYear zone(year);
  // Of two moments with the same fields the one in daylight time.
  const bool summer = fields.tm_isdst > 0 || (fields.tm_isdst < 0 && zone.IsDaylight(wall + zone.daylight));
  const int64_t moment = wall + (summer ? zone.daylight : zone.standard);
  if (!LocalTime(moment, fields)) return false;
  seconds = moment;
  return true;
}

k7os::NativePath::NativePath(const char* path) : m_text(K7String::Dup(path)) {
  for (char* p = m_text; p && *p; ++p)
    if (*p == '/') *p = '\\';
}

k7os::NativePath::~NativePath() { std::free(m_text); }

// The system's own wild-cards have rules of DOS, and find short names that nobody gave.
void k7os::ListDir(const char* pattern, bool dirsOnly, K7StrArray& out) {
  const NativePath name(pattern);
  const NativePath folder(pattern);
  if (!name.Text() || !folder.Text()) return;
  size_t start = std::strlen(name.Text());
  while (start > 0 && !std::strchr("\\:", name.Text()[start - 1])) --start;
  if (!name.Text()[start]) return;
  std::memcpy(folder.Text() + start, "*", 2);
  const WidePath all(folder.Text());
  WIN32_FIND_DATAW data;
  const HANDLE search =
      all.Text() ? FindFirstFileExW(all.Text(), FindExInfoBasic, &data, FindExSearchNameMatch, nullptr, 0)
                 : INVALID_HANDLE_VALUE;
  if (search == INVALID_HANDLE_VALUE) return;
  K7StrArray names;
  do {
    if (dirsOnly && !(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) continue;
    const Block<char> found = FromWide(data.cFileName);
    if (!found || !k7wild::Matches(name.Text() + start, found.get())) continue;
    if (names += found.get()) break;
  } while (FindNextFileW(search, &data));
  FindClose(search);
  k7wild::AppendInOrder(names, out);
}

// No mode translates line ends: a file has the same bytes on every system. Not every runtime knows "x".
std::FILE* k7os::OpenStream(const char* path, const char* mode) {
  const WidePath wide(path);
  if (!wide.Text() || !*mode || !std::strchr("rwa", *mode)) return nullptr;
  const wchar_t bytes[] = {static_cast<wchar_t>(*mode), L'b', std::strchr(mode, '+') ? L'+' : L'\0', L'\0'};
  if (!std::strchr(mode, 'x')) return _wfopen(wide.Text(), bytes);
  const int file = _wopen(wide.Text(), _O_CREAT | _O_EXCL | _O_RDWR | _O_BINARY, _S_IREAD | _S_IWRITE);
  std::FILE* const stream = file >= 0 ? _wfdopen(file, bytes) : nullptr;
  if (file >= 0 && !stream) _close(file);
  return stream;
}

size_t k7os::ReadStream(std::FILE* stream, void* p, size_t n) {
#ifdef _UCRT
  return _fread_nolock(p, 1, n, stream);
#else
  return std::fread(p, 1, n, stream);
#endif
}

int64_t k7os::TellStream(std::FILE* stream) { return _ftelli64(stream); }

bool k7os::IsReadable(const char* path) { return Handle(path, GENERIC_READ, FILE_ATTRIBUTE_NORMAL).IsOpen(); }

bool k7os::IsLink(const char* path) {
  if (!WidePath(path).Text()) return true;
  const Handle file(path, 0, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT);
  FILE_ATTRIBUTE_TAG_INFO info;
  return file.IsOpen() &&
         GetFileInformationByHandleEx(file.Get(), FileAttributeTagInfo, &info, sizeof info) &&
         (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsReparseTagNameSurrogate(info.ReparseTag);
}

bool k7os::DeleteFile(const char* path) {
  const WidePath wide(path);
  return wide.Text() && DeleteFileW(wide.Text());
}

bool k7os::FollowLinks(const char* path, K7String& target) {
  const Handle file(path, 0, FILE_FLAG_BACKUP_SEMANTICS);
  const DWORD n = file.IsOpen() ? GetFinalPathNameByHandleW(file.Get(), nullptr, 0, 0) : 0;
  if (n > 0) {
    const Block<wchar_t> real = Alloc<wchar_t>(n + 1);
    const DWORD length = real ? GetFinalPathNameByHandleW(file.Get(), real.get(), n + 1, 0) : 0;
    const Block<char> text = length > 0 && length <= n ? FromWide(real.get()) : nullptr;
    return text && target.Create(text.get()) >= 0;
  }
  const NativePath native(path);
  return native.Text() && target.Create(native.Text()) >= 0;
}

bool k7os::CanTakePlace(std::FILE* fresh, const char* to) {
  // Others (hidden, compressed, a link) the new file would not have.
  static const DWORD PLAIN =
      FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const Handle there(to, GENERIC_READ | GENERIC_WRITE, FILE_FLAG_OPEN_REPARSE_POINT);
  if (!there.IsOpen()) return GetLastError() == ERROR_FILE_NOT_FOUND;
  BY_HANDLE_FILE_INFORMATION info;
  if (!GetFileInformationByHandle(there.Get(), &info)) return false;
  if ((info.dwFileAttributes & ~PLAIN) != 0 || info.nNumberOfLinks != 1) return false;
  return Security(there.Get()) == Security(FileOf(fresh));
}

bool k7os::Store(std::FILE* stream) {
  if (std::fflush(stream) != 0) return false;
  return GetFileType(FileOf(stream)) != FILE_TYPE_DISK || _commit(_fileno(stream)) == 0;
}

bool k7os::ReplaceFile(const char* from, const char* to) {
  const WidePath wideFrom(from);
  const WidePath wideTo(to);
  return wideFrom.Text() && wideTo.Text() &&
         MoveFileExW(wideFrom.Text(), wideTo.Text(), MOVEFILE_REPLACE_EXISTING);
}

bool k7os::FenceThreads() {
  FlushProcessWriteBuffers();
  return true;
}

void* k7os::OpenLibrary(const char* file) {
  // A bare name is one that the system searches for.
  const bool isPath = file && std::strpbrk(file, "\\/:");
  const WidePath path(isPath ? file : nullptr);
  const Block<wchar_t> name = ToWide(isPath ? nullptr : file);
  const wchar_t* const wide = isPath ? path.Text() : name.get();
  if (!wide) return nullptr;
  // A file that is no library is an answer, and no message box.
  DWORD before = 0;
  const bool quiet = SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before);
  void* const module = LoadLibraryW(wide);
  if (quiet) SetThreadErrorMode(before, nullptr);
  return module;
}

void* k7os::FindSymbol(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void k7os::CloseLibrary(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

void* k7os::OpenInternet() {
  const HINTERNET internet = InternetOpenA(nullptr, INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
  if (!internet) return nullptr;
  SetSeconds(internet, INTERNET_OPTION_CONNECT_TIMEOUT, 30);
  SetSeconds(internet, INTERNET_OPTION_SEND_TIMEOUT, 60);
  SetSeconds(internet, INTERNET_OPTION_RECEIVE_TIMEOUT, 60);
  return internet;
}

void k7os::CloseInternet(void* internet) {
  if (internet) InternetCloseHandle(internet);
}

bool k7os::FetchURL(void* internet, const char* url, FetchSink sink, void* context) {
  static const DWORD FRESH = INTERNET_FLAG_RELOAD | INTERNET_FLAG_PRAGMA_NOCACHE |
                             INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI;
  const HINTERNET request = internet ? InternetOpenUrlA(internet, url, nullptr, 0, FRESH, 0) : nullptr;
  if (!request) {
    char response[80];
    DWORD error = 0;
    DWORD length = sizeof response;
    InternetGetLastResponseInfoA(&error, response, &length);
    return false;
  }
  const bool whole = IsAnswer(request) && TakeBody(request, sink, context);
  InternetCloseHandle(request);
  return whole;
}
