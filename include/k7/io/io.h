// K7IO: the replaceable file system and the process-wide instance of it.
#pragma once

#include <k7/export.h>
#include <k7/foundation/array.h>
#include <k7/foundation/mutex.h>

class K7File;

/// Factory for files and the other services of an operating system. The library holds one instance; a host
/// that wants its own file system derives from this class and installs it with `SetInst` before using the
/// library.
class K7_API K7IO {
 public:
  virtual ~K7IO();
  /// A new file opened with a standard mode string ("r", "rb", "wb", "a"). The caller deletes it, also when
  /// it failed to open (ask `IsValid`); null when memory runs out.
  virtual K7File* CreateFileX(const char* path, const char* mode) = 0;
  /// Appends the names that match a wild-card pattern.
  virtual void FindFiles(const char* pattern, K7StrArray& out) = 0;
  /// Appends the names of matching sub-directories. Here: nothing.
  virtual void FindDirs(const char* pattern, K7StrArray& out);
  /// Appends all sub-directories below `dir`. Here: nothing.
  virtual void FindDirsRecur(const char* dir, K7StrArray& out, int depth);
  /// True when the file was deleted. Here, as below: false, null or 0, for a host without the service.
  virtual bool DeleteFileX(const char* path);
  /// Downloads `url` into the file `localPath`.
  virtual bool ReadURL(const char* url, const char* localPath);
  /// A module handle, null on failure.
  virtual void* LoadLibraryX(const char* file);
  /// The symbol's address or null.
  virtual void* GetSymbol(void* module, const char* name);
  /// Reads the installation's version from the file "RVX.version" that stands directly behind `dir` (end it
  /// with a separator). 0 or a code.
  virtual int RetrieveRVXVersionString(const char* dir);
  /// Copies the version into `dst`, at most `len` bytes and without a terminator when it fills them. 0.
  virtual int GetRVXVersionString(char* dst, int len);
  virtual void UnLoadLibrary(void* module);

  /// Stores the instance; the previous one is not deleted.
  static void SetInst(K7IO* io);
  /// The instance; the native one is made on first use when none was set. Null only without memory.
  static K7IO* Inst();
  /// Deletes the instance.
  static void Destroy();

 protected:
  K7IO() = default;
  K7IO(const K7IO&) = default;
  K7IO& operator=(const K7IO&) = default;

  K7Mutex m_mutex;

  static K7IO* m_io;
};
