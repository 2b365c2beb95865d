// What an import has to say about its files: lines that were left out, and how far it has come.
#pragma once

#include <functional>
#include <string>
#include <vector>

/// Keeps what was wrong with the lines of files: the first of each file in words, of the others their number.
class ImportLog {
 public:
  static constexpr int SHOWN = 20;

  /// Those that follow are about this file.
  void Begin(const std::string& file);
  /// `line` counts from 1. `what` may quote the file: windows-1252, and nothing that a terminal would obey
  /// gets through.
  void Problem(int line, const std::string& what);
  int Count() const { return m_count; }
  /// One text a line, "nav.dat:17: ...", the last of a file's "nav.dat: 5 more lines".
  std::vector<std::string> Lines() const;

 private:
  struct File {
    std::string name;
    std::vector<std::string> shown;
    int count = 0;
  };
  std::vector<File> m_files;
  int m_count = 0;
};

/// Told what is being done, and how far that is, 0 to 1.
using ImportProgress = std::function<void(const std::string& what, double share)>;
