// Values of queries that several services read.
#pragma once

#include <charconv>
#include <string>
#include <vector>

/// What stands between commas; one empty text of an empty one.
inline std::vector<std::string> SplitList(const std::string& text) {
  std::vector<std::string> parts = {{}};
  for (const char c : text)
    if (c == ',')
      parts.emplace_back();
    else
      parts.back() += c;
  return parts;
}

/// A number and nothing behind it, with a point in every locale. It may be no finite one.
template <class Number>
bool ReadValue(const std::string& text, Number& value) {
  const char* const first = text.data() + (text.starts_with('+') ? 1 : 0);
  const char* const last = text.data() + text.size();
  const auto [stop, error] = std::from_chars(first, last, value);
  return error == std::errc() && stop == last;
}
