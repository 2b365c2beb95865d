// K7File: one open byte stream.
#pragma once

#include <k7/export.h>
#include <k7/foundation/mutex.h>

/// Interface of an open byte stream; all file access of the library passes through it. `K7FileK7` is the
/// native implementation, hosts may supply others (an archive, memory, a network volume) behind `K7IO`.
///
/// Every operation holds the file's own recursive mutex: one file is serialised, different files are free.
class K7_API K7File {
 public:
  /// Closes.
  virtual ~K7File();
  /// The stream is open.
  virtual bool IsValid() = 0;
  /// `mode` as for `fopen`. A current stream is forgotten, not closed: close first.
  virtual bool Open(const char* path, const char* mode) = 0;
  virtual void Close() = 0;
  /// At most `size` - 1 bytes up to a newline, which is read and removed (a carriage return before it stays).
  /// False at end of file.
  virtual bool ReadLine(char* buf, int size) = 0;
  /// Writes `text` as a format without arguments: "%%" gives one percent sign, any other conversion is
  /// written as it stands. Adds no newline.
  virtual bool WriteLine(const char* text) = 0;
  /// Bytes read, 0 at end of file or when not open; other implementations may return a negative code.
  virtual int Read(void* buf, int n) = 0;
  /// Bytes written.
  virtual int Write(const void* buf, int n) = 0;
  /// From the start; any negative `pos` moves to the end. True when the file is open, whether or not it
  /// moved.
  virtual bool Seek(int pos) = 0;
  /// The position, -1 when not open (or beyond what an int holds).
  virtual int Tell() = 0;
  virtual void Flush() = 0;
  /// Writes `n` bytes of `data` as a compressed file. 0, or -1 for null data or a failed write.
  virtual int SecureCompress(const char* data, int n);
  /// Reads a whole compressed file. 0 with `*out` holding the data and a zero byte behind it, which the
  /// caller frees with `free`; -1, and `*out` untouched, for a file that is not whole and sound.
  virtual int SecureDecompress(char** out);

  /// Read 2, 4 or 8 bytes as they lie in the file (little-endian, as the machine). 0, the file's negative
  /// result, or K7_ERR_FILE_IO when nothing could be read; a partial read counts as success and leaves the
  /// rest of `p` alone.
  int Read16(void* p);
  int Read32(void* p);
  int Read64(void* p);
  /// Reverse the bytes in place, for big-endian fields.
  static void ByteSwap16(void* p);
  static void ByteSwap32(void* p);
  static void ByteSwap64(void* p);
  /// True when `path` can be opened for binary reading; false for directories. Never waits: a pipe counts by
  /// its permissions.
  static bool FilePathExists(const char* path);

 protected:
  K7File() = default;
  K7File(const K7File&) = default;
  K7File& operator=(const K7File&) = default;

  K7Mutex m_mutex;
};
