// What threads share: the instances of the process, one file, one log, one table of options. Torn results are
// looked for by themselves; the thread sanitizer sees the rest.
#include <k7/core.h>

#include "support/disk_file.h"
#include "support/http_server.h"
#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <chrono>
#include <cstdlib>
#include <sstream>
#include <thread>

namespace {

constexpr int THREADS = 3;

// `work` gets the thread's number; all begin together.
template <class Work>
void InThreads(Work work) {
  std::barrier start(THREADS);
  std::vector<std::thread> threads;
  for (int t = 0; t < THREADS; ++t)
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      work(t);
    });
  for (std::thread& thread : threads) thread.join();
}

// One thread changes what all share while the others ask whether it looks whole, all the time.
template <class Change, class Ask>
int WrongWhile(int rounds, Change change, Ask ask) {
  std::atomic<int> wrong{0};
  std::atomic<bool> done{false};
  InThreads([&](int t) {
    for (int i = 0; t == 0 && i < rounds; ++i) wrong += !change(i);
    if (t == 0) done = true;
    while (!done) wrong += !ask(t);
  });
  return wrong;
}

struct CountedIO : MemIO {
  explicit CountedIO(std::atomic<int>& count) : deleted(count) {}
  ~CountedIO() override {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));  // for others to come upon it
    ++deleted;
  }
  std::atomic<int>& deleted;
};

// Lets others in wherever an operation has no lock of its own around its parts.
struct YieldingFile : K7FileK7 {
  using K7FileK7::K7FileK7;
  int Read(void* buf, int n) override {
    std::this_thread::yield();
    return K7FileK7::Read(buf, n);
  }
  int Write(const void* buf, int n) override {
    std::this_thread::yield();
    return K7FileK7::Write(buf, n);
  }
};

class SharedFile : public testing::Test {
 protected:
  TempDir dir;
  const std::string path = dir / "shared.bin";
};

TEST(Threads, MakeSetAndDeleteOneInstance) {
  for (int round = 0; round < 100; ++round) {
    K7IO* made[THREADS];
    InThreads([&](int t) { made[t] = K7IO::Inst(); });
    for (K7IO* const io : made) ASSERT_EQ(io, made[0]) << round;
    K7IO::Destroy();

    std::atomic<int> deleted{0};
    CountedIO* const io = new CountedIO(deleted);
    InThreads([&](int t) {
      K7IO::SetInst(io);
      made[t] = K7IO::Inst();
    });
    for (K7IO* const found : made) EXPECT_EQ(found, io);
    InThreads([](int) { K7IO::Destroy(); });
    ASSERT_EQ(deleted, 1) << round;
  }
}

std::string Letters(int t, size_t length) { return std::string(length, static_cast<char>('a' + t)); }

std::string ReadBytes(K7File& file, int n) {
  std::string bytes(static_cast<size_t>(n), '\0');
  bytes.resize(static_cast<size_t>(file.Read(bytes.data(), n)));
  return bytes;
}

// Each writes in its own way, in several pieces or across the ends of the stream's buffer.
TEST_F(SharedFile, ThreadsWriteWholeTexts) {
  constexpr int TEXTS = 500;
  K7FileK7(path.c_str(), "wb").SecureCompress(Letters(0, 400).data(), 400);
  const std::string written[THREADS] = {Letters(0, 3001), std::string(300, '%') + "\n", GetFile(path)};
  const std::string line = std::string(600, '%') + "\n";
  YieldingFile file(path.c_str(), "w+b");
  InThreads([&](int t) {
    for (int i = 0; i < TEXTS; ++i)
      t == 0   ? file.Write(written[0].data(), 3001)
      : t == 1 ? file.WriteLine(line.c_str())
               : file.SecureCompress(Letters(0, 400).data(), 400);
  });
  file.Flush();
  const std::string all = GetFile(path);
  std::vector<int> counts(THREADS);
  for (size_t at = 0; at < all.size();) {
    const auto begins = [&](const std::string& text) { return all.compare(at, text.size(), text) == 0; };
    const auto found = std::find_if(std::begin(written), std::end(written), begins);
    ASSERT_NE(found, std::end(written)) << at;
    ++counts[static_cast<size_t>(found - written)];
    at += found->size();
  }
  EXPECT_EQ(counts, std::vector<int>(THREADS, TEXTS));
}

// From a pipe, which makes readers wait in the middle.
TEST_F(SharedFile, ThreadsReadEachTextOnce) {
  if (ON_WINDOWS) GTEST_SKIP() << "no pipes in folders";
  constexpr int COUNT = 400, SIZE = 30000;
  std::string bytes;
  for (int i = 0; i < COUNT; ++i) bytes += Letters(i % 26, SIZE);
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { PutFile(path, bytes); });
  K7FileK7 file(path.c_str(), "rb");
  std::atomic<int> whole{0};
  InThreads([&](int) {
    for (std::string text; !(text = ReadBytes(file, SIZE)).empty();)
      whole += text == std::string(SIZE, text[0]);
  });
  writer.join();
  EXPECT_EQ(whole, COUNT);
}

TEST_F(SharedFile, ThreadsDecompressWholeTexts) {
  K7FileK7(path.c_str(), "wb").SecureCompress(Letters(0, 400).data(), 400);
  YieldingFile file(path.c_str(), "rb");
  std::atomic<int> wrong{0};
  InThreads([&](int) {
    for (int i = 0; i < 200; ++i) {
      char* out = nullptr;
      wrong += file.SecureDecompress(&out) != 0 || Letters(0, 400) != out;
      std::free(out);
    }
  });
  EXPECT_EQ(wrong, 0);
}

