// What the library asks of an operating system. io_posix.cpp and io_win32.cpp answer it, one of them in each
// build, but for one line here; no other file includes a system header or tests a platform macro.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>

class K7StrArray;
class K7String;

namespace k7os {

/// Calendar of the machine's time zone. False for a moment that the system has none for.
bool LocalTime(int64_t seconds, std::tm& fields);
/// Moment of fields in the machine's time zone, which are brought into their ranges. `tm_isdst` as for
/// `mktime`.
bool MakeTime(std::tm& fields, int64_t& seconds);

/// Appends the bare names that match the last component of `pattern`, in case-insensitive order, "." and ".."
/// included; with `dirsOnly` only directories.
void ListDir(const char* pattern, bool dirsOnly, K7StrArray& out);

/// `path` as the system spells it, its separators made native, in a buffer of this call's; for use at once.
class NativePath {
 public:
  explicit NativePath(const char* path);
  ~NativePath();
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;
  /// Null without memory.
  char* Text() const { return m_text; }

 private:
  char* m_text;
};

/// `fopen`, null also for a directory, which opens for reading on some systems but holds no bytes. Binary,
/// whatever the mode says.
std::FILE* OpenStream(const char* path, const char* mode);
/// `fread` of bytes for a stream that one thread at a time uses.
size_t ReadStream(std::FILE* stream, void* p, size_t n);
/// Position in a stream, that of a file beyond 2 GB too; -1 when there is none.
int64_t TellStream(std::FILE* stream);
/// `path` is no directory and may be opened for reading; a pipe is not waited for.
bool IsReadable(const char* path);
/// A symbolic link or junction, whatever it leads to; `path` without a separator at its end. True without
/// memory.
bool IsLink(const char* path);
bool DeleteFile(const char* path);
/// The file that `path` leads to through links; the path itself where that is not there. False without
/// memory.
bool FollowLinks(const char* path, K7String& target);
/// Nobody loses by `fresh`, an open new file of no bytes, taking the place of `to`, which is no link: there
/// is no file, or a plain one that this process may write, under one name, and of the same owner. `fresh` has
/// its permissions then.
bool CanTakePlace(std::FILE* fresh, const char* to);
/// Flushes a stream down to the disk. True also for what is no disk.
bool Store(std::FILE* stream);
/// Puts a closed file, whose bytes `Store` has brought to the disk, into the place of one that
/// `CanTakePlace` allowed, in one step: whoever looks, a crash included, finds the old file or the new one.
bool ReplaceFile(const char* from, const char* to);

/// What tells the calling thread from all others that live; never null. On Linux one instruction, where a
/// variable of the thread would take a call.
inline const void* ThreadMark() {
#if defined(__linux__) && defined(__GNUC__)
  return __builtin_thread_pointer();
#else
  static thread_local const char mark = 0;
  return &mark;
#endif
}
/// Has every thread of the process pass a full memory fence, this one too, before it returns. False where
/// the system has no such thing or refuses it.
bool FenceThreads();

void* OpenLibrary(const char* file);
void* FindSymbol(void* module, const char* name);
void CloseLibrary(void* module);

/// Receives a chunk of a download; false ends the transfer.
using FetchSink = bool (*)(void* context, const void* data, size_t size);

/// The handle that downloads go through; may be null, and then `FetchURL` fails. On POSIX, libcurl is loaded
/// by the first download: where it is missing, each fails and says so in the log.
void* OpenInternet();
void CloseInternet(void* internet);
/// Downloads `url` past all caches. True when the whole body has been delivered.
bool FetchURL(void* internet, const char* url, FetchSink sink, void* context);

}  // namespace k7os
