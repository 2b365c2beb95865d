// What threads share: the instances of the process, one file, one log, one table of options. Torn results are
// looked for by themselves; the thread sanitizer sees the rest.
#include <k7/core.h>

#include "support/disk_file.h"
#include "support/http_server.h"
#include "support/mem_io.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
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
  ~CountedIO() override { ++deleted; }
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
  for (int round = 0; round < 300; ++round) {
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

// Text of one repeated letter, long enough to lie across the ends of a stream's buffer.
std::string Letters(int t, size_t length) { return std::string(length, static_cast<char>('a' + t)); }

std::string ReadBytes(K7File& file, int n) {
  std::string bytes(static_cast<size_t>(n), '\0');
  bytes.resize(static_cast<size_t>(file.Read(bytes.data(), n)));
  return bytes;
}

// Each thread writes a text of its own many times, and then they read them: every text comes out whole, and
// once.
TEST_F(SharedFile, ThreadsWriteAndReadWholeTexts) {
  constexpr int TEXTS = 1000;
  static constexpr struct {
    void (*write)(K7File&, int t);
    std::string (*read)(K7File&);
  } KINDS[] = {
      {[](K7File& file, int t) { file.Write(Letters(t, 3001).data(), 3001); },
       [](K7File& file) { return ReadBytes(file, 3001); }},
      {[](K7File& file, int t) { file.Write(Letters(t, 4).data(), 4); },
       [](K7File& file) {
         char word[5] = {};
         return file.Read32(word) == 0 ? std::string(word) : std::string();
       }},
      // A line is written in pieces, one for each percent sign.
      {[](K7File& file, int t) { file.WriteLine((Letters(t, 50) + "%%b%%c%%d\n").c_str()); },
       [](K7File& file) {
         char line[80];
         return file.ReadLine(line, sizeof line) ? std::string(line) : std::string();
       }},
      // The length, and then a stream, four and fourteen bytes for a run of 400.
      {[](K7File& file, int t) { file.SecureCompress(Letters(t, 400).data(), 400); },
       [](K7File& file) { return ReadBytes(file, 18); }},
  };
  for (const auto& kind : KINDS) {
    const auto& [write, read] = kind;
    // What the three write one after the other.
    std::map<std::string, int> expected, all;
    for (int t = 0; t < THREADS; ++t) {
      K7FileK7 alone(path.c_str(), "w+b");
      write(alone, t);
      alone.Seek(0);
      expected[read(alone)] = TEXTS;
      EXPECT_EQ(read(alone), "");
    }
    YieldingFile file(path.c_str(), "w+b");
    InThreads([&](int t) {
      for (int i = 0; i < TEXTS; ++i) write(file, t);
    });
    file.Seek(0);
    std::map<std::string, int> got[THREADS];
    InThreads([&](int t) {
      for (std::string text; !(text = read(file)).empty();) ++got[t][text];
    });
    for (const auto& some : got)
      for (const auto& [text, count] : some) all[text] += count;
    EXPECT_TRUE(all == expected) << "kind " << &kind - KINDS;
  }
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
  HttpServer server;
  for (int t = 0; t < THREADS; ++t)
    server.Answer("/" + std::to_string(t),
                  "HTTP/1.0 200 OK\r\nContent-Length: 50000\r\n\r\n" + Letters(t, 50000));
  K7IOK7 io;
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
  static constexpr bool (*ASK[])(K7Options&) = {
      [](K7Options& options) { return options.GetKeyValueByIndex(1) != nullptr; },
      [](K7Options& options) { return options.GetKeyValueByName("Second") != nullptr; },
      [](K7Options& options) { return options.GetValueByKey("First", "") != nullptr; },
      [](K7Options& options) {
        K7PtrArray found;
        return options.GetKeyValuesByGroup("", found) == 0 && found.Count() == 2;
      },
  };
  MemIO io;
  const ScopedIO scope(&io);
  const char* const files[] = {"0.xml", "1.xml"};
  io.Put(files[0], std::string("<Options><First>0</First><Second>0</Second></Options>"));
  io.Put(files[1], std::string("<Options><First>1</First><Second>1</Second></Options>"));
  K7Options& options = *K7Options::Inst();
  options.Read(files[1]);
  const auto writesOneFile = [&] {
    options.Write("out.xml");
    const Bytes bytes = io.Get("out.xml");
    const std::string text(bytes.begin(), bytes.end());
    const size_t first = text.find("<First>"), second = text.find("<Second>");
    return std::max(first, second) != std::string::npos && text[first + 7] == text[second + 8];
  };
  for (const auto& ask : ASK) {
    const auto whole = [&](int t) { return t == 1 ? ask(options) : writesOneFile(); };
    EXPECT_EQ(WrongWhile(
                  300, [&](int i) { return options.Read(files[i % 2]) == 0; }, whole),
              0)
        << "question " << &ask - ASK;
  }
  K7Options::Destroy();
}

}  // namespace