// Without a zone the C library reads its own for each line, under a lock that the sanitizer does not see.
TEST_F(SharedFile, ThreadsLogWholeLines) {
  K7IOK7 io;
  ASSERT_TRUE(K7Log::CreateLogFile(path.c_str(), &io));
  setenv("TZ", "UTC0", 1);
  K7Log::LogMessage(K7_LOG_INFO, "begin");
  InThreads([](int t) {
    for (int i = 0; i < 500; ++i) K7Log::LogMessage(K7_LOG_INFO, "thread %d %%%% %%%% end", t);
  });
  unsetenv("TZ");
  K7Log::CloseLogFile();
  std::istringstream logged(GetFile(path));
  std::map<std::string, int> counts;
  for (std::string line; std::getline(logged, line);) ++counts[line.substr(std::min<size_t>(line.size(), 8))];
  for (const char t : {'0', '1', '2'}) EXPECT_EQ(counts[std::string("  I  thread ") + t + " % % end"], 500);
}

// The others do one thing and nothing else, so that no other operation's lock stands in for a missing one.
TEST_F(SharedFile, ThreadsWorkWhileOneOpensAndCloses) {
  static constexpr bool (*WORK[])(K7FileK7&) = {
      [](K7FileK7& file) { return file.IsValid() || true; },
      [](K7FileK7& file) { return ReadBytes(file, 1).find_first_not_of('x') == std::string::npos; },
      [](K7FileK7& file) {
        char line[64] = "x";
        return file.ReadLine(line, sizeof line) == (line[1] == 'x');
      },
      [](K7FileK7& file) { return file.Write("x", 1) <= 1; },
      [](K7FileK7& file) { return file.WriteLine("x") || true; },
      [](K7FileK7& file) { return file.Seek(10) || true; },
      [](K7FileK7& file) { return file.Tell() <= 0; },
      [](K7FileK7& file) { return file.Flush(), true; },
  };
  for (const auto& work : WORK) {
    PutFile(path, std::string(500000, 'x'));
    K7FileK7 file(path.c_str(), "r+b");
    const auto reopen = [&](int) { return file.Close(), file.Open(path.c_str(), "r+b"); };
    EXPECT_EQ(WrongWhile(300, reopen, [&](int) { return work(file); }), 0) << "operation " << &work - WORK;
  }
}

TEST_F(SharedFile, ThreadsDownloadThroughOneInstance) {
  K7IOK7 io;
  if (!CanDownload(io)) GTEST_SKIP() << "no libcurl of 32 bits";
  HttpServer server;
  for (int t = 0; t < THREADS; ++t)
    server.Answer("/" + std::to_string(t),
                  "HTTP/1.0 200 OK\r\nContent-Length: 50000\r\n\r\n" + Letters(t, 50000));
  std::atomic<int> wrong{0};
  InThreads([&](int t) {
    const std::string name = std::to_string(t), file = path + name;
    for (int i = 0; i < 10; ++i)
      wrong +=
          !io.ReadURL(server.Url("/" + name).c_str(), file.c_str()) || GetFile(file) != Letters(t, 50000);
  });
  EXPECT_EQ(wrong, 0);
}

// What is read is never made on first use.
TEST(Threads, ReadOneTree) {
  K7XmlElem root;
  ASSERT_NE(root.Parse("<a><b c=\"1\" d=\"&lt;2\">t</b><b c=\"1\" d=\"&lt;2\">t</b></a>"), nullptr);
  InThreads([&](int) {
    K7String name, value;
    for (const K7XmlElem* b = root.FirstChild(); b; b = b->NextSibling()) {
      EXPECT_EQ(b->NumAttribs(), 2);
      EXPECT_TRUE(b->GetAttribByIndex(1, name, value) && name == "d" && value == "<2");
      EXPECT_STREQ(b->AttribValue("c"), "1");
      const std::unique_ptr<K7XmlElem> copy(b->Clone());
      EXPECT_STREQ(copy->AttribValue("d"), "<2");
      EXPECT_EQ(root.ChildText("none"), "");
    }
  });
}

// Two settings that always agree in the files: whoever asks or writes meanwhile finds both of one file.
TEST(Threads, SeeOptionsOfOneFile) {
  MemIO io;
  const ScopedIO scope(&io);
  static constexpr bool (*ASK[])(K7Options&) = {
      [](K7Options& options) { return options.GetKeyValueByIndex(1) != nullptr; },
      [](K7Options& options) { return options.GetKeyValueByName("Second") != nullptr; },
      [](K7Options& options) { return options.GetValueByKey("First", "") != nullptr; },
      [](K7Options& options) {
        K7PtrArray found;
        return options.GetKeyValuesByGroup("", found) == 0 && found.Count() == 2;
      },
  };
  io.Put("0.xml", std::string("<Options><First>0</First><Second>0</Second></Options>"));
  io.Put("1.xml", std::string("<Options><First>1</First><Second>1</Second></Options>"));
  K7Options& options = *K7Options::Inst();
  const auto read = [&](int i) { return options.Read(i % 2 ? "1.xml" : "0.xml") == 0; };
  read(0);
  for (const auto& ask : ASK) {
    const auto isWhole = [&](int t) {
      if (t == 1) return ask(options);
      K7XmlElem written;
      return options.Write("out.xml") == 0 && written.ParseFile("out.xml") == 0 &&
             written.ChildText("First") == written.ChildText("Second");
    };
    EXPECT_EQ(WrongWhile(300, read, isWhole), 0) << "question " << &ask - ASK;
  }
  K7Options::Destroy();
}

}  // namespace
