// K7Log: the process-wide text log.
#pragma once

#include <k7/export.h>

class K7File;
class K7IO;

/// Ranks messages, the least severe first.
enum K7LogSeverity : int {
  K7_LOG_DEBUG = 0,
  K7_LOG_INFO = 1,
  K7_LOG_WARNING = 2,
  K7_LOG_CRITICAL = 3,
};

/// One log for the process, with a severity threshold, in a file that the host names. A line is
/// "hh:mm:ss  S  message": local wall-clock time and one of the letters D, I, W, C, two blanks on each side
/// of it. Each line is flushed at once, so that the log survives a crash.
///
/// Several threads may log at once, and lines stay whole; creating, closing and setting the threshold are for
/// a time when no other thread logs. Nothing closes the log by itself.
class K7_API K7Log {
 public:
  /// Makes the record behind the static operations: no file, threshold K7_LOG_INFO.
  K7Log() = default;
  /// Writes the closing banner and closes the file.
  ~K7Log();
  K7Log(const K7Log&) = delete;
  K7Log& operator=(const K7Log&) = delete;

  /// \name The file
  /// @{
  /// Closes the current log and opens `path` through `io` (null: `K7IO::Inst`) to be appended to, two empty
  /// lines first. Answers true when `io` gives a file object, also one that failed to open (the native
  /// services give one for a null path, too): then `LogMessage` answers false.
  static bool CreateLogFile(const char* path, K7IO* io);
  /// Writes the closing banner, a line of 41 asterisks with an empty line on each side, and ends the log.
  /// Answers true.
  static bool CloseLogFile();
  /// @}

  /// \name Messages
  /// @{
  /// Suppresses messages below `level` from now on. It does nothing without a log and for a level outside 0
  /// to 3.
  static void SetMinReportedSeverity(K7LogSeverity level);
  /// Writes one line, `fmt` expanded as by `K7String::Format`; a newline is added unless the message ends
  /// with one. The line goes through `K7File::WriteLine`, so that two percent signs in a row in the
  /// expansion become one. A template that cannot be expanded is written as it stands. A suppressed message
  /// is a success.
  ///
  /// Answers false without an open log, for a null `fmt` or a level outside 0 to 3, and when the line could
  /// not be made or written, as on a full disk. K7_ERR_LOG is the code for a caller that must report one.
  static bool LogMessage(K7LogSeverity level, const char* fmt, ...);
  /// @}

 private:
  K7File* m_file = nullptr;
  int m_minSeverity = K7_LOG_INFO;

  static K7Log* m_log;
};
