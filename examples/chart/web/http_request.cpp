#include "web/http_request.h"

#include "web/limits.h"

#include <k7/foundation/string.h>

#include <algorithm>

namespace {

int DigitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// Decodes "%41"; `plus` makes "+" a blank, as forms send it. False for half a code, and for control
// characters, which no name or value here has.
bool DecodePercent(std::string_view text, bool plus, std::string& decoded) {
  decoded.clear();
  for (size_t i = 0; i < text.size(); ++i) {
    char c = plus && text[i] == '+' ? ' ' : text[i];
    if (c == '%') {
      if (text.size() - i < 3) return false;
      const int high = DigitOf(text[i + 1]), low = DigitOf(text[i + 2]);
      if (high < 0 || low < 0) return false;
      c = static_cast<char>(high * 16 + low);
      i += 2;
    }
    if (IsControl(c)) return false;
    decoded += c;
  }
  return true;
}

bool Climbs(std::string_view path) {
  while (!path.empty()) {
    const size_t slash = std::min(path.find('/'), path.size());
    const std::string_view step = path.substr(0, slash);
    if (step == "." || step == "..") return true;
    path.remove_prefix(std::min(slash + 1, path.size()));
  }
  return false;
}

bool ReadQuery(std::string_view query, HttpRequest& request) {
  while (!query.empty()) {
    const size_t end = std::min(query.find('&'), query.size());
    const std::string_view pair = query.substr(0, end);
    query.remove_prefix(std::min(end + 1, query.size()));
    if (pair.empty()) continue;
    if (request.query.size() == MAX_PARAMETERS) return false;
    const size_t equals = std::min(pair.find('='), pair.size());
    auto& [name, value] = request.query.emplace_back();
    if (!DecodePercent(pair.substr(0, equals), true, name) || name.empty()) return false;
    if (!DecodePercent(pair.substr(std::min(equals + 1, pair.size())), true, value)) return false;
  }
  return true;
}

bool IsSame(std::string_view a, std::string_view b) {
  return a.size() == b.size() && K7String::IComp(std::string(a).c_str(), std::string(b).c_str()) == 0;
}

// Name and port of "localhost:8077" and "[::1]:8077".
bool SplitPort(std::string_view host, std::string_view& name) {
  const size_t bracket = host.starts_with('[') ? host.find(']') : 0;
  if (bracket == std::string_view::npos) return false;
  const size_t colon = host.find(':', bracket);
  name = host.substr(0, colon);
  if (colon == std::string_view::npos) return true;
  const std::string_view port = host.substr(colon + 1);
  return !port.empty() && port.size() <= 5 &&
         std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

int ReadTarget(std::string_view target, HttpRequest& request) {
  request = {};
  if (target.size() > MAX_TARGET_BYTES) return 414;
  const size_t mark = std::min(target.find('?'), target.size());
  if (!DecodePercent(target.substr(0, mark), false, request.path)) return 400;
  if (request.path.empty() || request.path[0] != '/' || Climbs(request.path)) return 400;
  return ReadQuery(target.substr(std::min(mark + 1, target.size())), request) ? 200 : 400;
}

bool IsHost(std::string_view host, std::span<const std::string> names) {
  std::string_view name;
  return SplitPort(host, name) && std::any_of(names.begin(), names.end(),
                                              [&](const std::string& known) { return IsSame(known, name); });
}

bool IsLoopbackOrigin(std::string_view origin) {
  static const std::string NAMES[] = {"localhost", "127.0.0.1", "[::1]"};
  for (const std::string_view scheme : {"http://", "https://"})
    if (origin.starts_with(scheme)) return IsHost(origin.substr(scheme.size()), NAMES);
  return false;
}

bool HoldsTag(std::string_view header, std::string_view tag) {
  return header == "*" || (!tag.empty() && header.find(tag) != std::string_view::npos);
}

std::string Escaped(std::string_view text) {
  static constexpr char DIGITS[] = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 0x20 && byte < 0x7F && c != '"' && c != '\\') {
      escaped += c;
      continue;
    }
    escaped += "\\x";
    escaped += DIGITS[byte >> 4];
    escaped += DIGITS[byte & 15];
  }
  return escaped;
}
