#include "io/os.h"

#include <k7/foundation/array.h>
#include <k7/foundation/log.h>
#include <k7/foundation/mutex.h>
#include <k7/foundation/string.h>

#include "foundation/forever.h"
#include "io/wild_card.h"

#define CURL_DISABLE_TYPECHECK
#include <curl/curl.h>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/membarrier.h>
#include <sys/syscall.h>
#endif
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// A pattern's folder ("." without one) and its last component, in one block.
struct SplitPattern {
  explicit SplitPattern(const char* pattern) : path(pattern) {
    char* const text = path.Text();
    char* const slash = text ? std::strrchr(text, '/') : nullptr;
    name = slash ? slash + 1 : text;
    folder = !slash ? "." : slash == text ? "/" : text;
    if (slash) *slash = 0;
  }
  k7os::NativePath path;
  const char* folder;
  const char* name;
};

bool IsDirectoryEntry(DIR* folder, const dirent& entry) {
  if (entry.d_type == DT_DIR) return true;
  // Links and file systems that keep no types need a look at the file itself.
  struct stat info;
  return (entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN) &&
         fstatat(dirfd(folder), entry.d_name, &info, 0) == 0 && S_ISDIR(info.st_mode);
}

struct Sink {
  k7os::FetchSink deliver;
  void* context;
};

size_t Deliver(char* data, size_t size, size_t count, void* sink) {
  const Sink& target = *static_cast<Sink*>(sink);
  return target.deliver(target.context, data, size * count) ? size * count : 0;
}

#ifdef __APPLE__
constexpr char CURL_LIBRARY[] = "libcurl.4.dylib";
#else
constexpr char CURL_LIBRARY[] = "libcurl.so.4";
#endif

// The functions of libcurl. It brings thirty libraries with it, whose loading takes longer than most programs
// that never download anything: so it comes with the first download, and then stays.
struct Curl {
  decltype(&curl_global_init) Start;
  decltype(&curl_easy_init) Open;
  decltype(&curl_easy_cleanup) Close;
  decltype(&curl_easy_reset) Reset;
  decltype(&curl_easy_setopt) SetOption;
  decltype(&curl_easy_perform) Perform;
  decltype(&curl_slist_append) AppendHeader;
  decltype(&curl_slist_free_all) FreeHeaders;
  bool isReady = false;

  // What fails is tried again by the next download.
  bool Load() {
    void* const library = isReady ? nullptr : k7os::OpenLibrary(CURL_LIBRARY);
    if (library)
      isReady = Find(library, "curl_global_init", Start) && Find(library, "curl_easy_init", Open) &&
                Find(library, "curl_easy_cleanup", Close) && Find(library, "curl_easy_reset", Reset) &&
                Find(library, "curl_easy_setopt", SetOption) && Find(library, "curl_easy_perform", Perform) &&
                Find(library, "curl_slist_append", AppendHeader) &&
                Find(library, "curl_slist_free_all", FreeHeaders) && Start(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    if (!isReady) K7Log::LogMessage(K7_LOG_WARNING, "no downloads without %s", CURL_LIBRARY);
    return isReady;
  }
  template <class Function>
  static bool Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(k7os::FindSymbol(library, name));
    return function != nullptr;
  }
};

// Null when the library is not there.
const Curl* LoadCurl() {
  static K7Forever<K7Mutex> mutex;
  static K7Forever<Curl> curl;
  const K7LockGuard lock(*mutex);
  return (*curl).Load() ? &*curl : nullptr;
}

// What downloads one after the other share.
struct Internet {
  const Curl* curl = nullptr;
  CURL* session = nullptr;

  bool Open() {
    if (!curl) curl = LoadCurl();
    if (curl && !session) session = curl->Open();
    return session != nullptr;
  }
};

}  // namespace

bool k7os::LocalTime(int64_t seconds, std::tm& fields) {
  const std::time_t moment = static_cast<std::time_t>(seconds);
  tzset();  // as localtime does: the host may have changed the zone
  return moment == seconds && localtime_r(&moment, &fields);
}

bool k7os::MakeTime(std::tm& fields, int64_t& seconds) {
  // Its -1 is a moment too, but only success sets the weekday.
  fields.tm_wday = -1;
  const std::time_t moment = std::mktime(&fields);
  if (fields.tm_wday < 0) return false;
  seconds = moment;
  return true;
}

k7os::NativePath::NativePath(const char* path) : m_text(K7String::Dup(path)) {
  for (char* p = m_text; p && *p; ++p)
    if (*p == '\\') *p = '/';
}

k7os::NativePath::~NativePath() { std::free(m_text); }

void k7os::ListDir(const char* pattern, bool dirsOnly, K7StrArray& out) {
  const SplitPattern split(pattern);
  DIR* const folder = split.name ? opendir(split.folder) : nullptr;
  if (!folder) return;
  K7StrArray names;
  while (const dirent* entry = readdir(folder)) {
    if (!k7wild::Matches(split.name, entry->d_name)) continue;
    if (dirsOnly && !IsDirectoryEntry(folder, *entry)) continue;
    if (names += entry->d_name) break;
  }
  closedir(folder);
  k7wild::AppendInOrder(names, out);
}

