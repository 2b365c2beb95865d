// Lines of a text file from outside, plain or compressed, read in bounded memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// Where bytes come from.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Up to `room` bytes; 0 at the end, negative when the file is damaged.
  virtual long Read(char* to, size_t room) = 0;
  /// How much has been read, 0 to 1.
  virtual double Share() const { return 0; }

 protected:
  ByteSource() = default;
  ByteSource(const ByteSource&) = default;
  ByteSource& operator=(const ByteSource&) = default;
};

/// A file, through zlib when it is compressed. Null when it does not open.
std::unique_ptr<ByteSource> OpenSource(const std::string& path);

/// Bytes that the caller keeps.
class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::string_view bytes) : m_bytes(bytes) {}
  long Read(char* to, size_t room) override;

 private:
  std::string_view m_bytes;
};

/// Lines as records hold texts, in windows-1252: published files mix it with UTF-8, line by line, and few
/// sequences of letters beyond ASCII are valid in both.
class LineReader {
 public:
  /// Longer lines are no rows of any of the formats.
  static constexpr size_t MAX_LINE = 8192;

  explicit LineReader(ByteSource& source) : m_source(source) {}
  /// The next line without its end, LF or CR LF; it lives until the next call. False at the end of the file,
  /// where `Damaged` says whether that was its own.
  bool Next(std::string_view& line);
  bool Damaged() const { return m_damaged; }
  /// Number of the line, from 1.
  int Number() const { return m_number; }
  /// Why the line cannot be a row, whatever the format; null when it can. Such a line is handed out cut.
  const char* Problem() const { return m_problem; }
  double Share() const { return m_source.Share(); }

 private:
  bool Fill();

  ByteSource& m_source;
  char m_buffer[65536];
  size_t m_at = 0;
  size_t m_end = 0;
  std::string m_line;
  const char* m_problem = nullptr;
  int m_number = 0;
  bool m_damaged = false;
};
