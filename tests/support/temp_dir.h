// A folder that is gone with the test.
#pragma once

#include <filesystem>
#include <string>

class TempDir {
 public:
  TempDir() {
    std::string pattern = std::filesystem::temp_directory_path() / "k7testXXXXXX";
    m_path = mkdtemp(pattern.data());
  }
  ~TempDir() { std::filesystem::remove_all(m_path); }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& Path() const { return m_path; }
  std::string operator/(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};
