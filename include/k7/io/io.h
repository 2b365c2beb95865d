// K7IO: the replaceable file system and the process-wide instance of it.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/foundation/mutex.h>

class K7File;

/// A K7IO makes files and gives the other services of an operating system. The library holds one instance;
/// a host that wants its own file system derives from this class and installs it with `SetInst` before
/// using the library.
///
/// Paths, and the names that come back, are UTF-8 on every system. POSIX takes and gives their bytes as they
/// are; on Windows a path that is no UTF-8 names a file that is not there, paths may be longer than 260
/// characters, and a name that is no Unicode is not listed. A backslash separates folders everywhere. No mode
/// translates line ends: a file has the same bytes on every system.
class K7_API K7IO {
 public:
  virtual ~K7IO();

  /// \name Services
  /// @{
  /// Makes a file opened with a standard mode string ("r", "rb", "wb", "a"). The caller deletes it, also
  /// when it failed to open (ask `IsValid`). Answers null when memory runs out.
  virtual K7File* CreateFileX(const char* path, const char* mode) = 0;
  /// Appends the names that match a wild-card pattern.
  virtual void FindFiles(const char* pattern, K7StrArray& out) = 0;
  /// Appends the names of matching sub-directories. Here it appends nothing.
  virtual void FindDirs(const char* pattern, K7StrArray& out);
  /// Appends all sub-directories below `dir`. Here it appends nothing.
  virtual void FindDirsRecur(const char* dir, K7StrArray& out, int depth);
  /// Answers true when the file was deleted. Here, as below, the answer is false, null or 0: that of a host
  /// without the service.
  virtual bool DeleteFileX(const char* path);
  /// Downloads `url` into the file `localPath`.
  virtual bool ReadURL(const char* url, const char* localPath);
  /// Answers a module handle, null on failure.
  virtual void* LoadLibraryX(const char* file);
  /// Answers the symbol's address or null.
  virtual void* GetSymbol(void* module, const char* name);
  /// Reads the installation's version from the file "RVX.version" that stands directly behind `dir` (end it
  /// with a separator). Answers 0 or a code.
  virtual int RetrieveRVXVersionString(const char* dir);
  /// Copies the version into `dst`, at most `len` bytes and without a terminator when it fills them.
  /// Answers 0.
  virtual int GetRVXVersionString(char* dst, int len);
  virtual void UnLoadLibrary(void* module);
  /// @}

  /// \name The instance
  /// @{
  /// Stores the instance. The previous one is not deleted.
  static void SetInst(K7IO* io);
  /// Answers the instance; the native one is made on first use when none was set. Null only without memory.
  static K7IO* Inst();
  /// Deletes the instance.
  static void Destroy();
  /// @}

 protected:
  K7IO() = default;
  K7IO(const K7IO&) = default;
  K7IO& operator=(const K7IO&) = default;

  K7Mutex m_mutex;

  static K7IO* m_io;
};
