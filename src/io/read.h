// The contents of files, taken in with all that a file from outside may be: cut short, damaged, served by a
// host whose reads fail or claim more than was asked. Every format reads through this.
#pragma once

#include <k7/foundation/error_string.h>
#include <k7/io/file.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace k7read {

/// What a transfer of `n` bytes that ended with `result` comes to: 0, the file's negative result, or
/// K7_ERR_FILE_IO unless exactly `n` bytes went through.
inline int Whole(int result, int n) {
  if (result < 0) return result;
  return result == n ? 0 : K7_ERR_FILE_IO;
}

/// Reads exactly `n` bytes. Codes as above.
inline int Exact(K7File* file, void* p, int n) { return Whole(file->Read(p, n), n); }

/// Bytes from the file's position to its end, the position left where it was: negative behind the end, and
/// INT64_MIN for a file that cannot tell.
int64_t BytesLeft(K7File* file);

/// False when the file ends within the next `size` bytes, or cannot tell. Sizes of no weight are believed:
/// reading will show, and the question costs a stdio stream its buffer.
bool Holds(K7File* file, int64_t size);

/// Skips `size` bytes that a file says to pass over, unless it ends within them: then what it says is wrong,
/// and the position stays.
void SkipWithin(K7File* file, int64_t size);

/// Hands out values of a block of bytes in their order. Behind the block's end values are 0, and the cursor
/// is no longer whole.
class Cursor {
 public:
  Cursor(const void* bytes, size_t size)
      : m_next(static_cast<const unsigned char*>(bytes)), m_end(m_next + size) {}

  size_t Left() const { return static_cast<size_t>(m_end - m_next); }
  /// All that was asked for was there.
  bool IsWhole() const { return m_whole; }
  /// Null, and nothing passed over, when fewer than `n` bytes are left.
  const unsigned char* Skip(size_t n) {
    const unsigned char* const start = m_next;
    m_whole = m_whole && n <= Left();
    if (!m_whole) return nullptr;
    m_next += n;
    return start;
  }
  /// A number, or an array of them, as little-endian files have it.
  template <class T>
  void Little(T& value) {
    const unsigned char* const raw = Skip(sizeof value);
    if (raw)
      std::memcpy(&value, raw, sizeof value);
    else
      std::memset(&value, 0, sizeof value);
  }
  /// A number as big-endian files have it.
  template <class T>
  void Big(T& value) {
    Little(value);
    unsigned char* const raw = reinterpret_cast<unsigned char*>(&value);
    std::reverse(raw, raw + sizeof value);
  }

 private:
  const unsigned char* m_next;
  const unsigned char* m_end;
  bool m_whole = true;
};

/// A block of bytes from `malloc`.
class Block {
 public:
  Block() = default;
  ~Block();
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;

  /// Drops what was held. False without memory.
  bool Alloc(int64_t size);
  /// Takes in a file from its start to its end, a zero byte behind it, which `Size` does not count. 0,
  /// K7_ERR_MEMORY, the file's negative result, or K7_ERR_FILE_IO when its end is not told or not reached.
  int ReadFile(K7File* file);
  /// The same for a file opened as text, whose lines may come with fewer bytes than they have on the disk: as
  /// many bytes as come. 0, K7_ERR_MEMORY, or K7_ERR_FILE_IO when its end is not told, or a file with bytes
  /// gives none.
  int ReadText(K7File* file);

  unsigned char* Bytes() const { return m_bytes; }
  size_t Size() const { return m_size; }
  /// Hands the block over to the caller, who frees it.
  char* Release();

 private:
  // Makes the block that ReadFile fills, and finds the file's start: its size, or a code.
  int AllocFor(K7File* file);

  unsigned char* m_bytes = nullptr;
  size_t m_size = 0;
};

}  // namespace k7read
