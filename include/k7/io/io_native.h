// The native file system: K7IOK7 and K7FileK7.
#pragma once

#include <k7/io/file.h>
#include <k7/io/io.h>

#include <cstdio>

/// A K7FileK7 is a stream over the standard library's buffered files. A copy shares stream and mutex with
/// its source: only one of the two may be closed or destroyed.
class K7_API K7FileK7 : public K7File {
 public:
  K7FileK7() = default;
  /// Opens the file when both are given.
  K7FileK7(const char* path, const char* mode);
  K7FileK7(const K7FileK7&) = default;
  K7FileK7& operator=(const K7FileK7&) = default;
  ~K7FileK7() override;

  bool IsValid() override;
  bool Open(const char* path, const char* mode) override;
  void Close() override;
  bool ReadLine(char* buf, int size) override;
  bool WriteLine(const char* text) override;
  int Read(void* buf, int n) override;
  int Write(const void* buf, int n) override;
  bool Seek(int pos) override;
  int Tell() override;
  void Flush() override;

 private:
  std::FILE* m_stream = nullptr;
};

/// A K7IOK7 gives the operating system's directories, downloads and dynamic libraries. A copy shares the
/// internet handle with its source: only one of the two may be destroyed.
///
/// A pattern is a path whose last component may hold "*" and "?", matched without regard to case; "*.*"
/// matches every name. Names come in case-insensitive order. Both "/" and "\" separate.
class K7_API K7IOK7 : public K7IO {
 public:
  K7IOK7();
  K7IOK7(const K7IOK7&) = default;
  K7IOK7& operator=(const K7IOK7&) = default;
  ~K7IOK7() override;

  K7File* CreateFileX(const char* path, const char* mode) override;

  /// \name Directories
  /// @{
  /// Appends bare names of files and directories alike. It skips names that end in "~" (editor backups).
  void FindFiles(const char* pattern, K7StrArray& out) override;
  /// Appends bare names and leaves "." and ".." out.
  void FindDirs(const char* pattern, K7StrArray& out) override;
  /// Appends full paths in pre-order, each ending in a backslash, down to 11 levels counted from depth 0.
  /// `dir` ends with a separator. Directories behind links are searched like others, save a link that leads
  /// to a directory above itself, which is listed only.
  void FindDirsRecur(const char* dir, K7StrArray& out, int depth) override;
  /// @}

  bool DeleteFileX(const char* path) override;
  /// Takes http, https and ftp, never from a cache, and saves a server's error page like any body. A
  /// transfer that breaks off answers false and leaves no file. Other systems than Windows need libcurl,
  /// which the first download loads; without it the answer is false and the log has a warning.
  bool ReadURL(const char* url, const char* localPath) override;
  void* LoadLibraryX(const char* file) override;
  void* GetSymbol(void* module, const char* name) override;
  /// Answers 0, K7_ERR_INVALID_DATA when the file cannot be opened or is empty, or K7_ERR_MEMORY.
  int RetrieveRVXVersionString(const char* dir) override;
  int GetRVXVersionString(char* dst, int len) override;
  void UnLoadLibrary(void* module) override;

 private:
  void* m_internet = nullptr;
  char m_version[30] = "0.0.0";
};
