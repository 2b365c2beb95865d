// Texts of numbers, as ASCII grids and tables hold them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Reads a file, no more than `most` bytes of it. False when it cannot be opened and read.
bool ReadText(const std::string& path, std::string& text, uintmax_t most = UINTMAX_MAX);

/// Hands out the words of a text, which must outlive it.
class Words {
 public:
  explicit Words(std::string_view text) : m_rest(text) {}

  /// What stands up to the next white space; empty at the end.
  std::string_view Next();
  std::string_view Rest() const { return m_rest; }

 private:
  std::string_view m_rest;
};

/// Reads metres that a post can have, a void as not a number; what is wrong with others goes into `problem`.
bool ReadMetres(std::string_view word, double& metres, std::string& problem);
std::string Lower(std::string_view text);
