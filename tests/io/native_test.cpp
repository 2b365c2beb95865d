#include <k7/core.h>

#include "support/http_server.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

std::unique_ptr<K7File> OpenFile(const std::string& path, const char* mode) {
  K7IOK7 io;
  return std::unique_ptr<K7File>(io.CreateFileX(path.c_str(), mode));
}

void PutFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string GetFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> Texts(const K7StrArray& names) {
  std::vector<std::string> out;
  for (int i = 0; i < names.Count(); ++i) out.emplace_back(names[i]);
  return out;
}

using Names = std::vector<std::string>;

// Root may read and write everything: for a while this process is somebody else, to whom `dir` is open and
// `file` belongs.
class Nobody {
 public:
  explicit Nobody(const TempDir& dir, const char* file = nullptr) {
    if (!Changed()) return;
    std::filesystem::permissions(dir.Path(), std::filesystem::perms::all);
    const bool given = !file || chown((dir / file).c_str(), USER, USER) == 0;
    EXPECT_TRUE(given && seteuid(USER) == 0);
  }
  ~Nobody() { EXPECT_TRUE(!Changed() || seteuid(0) == 0); }
  static bool Changed() { return getuid() == 0; }

 private:
  static constexpr uid_t USER = 65534;
};

class NativeIO : public testing::Test {
 protected:
  void TearDown() override { K7IO::Destroy(); }
  TempDir dir;
  K7IOK7 io;
};