std::FILE* k7os::OpenStream(const char* path, const char* mode) {
  const NativePath native(path);
  std::FILE* const stream = native.Text() ? std::fopen(native.Text(), mode) : nullptr;
  struct stat info;
  if (!stream || fstat(fileno(stream), &info) != 0 || !S_ISDIR(info.st_mode)) return stream;
  std::fclose(stream);
  return nullptr;
}

size_t k7os::ReadStream(std::FILE* stream, void* p, size_t n) {
#ifdef __GLIBC__
  return fread_unlocked(p, 1, n, stream);
#else
  return std::fread(p, 1, n, stream);
#endif
}

int64_t k7os::TellStream(std::FILE* stream) { return ftello(stream); }

bool k7os::IsReadable(const char* path) {
  const NativePath native(path);
  struct stat info;
  if (!native.Text() || stat(native.Text(), &info) != 0 || S_ISDIR(info.st_mode)) return false;
  if (S_ISFIFO(info.st_mode)) return faccessat(AT_FDCWD, native.Text(), R_OK, AT_EACCESS) == 0;
  const int file = open(native.Text(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (file >= 0) close(file);
  return file >= 0;
}

bool k7os::IsLink(const char* path) {
  const NativePath native(path);
  struct stat info;
  return !native.Text() || (lstat(native.Text(), &info) == 0 && S_ISLNK(info.st_mode));
}

bool k7os::DeleteFile(const char* path) { return unlink(path) == 0; }

bool k7os::FollowLinks(const char* path, K7String& target) {
  const NativePath native(path);
  if (!native.Text()) return false;
  char* const real = realpath(native.Text(), nullptr);
  const bool made = target.Create(real ? real : native.Text()) >= 0;
  std::free(real);
  return made;
}

bool k7os::CanTakePlace(std::FILE* fresh, const char* to) {
  struct stat there;
  struct stat mine;
  if (lstat(to, &there) != 0) return errno == ENOENT;
  if (!S_ISREG(there.st_mode) || there.st_nlink != 1) return false;
  if (faccessat(AT_FDCWD, to, W_OK, AT_EACCESS) != 0) return false;
  if (fstat(fileno(fresh), &mine) != 0) return false;
  if (mine.st_uid != there.st_uid || mine.st_gid != there.st_gid || mine.st_dev != there.st_dev) return false;
  const mode_t permissions = there.st_mode & 07777;
  return (mine.st_mode & 07777) == permissions || fchmod(fileno(fresh), permissions) == 0;
}

bool k7os::Store(std::FILE* stream) {
  if (std::fflush(stream) != 0) return false;
  // Pipes and terminals cannot be, and need not.
  return fsync(fileno(stream)) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

bool k7os::ReplaceFile(const char* from, const char* to) { return std::rename(from, to) == 0; }

bool k7os::FenceThreads() {
#ifdef __linux__
  const auto call = [](int command) { return syscall(SYS_membarrier, command, 0, 0) == 0; };
  if (call(MEMBARRIER_CMD_PRIVATE_EXPEDITED)) return true;
  // The first time in a process.
  return call(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) && call(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
#else
  return false;
#endif
}

void* k7os::OpenLibrary(const char* file) { return dlopen(file, RTLD_NOW | RTLD_LOCAL); }

void* k7os::FindSymbol(void* module, const char* name) { return dlsym(module, name); }

void k7os::CloseLibrary(void* module) { dlclose(module); }

void* k7os::OpenInternet() { return new (std::nothrow) Internet; }

void k7os::CloseInternet(void* internet) {
  Internet* const handle = static_cast<Internet*>(internet);
  if (handle && handle->session) handle->curl->Close(handle->session);
  delete handle;
}

bool k7os::FetchURL(void* internet, const char* url, FetchSink sink, void* context) {
  Internet* const handle = static_cast<Internet*>(internet);
  if (!handle || !handle->Open()) return false;
  const Curl& curl = *handle->curl;
  Sink target{sink, context};
  static const long CONNECT_SECONDS = 30;
  static const long STALLED_SECONDS = 60;
  curl.Reset(handle->session);
  curl.SetOption(handle->session, CURLOPT_URL, url);
  curl.SetOption(handle->session, CURLOPT_PROTOCOLS_STR, "http,https,ftp");
  curl.SetOption(handle->session, CURLOPT_REDIR_PROTOCOLS_STR, "http,https,ftp");
  curl.SetOption(handle->session, CURLOPT_PROXY, "");
  curl.SetOption(handle->session, CURLOPT_FOLLOWLOCATION, 1L);
  curl.SetOption(handle->session, CURLOPT_MAXREDIRS, 10L);
  curl.SetOption(handle->session, CURLOPT_NOSIGNAL, 1L);
  curl.SetOption(handle->session, CURLOPT_CONNECTTIMEOUT, CONNECT_SECONDS);
  curl.SetOption(handle->session, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl.SetOption(handle->session, CURLOPT_LOW_SPEED_TIME, STALLED_SECONDS);
  curl.SetOption(handle->session, CURLOPT_WRITEFUNCTION, Deliver);
  curl.SetOption(handle->session, CURLOPT_WRITEDATA, &target);

  curl_slist* const reload = curl.AppendHeader(nullptr, "Cache-Control: no-cache");
  curl.SetOption(handle->session, CURLOPT_HTTPHEADER, reload);
  const CURLcode result = curl.Perform(handle->session);
  curl.FreeHeaders(reload);
  return result == CURLE_OK;
}
