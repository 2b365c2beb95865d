// A folder that is gone with the test.
#pragma once

#include <filesystem>
#include <string>

class TempDir {
 public:
  explicit TempDir(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string pattern = parent / "k7testXXXXXX";
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
