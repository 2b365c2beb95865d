#include "store/import_lines.h"

#include "store/text_1252.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

class FileSource : public ByteSource {
 public:
  FileSource(gzFile file, double size) : m_file(file), m_size(size) {}
  ~FileSource() override { gzclose_r(m_file); }
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;

  long Read(char* to, size_t room) override {
    const int count = gzread(m_file, to, static_cast<unsigned>(room));
    if (count > 0) return count;
    // The end of a compressed file that was cut off is no end.
    int error = Z_OK;
    gzerror(m_file, &error);
    return error == Z_OK || error == Z_STREAM_END ? 0 : -1;
  }
  double Share() const override {
    return m_size > 0 ? std::min(static_cast<double>(gzoffset(m_file)) / m_size, 1.0) : 0;
  }

 private:
  gzFile m_file;
  double m_size;
};

}  // namespace

std::unique_ptr<ByteSource> OpenSource(const std::string& path) {
  std::error_code failed;
  if (std::filesystem::is_directory(path, failed)) return nullptr;
  const auto size = std::filesystem::file_size(path, failed);
  const gzFile file = gzopen(path.c_str(), "rb");
  if (!file) return nullptr;
  gzbuffer(file, 65536);
  return std::make_unique<FileSource>(file, failed ? 0.0 : static_cast<double>(size));
}

long MemorySource::Read(char* to, size_t room) {
  const size_t count = std::min(room, m_bytes.size());
  if (count > 0) std::memcpy(to, m_bytes.data(), count);
  m_bytes.remove_prefix(count);
  return static_cast<long>(count);
}

bool LineReader::Fill() {
  m_at = m_end = 0;
  if (m_damaged) return false;
  const long count = m_source.Read(m_buffer, sizeof m_buffer);
  m_damaged = count < 0;
  if (count > 0) m_end = static_cast<size_t>(count);
  return m_end > 0;
}

bool LineReader::Next(std::string_view& line) {
  m_line.clear();
  m_problem = nullptr;
  bool any = false;
  for (bool ended = false; !ended && (m_at < m_end || Fill());) {
    any = true;
    const char* const begin = m_buffer + m_at;
    const char* const end = std::find(begin, static_cast<const char*>(m_buffer) + m_end, '\n');
    ended = end != m_buffer + m_end;
    const auto count = static_cast<size_t>(end - begin);
    m_at += count + (ended ? 1 : 0);
    if (m_line.size() + count > MAX_LINE) m_problem = "the line is too long";
    m_line.append(begin, std::min(count, MAX_LINE - m_line.size()));
  }
  if (!any) return false;
  ++m_number;
  if (!m_line.empty() && m_line.back() == '\r') m_line.pop_back();
  if (m_line.find('\0') != std::string::npos) m_problem = "the line holds a byte of zero";
  if (m_number == 1 && m_line.starts_with(BYTE_ORDER_MARK)) m_line.erase(0, BYTE_ORDER_MARK.size());
  if (!m_problem && !IsAscii(m_line) && IsUtf8(m_line)) m_line = Text1252(m_line);
  line = m_line;
  return true;
}
