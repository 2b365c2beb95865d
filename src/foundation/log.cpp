#include <k7/foundation/log.h>

#include <k7/foundation/string.h>
#include <k7/io/file.h>
#include <k7/io/io.h>

#include "io/os.h"

#include <cstdarg>
#include <ctime>
#include <new>

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

}  // namespace

K7Log* K7Log::m_log = nullptr;

K7Log::~K7Log() {
  if (m_file) m_file->WriteLine(BANNER);
  delete m_file;
}

bool K7Log::CreateLogFile(const char* path, K7IO* io) {
  CloseLogFile();
  if (!io) io = K7IO::Inst();
  if (!path || !io) return false;
  m_log = new (std::nothrow) K7Log;
  if (!m_log) return false;
  m_log->m_file = io->CreateFileX(path, "a");
  if (m_log->m_file) m_log->m_file->WriteLine("\n\n");
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

  K7String message;
  va_list args;
  va_start(args, fmt);
  const int length = message.FormatV(fmt, args);
  va_end(args);
  K7String line;
  if (length < 0 || !MakeLine(level, message, line) || !m_log->m_file->WriteLine(line)) return false;
  m_log->m_file->Flush();
  return true;
}
