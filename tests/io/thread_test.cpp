// What threads share: the instances of the process, one file, one log, one table of options. Torn results are
// looked for by themselves; the thread sanitizer sees the rest.
#include <k7/core.h>

#include "support/http_server.h"
#include "support/mem_io.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <thread>

namespace {

constexpr int THREADS = 3;
constexpr int TEXTS = 200;

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

struct CountedIO : MemIO {
  explicit CountedIO(std::atomic<int>& count) : deleted(count) {}
  ~CountedIO() override { ++deleted; }
  std::atomic<int>& deleted;
};

class SharedFile : public testing::Test {
 protected:
  std::string Load() const {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TempDir dir;
  const std::string path = dir / "shared.bin";
};

TEST(Threads, MakeOneInstanceAndDeleteItOnce) {
  for (int round = 0; round < 300; ++round) {
    K7IO* made[THREADS];
    InThreads([&](int t) { made[t] = K7IO::Inst(); });
    for (K7IO* const io : made) ASSERT_EQ(io, made[0]) << round;
    K7IO::Destroy();

    std::atomic<int> deleted{0};
    K7IO::SetInst(new CountedIO(deleted));
    InThreads([](int) { K7IO::Destroy(); });
    ASSERT_EQ(deleted, 1) << round;
  }
}

TEST(Threads, FindTheInstanceThatOneSets) {
  MemIO first, second;
  K7IO::SetInst(&first);
  std::atomic<int> strangers{0};
  InThreads([&](int t) {
    for (int i = 0; i < 1000; ++i) {
      if (t == 0) K7IO::SetInst(i % 2 ? &first : &second);
      const K7IO* const io = K7IO::Inst();
      strangers += io != &first && io != &second;
    }
  });
  K7IO::SetInst(nullptr);
  EXPECT_EQ(strangers, 0);
}

// Records of one repeated byte, across the ends of a stream's buffer.
constexpr int RECORD = 3001, RECORDS = 200;

TEST_F(SharedFile, ThreadsWriteWholeRecords) {
  {
    K7FileK7 file(path.c_str(), "wb");
    InThreads([&](int t) {
      const std::string record(RECORD, static_cast<char>('a' + t));
      for (int i = 0; i < RECORDS; ++i) file.Write(record.data(), RECORD);
    });
  }
  const std::string bytes = Load();
  ASSERT_EQ(bytes.size(), static_cast<size_t>(THREADS * RECORDS * RECORD));
  int torn = 0, counts[THREADS] = {};
  for (size_t at = 0; at < bytes.size(); at += RECORD) {
    torn += bytes.compare(at, RECORD, std::string(RECORD, bytes[at])) != 0;
    ++counts[bytes[at] - 'a'];
  }
  EXPECT_EQ(torn, 0);
  for (const int count : counts) EXPECT_EQ(count, RECORDS);
}

TEST_F(SharedFile, ThreadsReadEachRecordOnce) {
  constexpr int COUNT = 60000;
  std::vector<int32_t> numbers(COUNT);
  for (int i = 0; i < COUNT; ++i) numbers[static_cast<size_t>(i)] = i;
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<char*>(numbers.data()), 4 * COUNT);
  K7FileK7 file(path.c_str(), "rb");
  std::vector<int32_t> got[THREADS];
  InThreads([&](int t) {
    int32_t pair[2];
    if (t == 0)
      while (file.Read32(pair) == 0) got[t].push_back(pair[0]);
    else
      while (file.Read(pair, t * 4) == t * 4) got[t].insert(got[t].end(), pair, pair + t);
  });
  std::set<int32_t> all;
  size_t sum = 0;
  for (const std::vector<int32_t>& some : got) {
    EXPECT_TRUE(std::is_sorted(some.begin(), some.end()));
    all.insert(some.begin(), some.end());
    sum += some.size();
  }
  // The last pair may be half of one.
  EXPECT_GE(sum, static_cast<size_t>(COUNT - 1));
  EXPECT_EQ(all.size(), sum);
  EXPECT_LT(*all.rbegin(), COUNT);
}

// A line goes out in pieces, one for each percent sign.
TEST_F(SharedFile, ThreadsLogAndWriteWholeLines) {
  const std::string lines[] = {"one%%two%%three%%four%%five\n", "a%%b%%c%%d\n", "%%%%%%%%\n"};
  {
    K7FileK7 file(path.c_str(), "wb");
    InThreads([&](int t) {
      for (int i = 0; i < 2000; ++i) file.WriteLine(lines[t].c_str());
    });
  }
  std::map<std::string, int> counts;
  std::ifstream written(path);
  for (std::string line; std::getline(written, line);) ++counts[line];
  EXPECT_EQ(counts, (std::map<std::string, int>{
                        {"one%two%three%four%five", 2000}, {"a%b%c%d", 2000}, {"%%%%", 2000}}));

  const std::string log = dir / "log.txt";
  K7IOK7 io;
  ASSERT_TRUE(K7Log::CreateLogFile(log.c_str(), &io));
  // Without one the C library reads its zone for each line, under a lock that the sanitizer does not see.
  setenv("TZ", "UTC0", 1);
  K7Log::LogMessage(K7_LOG_INFO, "begin");
  InThreads([](int t) {
    for (int i = 0; i < 500; ++i) K7Log::LogMessage(K7_LOG_INFO, "thread %d %%%% %%%% end", t);
  });
  unsetenv("TZ");
  K7Log::CloseLogFile();
  std::ifstream logged(log);
  int whole[THREADS] = {};
  for (std::string line; std::getline(logged, line);)
    for (int t = 0; t < THREADS; ++t)
      whole[t] += line.size() > 8 && line.substr(8) == "  I  thread " + std::to_string(t) + " % % end";
  for (const int count : whole) EXPECT_EQ(count, 500);
}

// Two threads do one thing and nothing else, so that no other operation's lock stands in for a missing one.
TEST_F(SharedFile, ThreadsWorkWhileOneOpensAndCloses) {
  static constexpr bool (*WORK[])(K7FileK7&) = {
      [](K7FileK7& file) { return file.IsValid() || true; },
      [](K7FileK7& file) {
        char c = 'x';
        return file.Read(&c, 1) <= 1 && c == 'x';
      },
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
    std::ofstream(path) << std::string(500000, 'x');
    K7FileK7 file(path.c_str(), "r+b");
    std::atomic<int> wrong{0};
    std::atomic<bool> done{false};
    InThreads([&](int t) {
      for (int i = 0; t == 0 && i < 300; ++i) {
        file.Close();
        wrong += !file.Open(path.c_str(), "r+b");
      }
      if (t == 0) done = true;
      while (!done) wrong += !work(file);
    });
    EXPECT_EQ(wrong, 0) << "operation " << &work - WORK;
  }
}

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

TEST_F(SharedFile, ThreadsCompressAndDecompressWholeTexts) {
  std::string text;
  for (int i = 0; i < 400; ++i) text += static_cast<char>('a' + i * i % 23);
  const int size = static_cast<int>(text.size());
  K7FileK7(path.c_str(), "wb").SecureCompress(text.data(), size);
  const std::string unit = Load();
  std::atomic<int> wrong{0};
  {
    YieldingFile file(path.c_str(), "rb");
    InThreads([&](int) {
      for (int i = 0; i < TEXTS; ++i) {
        char* out = nullptr;
        wrong += file.SecureDecompress(&out) != 0 || text != out;
        std::free(out);
      }
    });
  }
  EXPECT_EQ(wrong, 0);
  {
    YieldingFile file(path.c_str(), "wb");
    InThreads([&](int) {
      for (int i = 0; i < TEXTS; ++i) file.SecureCompress(text.data(), size);
    });
  }
  std::string expected;
  for (int i = 0; i < TEXTS * THREADS; ++i) expected += unit;
  EXPECT_TRUE(Load() == expected);
}

TEST_F(SharedFile, ThreadsDownloadThroughOneInstance) {
  HttpServer server;
  for (int t = 0; t < THREADS; ++t)
    server.Answer("/" + std::to_string(t), "HTTP/1.0 200 OK\r\nContent-Length: 50000\r\n\r\n" +
                                               std::string(50000, static_cast<char>('a' + t)));
  K7IOK7 io;
  std::atomic<int> failed{0};
  InThreads([&](int t) {
    const std::string file = path + std::to_string(t);
    for (int i = 0; i < 10; ++i)
      failed += !io.ReadURL(server.Url("/" + std::to_string(t)).c_str(), file.c_str());
  });
  EXPECT_EQ(failed, 0);
  for (int t = 0; t < THREADS; ++t) {
    std::ifstream file(path + std::to_string(t), std::ios::binary);
    EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(file), {}) ==
                std::string(50000, static_cast<char>('a' + t)));
  }
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
  io.Put("0.xml", std::string("<Options><First>0</First><Second>0</Second></Options>"));
  io.Put("1.xml", std::string("<Options><First>1</First><Second>1</Second></Options>"));
  K7Options& options = *K7Options::Inst();
  options.Read("0.xml");
  for (const auto& ask : ASK) {
    std::atomic<int> wrong{0};
    std::atomic<bool> done{false};
    InThreads([&](int t) {
      for (int i = 0; t == 0 && i < 300; ++i) wrong += options.Read(i % 2 ? "1.xml" : "0.xml") != 0;
      if (t == 0) done = true;
      while (t == 1 && !done) wrong += !ask(options);
      while (t == 2 && !done) {
        options.Write("out.xml");
        const Bytes bytes = io.Get("out.xml");
        const std::string text(bytes.begin(), bytes.end());
        const size_t first = text.find("<First>"), second = text.find("<Second>");
        wrong += std::max(first, second) == std::string::npos || text[first + 7] != text[second + 8];
      }
    });
    EXPECT_EQ(wrong, 0) << "question " << &ask - ASK;
  }
  K7Options::Destroy();
}

}  // namespace
