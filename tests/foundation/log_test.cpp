#include <k7/foundation/log.h>
#include <k7/io/io_native.h>

#include "support/mem_io.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <ctime>
#include <fstream>

namespace {

const std::string BANNER = "\n*****************************************\n\n";

std::string Text(const MemIO& io) {
  const Bytes bytes = io.Get("log");
  return std::string(bytes.begin(), bytes.end());
}

// The lines with their times taken off, each checked to be no more than a minute off this test's own clock.
std::string WithoutTimes(const std::string& text) {
  std::string rest;
  for (size_t at = 0, end; at < text.size(); at = end + 1) {
    end = std::min(text.find('\n', at), text.size() - 1);
    int h = 0, m = 0, s = 0;
    std::string line = text.substr(at, end + 1 - at);
    if (std::sscanf(line.c_str(), "%2d:%2d:%2d  ", &h, &m, &s) == 3) {
      const time_t now = std::time(nullptr);
      const std::tm* const t = std::localtime(&now);
      const int late = (t->tm_hour - h) * 3600 + (t->tm_min - m) * 60 + t->tm_sec - s;
      EXPECT_LT((late + 86400) % 86400, 60);
      line.erase(0, 8);
    }
    rest += line;
  }
  return rest;
}

TEST(Log, LinesAreExact) {
  MemIO io;
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "before"));
  io.Put("log", std::string("earlier\n"));
  ASSERT_TRUE(K7Log::CreateLogFile("log", &io));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "suppressed"));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_INFO, "%d files in %s", 3, "a/b"));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_WARNING, "%s", "100% of %s, %%d\n")) << "a format to WriteLine";
  K7Log::SetMinReportedSeverity(static_cast<K7LogSeverity>(4));
  K7Log::SetMinReportedSeverity(static_cast<K7LogSeverity>(-1));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "still suppressed"));
  K7Log::SetMinReportedSeverity(K7_LOG_DEBUG);
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "two\nlines"));
  EXPECT_FALSE(K7Log::LogMessage(static_cast<K7LogSeverity>(4), "no such level"));
  EXPECT_FALSE(K7Log::LogMessage(static_cast<K7LogSeverity>(-1), "no such level"));
  const std::string longText(10000, 'x');
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, "%s", longText.c_str()));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, ""));
  const char* const percent = "done to 100%";
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, percent));
  EXPECT_TRUE(K7Log::CloseLogFile());
  EXPECT_TRUE(K7Log::CloseLogFile());
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "behind"));
  EXPECT_EQ(WithoutTimes(Text(io)),
            "earlier\n\n\n  I  3 files in a/b\n  W  100% of %s, %d\n  D  two\nlines\n  C  " + longText +
                "\n  C  \n  C  done to 100%\n" + BANNER);

  // A new log closes the one before it, and its threshold with it.
  io.Put("log", std::string());
  ASSERT_TRUE(K7Log::CreateLogFile("log", &io));
  ASSERT_TRUE(K7Log::CreateLogFile("log", &io));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "suppressed"));
  K7Log::CloseLogFile();
  EXPECT_EQ(Text(io), "\n\n" + BANNER + "\n\n" + BANNER);
}

TEST(Log, FailuresAnswerFalse) {
  MemIO io;
  io.room = 30;
  ASSERT_TRUE(K7Log::CreateLogFile("log", &io));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_INFO, "fits"));
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_INFO, "the disk is full"));
  K7Log::CloseLogFile();

  K7IOK7 native;
  EXPECT_TRUE(K7Log::CreateLogFile("/no/such/folder/log", &native));
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "no file"));
  EXPECT_TRUE(K7Log::CloseLogFile());
  EXPECT_TRUE(K7Log::CreateLogFile(nullptr, &native));
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "no file"));
  EXPECT_TRUE(K7Log::CloseLogFile());
}

// Files may grow to a few bytes only: a disk that fills up in the middle of a line.
TEST(Log, FullDiskIsReported) {
  const TempDir temp;
  const std::string path = temp / "log";
  std::ofstream(path) << "earlier 100%";
  const pid_t child = fork();
  if (child == 0) {
    K7IOK7 io;
    K7Log::CreateLogFile(path.c_str(), &io);
    bool right = K7Log::LogMessage(K7_LOG_INFO, "%s", "fits, 100%% and %%d");
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{60, 60};
    setrlimit(RLIMIT_FSIZE, &limit);
    for (int i = 0; i < 3; ++i) right = right && !K7Log::LogMessage(K7_LOG_INFO, "too long for what is left");
    K7Log::CloseLogFile();
    _exit(right ? 0 : 1);
  }
  int status = 1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