TEST_F(NativeIO, StreamsReadSeekAndSwap) {
  const std::string path = dir / "bytes.bin";
  PutFile(path, std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a", 10));
  const auto file = OpenFile(path, "rb");
  ASSERT_TRUE(file->IsValid());

  uint64_t word = 0;
  EXPECT_EQ(file->Read64(&word), 0);
  EXPECT_EQ(word, 0x0807060504030201u);
  K7File::ByteSwap64(&word);
  EXPECT_EQ(word, 0x0102030405060708u);
  uint32_t part = 0;
  EXPECT_EQ(file->Read32(&part), 0) << "a partial read counts as success";
  EXPECT_EQ(part, 0x0a09u);
  EXPECT_EQ(file->Read32(&part), K7_ERR_FILE_IO);
  EXPECT_TRUE(file->Seek(-1));
  EXPECT_EQ(file->Tell(), 10);
  EXPECT_TRUE(file->Seek(1));
  uint16_t half = 0;
  EXPECT_EQ(file->Read16(&half), 0);
  K7File::ByteSwap16(&half);
  EXPECT_EQ(half, 0x0203);

  file->Close();
  EXPECT_FALSE(file->IsValid());
  EXPECT_EQ(file->Tell(), -1);
  EXPECT_FALSE(file->Seek(0));
  EXPECT_EQ(file->Read(&part, 4), 0);
  EXPECT_TRUE(file->Open(path.c_str(), "rb"));
}

TEST_F(NativeIO, LinesKeepCarriageReturnsAndPercentSigns) {
  const std::string path = dir / "lines.txt";
  {
    const auto file = OpenFile(path, "wb");
    EXPECT_TRUE(file->WriteLine("100%% sure\r\n"));
    EXPECT_TRUE(file->WriteLine("%s and %d%n stay\n"));
    EXPECT_TRUE(file->WriteLine("%%%"));
    EXPECT_EQ(GetFile(path), "");
    file->Flush();
    EXPECT_NE(GetFile(path), "");
  }
  EXPECT_EQ(GetFile(path), "100% sure\r\n%s and %d%n stay\n%%");

  const auto file = OpenFile(path, "rb");
  char line[8];
  EXPECT_TRUE(file->ReadLine(line, sizeof line));
  EXPECT_STREQ(line, "100% su");
  EXPECT_TRUE(file->ReadLine(line, sizeof line));
  EXPECT_STREQ(line, "re\r");
  char rest[64];
  EXPECT_TRUE(file->ReadLine(rest, sizeof rest));
  EXPECT_TRUE(file->ReadLine(rest, sizeof rest));
  EXPECT_STREQ(rest, "%%");
  EXPECT_FALSE(file->ReadLine(rest, sizeof rest));
}

TEST_F(NativeIO, FilePathExistsTakesReadableFilesOnly) {
  const std::string path = dir / "here.txt";
  EXPECT_FALSE(K7File::FilePathExists(path.c_str()));
  PutFile(path, "x");
  EXPECT_TRUE(K7File::FilePathExists(path.c_str()));
  EXPECT_FALSE(K7File::FilePathExists(dir.Path().c_str()));
  EXPECT_FALSE(OpenFile(dir.Path(), "rb")->IsValid()) << "else its checksum would be that of an empty file";
  EXPECT_FALSE(K7File::FilePathExists(nullptr));
  std::filesystem::permissions(path, std::filesystem::perms::none);
  ASSERT_EQ(mkfifo((dir / "pipe").c_str(), 0600), 0);
  EXPECT_TRUE(K7File::FilePathExists((dir / "pipe").c_str())) << "and no wait for a writer";
  const Nobody nobody(dir);
  EXPECT_FALSE(K7File::FilePathExists(path.c_str()));
  EXPECT_EQ(K7File::FilePathExists((dir / "pipe").c_str()), !nobody.Changed());
}

TEST_F(NativeIO, TreesAreWrittenThroughLinksAndNotOverReadOnlyFiles) {
  K7XmlElem tree;
  ASSERT_NE(tree.Parse("<new/>", nullptr), nullptr);
  // A chain of links, the last to a file that is not there yet.
  std::filesystem::create_directory(dir / "sub");
  std::filesystem::create_symlink("sub/second", dir / "first");
  std::filesystem::create_symlink("target.xml", dir / "sub/second");
  EXPECT_EQ(tree.WriteFile((dir / "first").c_str()), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(dir / "first"));
  EXPECT_TRUE(std::filesystem::is_symlink(dir / "sub/second"));
  EXPECT_NE(GetFile(dir / "sub/target.xml").find("<new"), std::string::npos);

  PutFile(dir / "kept.xml", "kept");
  const Nobody nobody(dir, "kept.xml");
  std::filesystem::permissions(dir / "kept.xml", std::filesystem::perms::owner_read);
  EXPECT_EQ(tree.WriteFile((dir / "kept.xml").c_str()), K7_ERR_FILE_IO);
  EXPECT_EQ(GetFile(dir / "kept.xml"), "kept");
}

TEST_F(NativeIO, PatternsMatchTheLastComponentWithoutRegardToCase) {
  for (const char* name : {"report.txt", "report.txt~", "Alpha.TXT", "beta.txt", "noext"})
    PutFile(dir / name, "");
  std::filesystem::create_directory(dir / "Sub.txt");
  const auto find = [&](const char* pattern) {
    K7StrArray out;
    io.FindFiles((dir / pattern).c_str(), out);
    return Texts(out);
  };
  EXPECT_EQ(find("*.txt"), (Names{"Alpha.TXT", "beta.txt", "report.txt", "Sub.txt"}));
  EXPECT_EQ(find("?ETA.*"), (Names{"beta.txt"}));
  EXPECT_EQ(find("*.*"), (Names{".", "..", "Alpha.TXT", "beta.txt", "noext", "report.txt", "Sub.txt"}));
  EXPECT_EQ(find("none*"), Names{});
  EXPECT_EQ(find("**E*.?X?"), (Names{"beta.txt", "report.txt"}));
  PutFile(dir / "plan[1].dat", "");
  PutFile(dir / "plan1.dat", "");
  EXPECT_EQ(find("PLAN[1]*"), (Names{"plan[1].dat"})) << "brackets stand for themselves";

  K7StrArray dirs;
  io.FindDirs((dir.Path() + "\\*").c_str(), dirs);
  EXPECT_EQ(Texts(dirs), (Names{"Sub.txt"}));

  EXPECT_TRUE(io.DeleteFileX((dir.Path() + "\\beta.txt").c_str()));
  EXPECT_FALSE(io.DeleteFileX((dir / "beta.txt").c_str()));
  EXPECT_FALSE(io.DeleteFileX(nullptr));
}

TEST_F(NativeIO, DirectoriesAreListedInPreOrderElevenLevelsDeep) {
  std::string deep = dir.Path();
  for (int level = 1; level <= 12; ++level) deep += "/d" + std::to_string(level);
  std::filesystem::create_directories(deep);
  std::filesystem::create_directories(dir / "d1/a");
  std::filesystem::create_directory_symlink("..", dir / "d1/a/up");  // not followed: it would never end
  TempDir elsewhere;
  std::filesystem::create_directories(elsewhere / "x/y");
  std::filesystem::create_directory_symlink(elsewhere / "x", dir / "d1/b");
  std::filesystem::create_directory_symlink(dir / "d1", elsewhere / "x/back");          // above by its name
  std::filesystem::create_directory_symlink(elsewhere.Path(), elsewhere / "x/y/real");  // above where it lies
  std::filesystem::create_directory_symlink("d1/a", dir / "a_too");                     // a neighbour

  K7StrArray out;
  const std::string top = dir.Path() + "\\";
  io.FindDirsRecur(top.c_str(), out, 0);
  Names expected;
  for (const char* path : {"a_too/", "a_too/up/", "d1/", "d1/a/", "d1/a/up/", "d1/b/", "d1/b/back/",
                           "d1/b/y/", "d1/b/y/real/"}) {
    expected.push_back(top + path);
    std::replace(expected.back().begin() + static_cast<std::ptrdiff_t>(top.size()), expected.back().end(),
                 '/', '\\');
  }
  std::string path = top + "d1\\";
  for (int level = 2; level <= 11; ++level) expected.push_back(path += "d" + std::to_string(level) + "\\");
  EXPECT_EQ(Texts(out), expected);

  K7StrArray none;
  io.FindDirsRecur(top.c_str(), none, 11);
  io.FindDirsRecur(nullptr, none, 0);
  EXPECT_EQ(none.Count(), 0);
}

TEST_F(NativeIO, VersionFile) {
  char version[30];
  EXPECT_EQ(io.GetRVXVersionString(version, sizeof version), 0);
  EXPECT_STREQ(version, "0.0.0");

  const std::string folder = dir.Path() + "/";
  EXPECT_EQ(io.RetrieveRVXVersionString(folder.c_str()), K7_ERR_INVALID_DATA);
  PutFile(dir / "RVX.version", "");
  EXPECT_EQ(io.RetrieveRVXVersionString(folder.c_str()), K7_ERR_INVALID_DATA);
  PutFile(dir / "RVX.version", "12.34.5678901234567890123456789 and more\nsecond");
  EXPECT_EQ(io.RetrieveRVXVersionString(folder.c_str()), 0);
  io.GetRVXVersionString(version, sizeof version);
  EXPECT_STREQ(version, "12.34.56789012345678901234567");

  char cut[4] = {'x', 'x', 'x', 'x'};
  io.GetRVXVersionString(cut, 3);
  EXPECT_EQ(std::string(cut, 4), "12.x") << "no terminator when the version fills the room";
}

TEST_F(NativeIO, LibrariesLoadAndAnswer) {
  void* const module = io.LoadLibraryX("libz.so.1");
  ASSERT_NE(module, nullptr);
  using Version = const char* (*)();
  const auto version = reinterpret_cast<Version>(io.GetSymbol(module, "zlibVersion"));
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version()[0], '1');
  EXPECT_EQ(io.GetSymbol(module, "no_such_symbol"), nullptr);
  io.UnLoadLibrary(module);
  EXPECT_EQ(io.LoadLibraryX("/no/such/library"), nullptr);
  EXPECT_EQ(io.GetSymbol(nullptr, "zlibVersion"), nullptr);
}

