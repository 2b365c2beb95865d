#include <k7/core.h>

#include "support/disk_file.h"
#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

const std::string BANNER = "\n*****************************************\n\n";

std::string WallClock() {
  char text[16];
  const time_t now = std::time(nullptr);
  std::strftime(text, sizeof text, "%H:%M:%S", std::localtime(&now));
  return text;
}

TEST(Log, LinesAreExact) {
  MemIO io;
  const ScopedIO scope(&io);
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "before"));
  io.Put("log", std::string("earlier\n"));
  const std::string start = WallClock();
  ASSERT_TRUE(K7Log::CreateLogFile("log", nullptr));
  const std::string longText(10000, 'x');
  const char* const percent = "done to 100%";
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "suppressed"));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_INFO, "%d files in %s", 3, "a/b"));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_WARNING, "%s", "100% of %s, %%d\n")) << "a format to WriteLine";
  for (const int none : {-1, 4}) {
    K7Log::SetMinReportedSeverity(static_cast<K7LogSeverity>(none));
    EXPECT_FALSE(K7Log::LogMessage(static_cast<K7LogSeverity>(none), "no such level"));
  }
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "still suppressed"));
  K7Log::SetMinReportedSeverity(K7_LOG_DEBUG);
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "two\nlines"));
  K7Log::SetMinReportedSeverity(K7_LOG_CRITICAL);
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, "%s", longText.c_str()));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, ""));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, percent));
  const wchar_t noUnicode[] = {static_cast<wchar_t>(0xD800), 0};
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_CRITICAL, "%ls", noUnicode));
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, nullptr));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(K7Log::CloseLogFile());
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "behind"));
  std::string text = io.Text("log");
  const std::string end = WallClock(), first = text.substr(10, 8);
  EXPECT_TRUE(end < start || (start <= first && first <= end)) << first;  // the end is less at midnight
  for (size_t colon; (colon = text.find(':')) != std::string::npos;) text.erase(colon - 2, 8);
  EXPECT_EQ(text, "earlier\n\n\n  I  3 files in a/b\n  W  100% of %s, %d\n  D  two\nlines\n  C  " + longText +
                      "\n  C  \n  C  done to 100%\n  C  %ls\n" + BANNER);

  // A new log closes the one before it, and its threshold with it.
  io.Put("log", std::string());
  for (int i = 0; i < 2; ++i) ASSERT_TRUE(K7Log::CreateLogFile("log", &io));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_DEBUG, "suppressed"));
  K7Log::CloseLogFile();
  EXPECT_EQ(io.Text("log"), "\n\n" + BANNER + "\n\n" + BANNER);
}

TEST(Log, FailuresAnswerFalse) {
  const TempDir temp;
  MemIO io;
  io.room = 30;
  K7IOK7 native;
  ASSERT_TRUE(K7Log::CreateLogFile("log", &io));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_INFO, "fits"));
  EXPECT_FALSE(K7Log::LogMessage(K7_LOG_INFO, "the disk is full"));
  for (const char* const none : {"/no/such/folder/log", static_cast<const char*>(nullptr)}) {
    EXPECT_TRUE(K7Log::CreateLogFile(none, &native));
    EXPECT_FALSE(K7Log::LogMessage(K7_LOG_CRITICAL, "no file"));
  }
  if (ON_WINDOWS) GTEST_SKIP() << "no limit of a file's size";
  const SmallDisk disk(59);
  EXPECT_TRUE(K7Log::CreateLogFile((temp / "log").c_str(), &native));
  EXPECT_TRUE(K7Log::LogMessage(K7_LOG_INFO, "%s", "fits, 100%% and %%d"));
  for (int i = 0; i < 3; ++i)
    EXPECT_FALSE(K7Log::LogMessage(K7_LOG_INFO, "%s", "full to 100 %")) << i;  // by a byte
  K7Log::CloseLogFile();
}

}  // namespace
