#include <k7/foundation/log.h>

#include <k7/foundation/error_string.h>
#include <k7/foundation/string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>
#include <k7/io/io_native.h>

#include "io/os.h"

#include <cstdarg>
#include <ctime>
#include <new>
#include <typeinfo>

namespace {

constexpr char LETTERS[] = "DIWC";
constexpr char BANNER[] = "\n*****************************************\n\n";

bool IsLevel(int level) { return level >= K7_LOG_DEBUG && level <= K7_LOG_CRITICAL; }

// The line goes to WriteLine as it is, which takes it as a format: of two percent signs in a row one is
// written.
bool MakeLine(K7LogSeverity level, const char* message, K7String& line) {
  std::tm now{};
  if (!k7os::LocalTime(std::time(nullptr), now)) return false;
  if (line.Format("%02d:%02d:%02d  %c  %s", now.tm_hour, now.tm_min, now.tm_sec, LETTERS[level], message) < 0)
    return false;
  return line[line.Len() - 1] == '\n' || (line += '\n') == 0;
}

// What WriteLine makes of a line: of two percent signs one.
int WrittenLength(const char* line) {
  int length = 0;
  for (; *line; ++line, ++length)
    if (line[0] == '%' && line[1] == '%') ++line;
  return length;
}

// A native stream takes a line into its buffer even when the disk is full, and neither flushing nor closing
// reports that: where the stream stands then does, for the system drops what it could not write. Hosts' own
// files may not know where they stand.
bool WriteFlushed(K7File& file, const char* line) {
  const bool native = typeid(file) == typeid(K7FileK7);
  const int before = native ? file.Tell() : -1;
  if (!file.WriteLine(line)) return false;
  file.Flush();
  if (before < 0) return true;
  const int after = file.Tell();
  return after < 0 || after - before >= WrittenLength(line);
}

}  // namespace

K7Log* K7Log::m_log = nullptr;

K7Log::~K7Log() {
  if (m_file) m_file->WriteLine(BANNER);
  delete m_file;
}

bool K7Log::CreateLogFile(const char* path, K7IO* io) {
  CloseLogFile();
  if (!io) io = K7IO::Inst();
  if (!io) return false;
  m_log = new (std::nothrow) K7Log;
  if (!m_log) return false;
  m_log->m_file = io->CreateFileX(path, "a");
  if (m_log->m_file && m_log->m_file->WriteLine("\n\n")) m_log->m_file->Flush();
  return m_log->m_file != nullptr;
}

bool K7Log::CloseLogFile() {
  delete m_log;
  m_log = nullptr;
  return true;
}

void K7Log::SetMinReportedSeverity(K7LogSeverity level) {
  if (m_log && IsLevel(level)) m_log->m_minSeverity = level;
}

bool K7Log::LogMessage(K7LogSeverity level, const char* fmt, ...) {
  if (!m_log || !m_log->m_file || !m_log->m_file->IsValid() || !IsLevel(level)) return false;
  if (level < m_log->m_minSeverity) return true;

  if (!fmt) return false;

  K7String message;
  va_list args;
  va_start(args, fmt);
  const int length = message.FormatV(fmt, args);
  va_end(args);
  if (length == K7_ERR_MEMORY) return false;
  // What the formatter refuses (a lone "%" at the end, say) is worth more as it stands than not at all.
  K7String line;
  return MakeLine(level, length < 0 ? fmt : static_cast<const char*>(message), line) &&
         WriteFlushed(*m_log->m_file, line);
}
