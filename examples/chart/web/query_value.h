// Values of queries that several services read.
#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// What stands between separators; one empty text of an empty one.
inline std::vector<std::string> SplitList(const std::string& text, char separator = ',') {
  std::vector<std::string> parts = {{}};
  for (const char c : text)
    if (c == separator)
      parts.emplace_back();
    else
      parts.back() += c;
  return parts;
}

/// Without blanks before and behind it.
inline std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string()
                                    : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

/// A finite number and nothing behind it, with a point in every locale. `value` is to be used after success
/// only.
template <class Number>
bool ReadValue(std::string_view text, Number& value) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const char* const last = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), last, value);
  if (error != std::errc() || stop != last) return false;
  if constexpr (std::is_floating_point_v<Number>) return std::isfinite(value);
  return true;
}

/// Four finite numbers with commas between, as bounds are written.
inline bool ReadEdges(const std::string& text, double (&edges)[4]) {
  const std::vector<std::string> parts = SplitList(text);
  if (parts.size() != std::size(edges)) return false;
  for (size_t i = 0; i < std::size(edges); ++i)
    if (!ReadValue(parts[i], edges[i])) return false;
  return true;
}
