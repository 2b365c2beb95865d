#include <k7/core.h>

#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace {

namespace fs = std::filesystem;

// What the standard library's own calls take for a path in UTF-8 of any length.
fs::path Native(const std::string& path) {
#ifdef _WIN32
  const fs::path full = fs::absolute(std::u8string(path.begin(), path.end())).make_preferred();
  return L"\\\\?\\" + full.native();
#else
  return path;
#endif
}

bool Write(const std::string& path, const char* mode, const char* line) {
  const std::unique_ptr<K7File> file(K7IO::Inst()->CreateFileX(path.c_str(), mode));
  return file->WriteLine(line);
}

// Names with letters of two, three and four bytes, in a folder whose path is longer than 260 characters.
TEST(Paths, AreUtf8OfAnyLength) {
  static const char FIRST[] = "\xc3\x84pfel \xe2\x82\xac.txt", SECOND[] = "\xf0\x9f\x98\x80pfel.xml";
  const TempDir dir;
  std::string folder = dir.Path();
  while (folder.size() < 400) folder += "/" + std::string(60, 'd');
  fs::create_directories(Native(folder));
  const std::string path = folder + "/" + FIRST;
  EXPECT_TRUE(Write(path, "w", "a\nb\r\n"));
  EXPECT_TRUE(Write(folder + "/../" + std::string(60, 'd') + "\\" + FIRST, "a", "c\n"));
  std::ifstream in(Native(path), std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "a\nb\r\nc\n") << "no line end changes";
  in.close();
  EXPECT_TRUE(K7File::FilePathExists(path.c_str()));
  for (int i = 0; i < 2; ++i)  // the second one takes the place of the first
    EXPECT_EQ(K7XmlElem("a").WriteFile((folder + "/" + SECOND).c_str()), 0);

  K7StrArray names;
  K7IO::Inst()->FindFiles((folder + "\\?PFEL*").c_str(), names);
  ASSERT_EQ(names.Count(), 2) << "a character, be it of four bytes";
  EXPECT_STREQ(names[0], FIRST);
  EXPECT_STREQ(names[1], SECOND);
  EXPECT_TRUE(K7IO::Inst()->DeleteFileX(path.c_str()));
  EXPECT_FALSE(fs::exists(Native(path)));
  K7IO::Inst()->DeleteFileX((folder + "/" + SECOND).c_str());
  for (; folder != dir.Path(); folder.resize(folder.rfind('/'))) fs::remove(Native(folder));
  K7IO::Destroy();
}

}  // namespace