TEST_F(NativeIO, UrlsAreDownloadedWholeOrNotAtAll) {
  const std::string body(100000, 'b');
  HttpServer server;
  server.Answer("/whole", "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + body);
  server.Answer("/cut", "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + body.substr(0, 5000));
  server.Answer("/empty", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
  server.Answer("/missing", "HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nnot there");

  const std::string target = dir / "download";
  EXPECT_TRUE(io.ReadURL(server.Url("/whole").c_str(), target.c_str()));
  EXPECT_EQ(GetFile(target), body);
  EXPECT_TRUE(io.ReadURL(server.Url("/missing").c_str(), target.c_str()))
      << "an error page is a body like any other";
  EXPECT_EQ(GetFile(target), "not there");
  EXPECT_TRUE(io.ReadURL(server.Url("/empty").c_str(), target.c_str()));
  EXPECT_EQ(std::filesystem::file_size(target), 0u);

  EXPECT_FALSE(io.ReadURL(server.Url("/cut").c_str(), target.c_str()));
  EXPECT_FALSE(std::filesystem::exists(target)) << "half a file";
  std::filesystem::create_symlink("/dev/full", dir / "full");
  EXPECT_FALSE(io.ReadURL(server.Url("/missing").c_str(), (dir / "full").c_str())) << "seen on closing only";
  PutFile(target, "kept");
  EXPECT_FALSE(io.ReadURL("http://127.0.0.1:1/", target.c_str()));
  EXPECT_EQ(GetFile(target), "kept");
  EXPECT_FALSE(io.ReadURL(server.Url("/whole").c_str(), (dir / "no/such/folder").c_str()));
  EXPECT_FALSE(io.ReadURL("file:///etc/hostname", target.c_str()));
  EXPECT_FALSE(io.ReadURL(nullptr, target.c_str()));
}

TEST_F(NativeIO, InstanceIsMadeOnFirstUseAndReplaceable) {
  K7IO* const first = K7IO::Inst();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(K7IO::Inst(), first);
  K7IO::SetInst(&io);
  EXPECT_EQ(K7IO::Inst(), &io);
  K7IO::SetInst(first);
}

// A host's own functions that run at the end of the process, registered before the library is first used, run
// after what the library would have destroyed.
void UseTheLibraryAtExit() {
  K7IO* const first = K7IO::Inst();
  const bool found = K7File::FilePathExists("/dev/null");
  K7IO::Destroy();
  if (!first || !found || !K7IO::Inst()) _exit(1);
}

TEST(NativeIODeathTest, ServesUntilTheProcessEnds) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process of its own
  EXPECT_EXIT(
      {
        alarm(20);
        std::atexit(UseTheLibraryAtExit);
        UseTheLibraryAtExit();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(NativeIO, ThreadsShareOneFile) {
  const auto inThreads = [](const auto& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back([&work, i] { work(i); });
    for (std::thread& thread : threads) thread.join();
  };
  // A line with a percent sign is written in two pieces.
  constexpr int LINES = 3000;
  const char* const texts[] = {"first %% half\n", "second %% line\n", "the %% third\n"};
  const auto lines = OpenFile(dir / "shared.txt", "wb");
  inThreads([&](int i) {
    for (int n = 0; n < LINES; ++n) lines->WriteLine(texts[i]);
  });
  lines->Close();
  lines->Open((dir / "shared.txt").c_str(), "rb");
  char line[64];
  std::map<std::string, int> counts;
  while (lines->ReadLine(line, sizeof line)) ++counts[line];
  EXPECT_EQ(counts, (std::map<std::string, int>{
                        {"first % half", LINES}, {"second % line", LINES}, {"the % third", LINES}}));

  // Every word comes once, whoever reads it.
  constexpr uint32_t WORDS = 300000;
  std::string bytes;
  for (uint32_t i = 0; i < WORDS; ++i) bytes.append(reinterpret_cast<const char*>(&i), sizeof i);
  PutFile(dir / "words.bin", bytes);
  const auto words = OpenFile(dir / "words.bin", "rb");
  std::vector<std::vector<uint32_t>> read(3);
  inThreads([&](int i) {
    uint32_t word = 0;
    while (i == 0 ? words->Read32(&word) == 0 : words->Read(&word, sizeof word) == sizeof word)
      read[static_cast<size_t>(i)].push_back(word);
  });
  std::vector<int> seen(WORDS);
  for (const std::vector<uint32_t>& part : read)
    for (const uint32_t word : part) ++seen[std::min(word, WORDS - 1)];
  EXPECT_EQ(seen, std::vector<int>(WORDS, 1));
}

TEST_F(NativeIO, ThreadsShareOneInstance) {
  for (int round = 0; round < 100; ++round) {
    K7IO::Destroy();
    std::atomic<int> ready = 0;
    std::vector<K7IO*> found(3);
    std::vector<std::thread> threads;
    for (K7IO*& instance : found)
      threads.emplace_back([&] {
        for (++ready; ready < 3;) continue;
        instance = K7IO::Inst();
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(found[0] && found[0] == found[1] && found[1] == found[2]);
  }
}

}  // namespace
