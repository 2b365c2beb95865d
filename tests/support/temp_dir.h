// A folder that is gone with the test.
#pragma once

#include <filesystem>
#include <random>
#include <string>

class TempDir {
 public:
  explicit TempDir(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::random_device random;
    do m_path = (parent / ("k7test" + std::to_string(random()))).string();
    while (!std::filesystem::create_directory(m_path));
  }
  ~TempDir() {
    std::error_code ignored;  // what a test left open may stay behind on Windows
    std::filesystem::remove_all(m_path, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& Path() const { return m_path; }
  std::string operator/(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};
