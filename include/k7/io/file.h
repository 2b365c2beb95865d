// K7File: one open byte stream.
#pragma once

#include <k7/export.h>
#include <k7/foundation/mutex.h>

/// A K7File is an open byte stream; all file access of the library passes through it. `K7FileK7` is the
/// native implementation, and hosts may supply others (an archive, memory, a network volume) behind `K7IO`.
///
/// Every operation holds the file's own recursive mutex: one file is serialised, different files are free.
class K7_API K7File {
 public:
  /// Closes the stream.
  virtual ~K7File();

  /// \name Opening
  /// @{
  /// Answers whether the stream is open.
  virtual bool IsValid() = 0;
  /// Opens the file at `path`; `mode` is that of `fopen`. A current stream is forgotten, not closed: close
  /// first.
  virtual bool Open(const char* path, const char* mode) = 0;
  virtual void Close() = 0;
  /// @}

  /// \name Bytes and lines
  /// @{
  /// Reads at most `size` - 1 bytes up to a newline, which is read and removed (a carriage return before it
  /// stays). Answers false at end of file.
  virtual bool ReadLine(char* buf, int size) = 0;
  /// Writes `text` as a format without arguments: "%%" gives one percent sign, any other conversion is
  /// written as it stands. It adds no newline.
  virtual bool WriteLine(const char* text) = 0;
  /// Answers the bytes read, 0 at end of file or when not open. Other implementations may answer a negative
  /// code.
  virtual int Read(void* buf, int n) = 0;
  /// Answers the bytes written.
  virtual int Write(const void* buf, int n) = 0;
  /// Moves to `pos` from the start; any negative `pos` moves to the end. Answers whether the file is open,
  /// not whether it moved.
  virtual bool Seek(int pos) = 0;
  /// Answers the position, -1 when not open (or beyond what an int holds).
  virtual int Tell() = 0;
  virtual void Flush() = 0;
  /// @}

  /// \name Compressed files
  /// @{
  /// Writes `n` bytes of `data` as a compressed file. Answers 0, or -1 for null data or a failed write. A
  /// failed compression is 0 with nothing written.
  virtual int SecureCompress(const char* data, int n);
  /// Reads a whole compressed file. Answers 0 with `*out` holding the data and a zero byte behind it, which
  /// the caller frees with `free`; -1, and `*out` untouched, for a file that is not whole and sound.
  virtual int SecureDecompress(char** out);
  /// @}

  /// \name Words
  /// @{
  /// Read 2, 4 or 8 bytes as they lie in the file (little-endian, as the machine). Answer 0, the file's
  /// negative result, or K7_ERR_FILE_IO when nothing could be read. A partial read counts as success and
  /// leaves the rest of `p` alone.
  int Read16(void* p);
  int Read32(void* p);
  int Read64(void* p);
  /// Reverse the bytes in place, for big-endian fields.
  static void ByteSwap16(void* p);
  static void ByteSwap32(void* p);
  static void ByteSwap64(void* p);
  /// @}

  /// Answers whether `path` can be opened for binary reading; false for directories. It never waits: a pipe
  /// counts by its permissions.
  static bool FilePathExists(const char* path);

 protected:
  K7File() = default;
  K7File(const K7File&) = default;
  K7File& operator=(const K7File&) = default;

  K7Mutex m_mutex;
};
