// JSON (RFC 8259) written from the beginning to the end.
#pragma once

#include <string>
#include <string_view>
#include <utility>

/// Commas and colons are the writer's; that brackets match is the caller's.
class JsonWriter {
 public:
  JsonWriter& Begin(char bracket);  ///< '{' or '['
  JsonWriter& End(char bracket);    ///< '}' or ']'
  JsonWriter& Key(std::string_view name);
  /// UTF-8; bytes that are none become the replacement character.
  JsonWriter& Text(std::string_view text);
  /// With a point in every locale, without zeros at the end; null for what is not finite.
  JsonWriter& Number(double value, int decimals);
  JsonWriter& Integer(long long value);
  JsonWriter& Bool(bool value);
  JsonWriter& Null();

  const std::string& Written() const { return m_text; }
  std::string Take() { return std::move(m_text); }

 private:
  void Separate();
  void Quote(std::string_view text);

  std::string m_text;
};
