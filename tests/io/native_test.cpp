#include <k7/core.h>

#include "support/disk_file.h"
#include "support/http_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::unique_ptr<K7File> OpenFile(const std::string& path, const char* mode) {
  K7IOK7 io;
  return std::unique_ptr<K7File>(io.CreateFileX(path.c_str(), mode));
}

using Names = std::vector<std::string>;

class NativeIO : public testing::Test {
 protected:
  template <class... Depth>
  Names Found(void (K7IOK7::*find)(const char*, K7StrArray&, Depth...), const char* where, Depth... depth) {
    K7StrArray names;
    (io.*find)(where, names, depth...);
    Names out;
    for (int i = 0; i < names.Count(); ++i) out.emplace_back(names[i]);
    return out;
  }
  void TearDown() override { K7IO::Destroy(); }
  TempDir dir;
  K7IOK7 io;
};

TEST_F(NativeIO, StreamsReadSeekAndSwap) {
  const std::string path = dir / "bytes.bin";
  PutFile(path, std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a", 10));
  const auto file = OpenFile(path, "rb");
  const struct {
    int (K7File::*read)(void*);
    void (*swap)(void*);
    int at, result;
    uint64_t value, swapped;
  } CASES[] = {
      {&K7File::Read16, K7File::ByteSwap16, 0, 0, 0x0201, 0x0102},
      {&K7File::Read32, K7File::ByteSwap32, 1, 0, 0x05040302, 0x02030405},
      {&K7File::Read64, K7File::ByteSwap64, 2, 0, 0x0a09080706050403, 0x030405060708090a},
      {&K7File::Read32, K7File::ByteSwap32, 8, 0, 0x0a09, 0x090a0000},  // a part counts as success
      {&K7File::Read32, K7File::ByteSwap32, 10, K7_ERR_FILE_IO, 0, 0},
  };
  for (const auto& [read, swap, at, result, value, swapped] : CASES) {
    uint64_t word = 0;
    EXPECT_TRUE(file->Seek(at));
    EXPECT_EQ((file.get()->*read)(&word), result) << at;
    EXPECT_EQ(word, value);
    swap(&word);
    EXPECT_EQ(word, swapped);
  }
  EXPECT_TRUE(file->Seek(-1));
  EXPECT_EQ(file->Tell(), 10);
  file->Close();
  EXPECT_FALSE(file->IsValid());
  EXPECT_EQ(file->Tell(), -1);
  EXPECT_FALSE(file->Seek(0));
  char byte = 0;
  EXPECT_EQ(file->Read(&byte, 1), 0);
  EXPECT_EQ(file->Write(&byte, 1), 0);
  EXPECT_TRUE(file->Open(path.c_str(), "rb"));
  EXPECT_EQ(file->Read(&byte, 0), 0);
}

TEST_F(NativeIO, LinesKeepCarriageReturnsAndPercentSigns) {
  const std::string path = dir / "lines.txt";
  const auto file = OpenFile(path, "wb");
  for (const char* const text : {"100%% sure\r\n", "%s and %d%n stay\n", "%%%"})
    EXPECT_TRUE(file->WriteLine(text));
  EXPECT_EQ(GetFile(path), "");
  file->Flush();
  EXPECT_EQ(GetFile(path), "100% sure\r\n%s and %d%n stay\n%%");

  file->Close();
  EXPECT_FALSE(file->WriteLine("x"));
  file->Open(path.c_str(), "rb");
  EXPECT_FALSE(file->WriteLine("x")) << "opened for reading";
  char line[64] = "";
  EXPECT_FALSE(file->ReadLine(line, 0));
  for (const char* const expected : {"100% su", "re\r", "%s and ", "%d%n st", "ay", "%%"}) {
    EXPECT_TRUE(file->ReadLine(line, 8));
    EXPECT_STREQ(line, expected);
  }
  EXPECT_FALSE(file->ReadLine(line, 8));
}

TEST_F(NativeIO, FilePathExistsTakesReadableFilesOnly) {
  if (ON_WINDOWS) GTEST_SKIP() << "no pipes in folders, no mode bits";
  const std::string path = dir / "here.txt", pipe = dir / "pipe";
  EXPECT_FALSE(K7File::FilePathExists(path.c_str()));
  PutFile(path, "x");
  EXPECT_TRUE(K7File::FilePathExists(path.c_str()));
  EXPECT_FALSE(K7File::FilePathExists(dir.Path().c_str()));
  EXPECT_FALSE(OpenFile(dir.Path(), "rb")->IsValid()) << "else its checksum would be that of an empty file";
  EXPECT_FALSE(K7File::FilePathExists(nullptr));
  fs::permissions(path, fs::perms::none);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_TRUE(K7File::FilePathExists(pipe.c_str())) << "and no wait for a writer";
  const Nobody nobody(dir);
  EXPECT_FALSE(K7File::FilePathExists(path.c_str()));
  EXPECT_EQ(K7File::FilePathExists(pipe.c_str()), !nobody.Changed());
}

// What is asked and refused gives its descriptor back.
TEST_F(NativeIO, HoldsNoDescriptors) {
  if (ON_WINDOWS) GTEST_SKIP() << "no /proc to count them in";
  const auto open = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
  const auto before = open();
  PutFile(dir / "file", "x");
  K7StrArray names;
  K7File::FilePathExists((dir / "file").c_str());
  io.FindFiles((dir / "*").c_str(), names);
  const auto folder = OpenFile(dir.Path(), "rb");
  { const auto file = OpenFile(dir / "file", "rb"); }
  fs::create_hard_link(dir / "file", dir / "other");
  for (const char* const name : {"file", "new"}) EXPECT_EQ(K7XmlElem("a").WriteFile((dir / name).c_str()), 0);
  EXPECT_EQ(open(), before);
}

TEST_F(NativeIO, PatternsMatchTheLastComponentWithoutRegardToCase) {
  if (ON_WINDOWS) GTEST_SKIP() << "symbolic links need a privilege there";
  for (const char* name :
       {"report.txt", "report.txt~", "Alpha.TXT", "beta.txt", "noext", "plan[1].dat", "plan1.dat"})
    PutFile(dir / name, "");
  fs::create_directory(dir / "Sub.txt");
  const std::pair<const char*, Names> CASES[] = {
      {"*.txt", {"Alpha.TXT", "beta.txt", "report.txt", "Sub.txt"}},
      {"?ETA.*", {"beta.txt"}},
      {"*.*",
       {".", "..", "Alpha.TXT", "beta.txt", "noext", "plan1.dat", "plan[1].dat", "report.txt", "Sub.txt"}},
      {"none*", {}},
      {"**E*.?X?", {"beta.txt", "report.txt"}},
      {"PLAN[1]*", {"plan[1].dat"}},  // brackets stand for themselves
  };
  for (const auto& [pattern, expected] : CASES)
    EXPECT_EQ(Found(&K7IOK7::FindFiles, (dir / pattern).c_str()), expected) << pattern;
  EXPECT_EQ(Found(&K7IOK7::FindDirs, (dir.Path() + "\\*").c_str()), Names{"Sub.txt"});

  EXPECT_TRUE(io.DeleteFileX((dir.Path() + "\\beta.txt").c_str()));
  EXPECT_FALSE(io.DeleteFileX((dir / "beta.txt").c_str()));
  EXPECT_FALSE(io.DeleteFileX(nullptr));
}

#ifndef _WIN32
TEST_F(NativeIO, LinksToFoldersAreFolders) {
  fs::create_directory_symlink(dir.Path(), dir / "Link.txt");
  EXPECT_EQ(Found(&K7IOK7::FindDirs, (dir / "*").c_str()), Names{"Link.txt"});
  EXPECT_EQ(Found(&K7IOK7::FindFiles, "/proc*"), Names{"proc"}) << "at the root";
}
#endif

TEST_F(NativeIO, DirectoriesAreListedInPreOrderElevenLevelsDeep) {
  if (ON_WINDOWS) GTEST_SKIP() << "symbolic links need a privilege there";
  std::string deep = dir.Path();
  for (int level = 1; level <= 12; ++level) deep += "/d" + std::to_string(level);
  fs::create_directories(deep);
  fs::create_directories(dir / "d1/a");
  fs::create_directory_symlink("..", dir / "d1/a/up");  // not followed: it would never end
  TempDir elsewhere;
  fs::create_directories(elsewhere / "x/y");
  fs::create_directory_symlink(elsewhere / "x", dir / "d1/b");
  fs::create_directory_symlink(dir / "d1", elsewhere / "x/back");          // above by its name
  fs::create_directory_symlink(elsewhere.Path(), elsewhere / "x/y/real");  // above where it lies
  fs::create_directory_symlink("d1/a", dir / "a_too");                     // a neighbour

  const std::string top = dir.Path() + "\\";
  Names expected;
  for (std::string path : {"a_too/", "a_too/up/", "d1/", "d1/a/", "d1/a/up/", "d1/b/", "d1/b/back/",
                           "d1/b/y/", "d1/b/y/real/"}) {
    std::replace(path.begin(), path.end(), '/', '\\');
    expected.push_back(top + path);
  }
  std::string path = top + "d1\\";
  for (int level = 2; level <= 11; ++level) expected.push_back(path += "d" + std::to_string(level) + "\\");
  EXPECT_EQ(Found(&K7IOK7::FindDirsRecur, top.c_str(), 0), expected);
  EXPECT_EQ(Found(&K7IOK7::FindDirsRecur, top.c_str(), 11), Names());
  EXPECT_EQ(Found(&K7IOK7::FindDirsRecur, nullptr, 0), Names());
}

// Relative paths end at the working folder: what leads to it or above it is not followed.
TEST_F(NativeIO, RelativeDirectoriesAreListed) {
  if (ON_WINDOWS) GTEST_SKIP() << "symbolic links need a privilege there";
  fs::create_directories(dir / "work/in/side");
  fs::create_directories(dir / "work/i/below");
  fs::create_directory_symlink(dir.Path(), dir / "work/in/above");
  fs::create_directory_symlink(dir / "work/i", dir / "work/in/side/to_i");  // no part of "in"
  const fs::path before = fs::current_path();
  fs::current_path(dir / "work");
  EXPECT_EQ(Found(&K7IOK7::FindDirsRecur, "in/", 0),
            (Names{"in/above\\", "in/side\\", "in/side\\to_i\\", "in/side\\to_i\\below\\"}));
  fs::current_path(before);
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
  EXPECT_EQ(io.GetRVXVersionString(cut, -1), 0);
}

TEST_F(NativeIO, LibrariesLoadAndAnswer) {
#ifdef _WIN32
  void* const module = io.LoadLibraryX("zlib1.dll");
#else
  void* const module = io.LoadLibraryX("libz.so.1");
#endif
  ASSERT_NE(module, nullptr);
  const auto version = reinterpret_cast<const char* (*)()>(io.GetSymbol(module, "zlibVersion"));
  ASSERT_NE(version, nullptr);
  EXPECT_EQ(version()[0], '1');
  EXPECT_EQ(io.GetSymbol(module, "no_such_symbol"), nullptr);
  io.UnLoadLibrary(module);
  EXPECT_EQ(io.LoadLibraryX("/no/such/library"), nullptr);
  EXPECT_EQ(io.GetSymbol(nullptr, "zlibVersion"), nullptr);
}

TEST_F(NativeIO, UrlsAreDownloadedWholeOrNotAtAll) {
  if (!CanDownload(io)) GTEST_SKIP() << "no libcurl of 32 bits";
  const std::string body(100000, 'b');
  HttpServer server;
  server.Answer("/whole", "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + body);
  server.Answer("/cut", "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n" + body.substr(0, 5000));
  server.Answer("/longer", "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello world");
  server.Answer("/chunks",
                "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nhe\r\n3\r\nllo\r\n0\r\n\r\n");
  server.Answer("/empty", "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
  server.Answer("/missing", "HTTP/1.1 404 Not Found\r\nContent-Length: 9\r\n\r\nnot there");
  server.Answer("/moved", "HTTP/1.1 302 Found\r\nLocation: /whole\r\nContent-Length: 0\r\n\r\n");
  server.Answer("/astray",
                "HTTP/1.1 302 Found\r\nLocation: file:///etc/hostname\r\nContent-Length: 0\r\n\r\n");

  const std::string target = dir / "download";
  const auto fetch = [&](const std::string& url) { return io.ReadURL(url.c_str(), target.c_str()); };
  const std::pair<const char*, std::string> BODIES[] = {{"/whole", body},     {"/longer", "hello"},
                                                        {"/chunks", "hello"}, {"/missing", "not there"},
                                                        {"/empty", ""},       {"/moved", body}};
  for (const auto& [path, expected] : BODIES) {
    EXPECT_TRUE(fetch(server.Url(path))) << path;
    EXPECT_TRUE(GetFile(target) == expected) << path;
  }
  EXPECT_FALSE(fetch(server.Url("/cut")));
  EXPECT_FALSE(fs::exists(target)) << "half a file";
  PutFile(target, "kept");
  for (const std::string& url :
       {server.Url("/astray"), std::string("http://127.0.0.1:1/"), std::string("file:///etc/hostname")})
    EXPECT_FALSE(fetch(url)) << url;
  EXPECT_FALSE(io.ReadURL(nullptr, target.c_str()));
  EXPECT_EQ(GetFile(target), "kept");
  EXPECT_FALSE(io.ReadURL(server.Url("/whole").c_str(), (dir / "no/such/folder").c_str()))
      << "nor what the failed one before it left behind";
#ifndef _WIN32
  fs::create_symlink("/dev/full", dir / "full");
  EXPECT_FALSE(io.ReadURL(server.Url("/missing").c_str(), (dir / "full").c_str())) << "seen on closing only";
#endif
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
  if (ON_WINDOWS) GTEST_SKIP() << "a library's own objects go before the program's there";
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

}  // namespace
