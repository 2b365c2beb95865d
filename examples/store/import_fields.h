// Fields of a row: blanks between them, numbers within their bounds.
#pragma once

#include <k7/geodesy/latlon.h>

#include <string>
#include <string_view>

/// Takes one field after the other. The first that is missing or out of its bounds is remembered, and those
/// behind it read as 0 and nothing, so that a row is read in one run and asked once.
class Fields {
 public:
  explicit Fields(std::string_view line) : m_rest(line) {}

  /// Empty, or what is wrong, in words.
  const std::string& Problem() const { return m_problem; }
  /// Remembers a fault that the caller found.
  void Fail(const std::string& problem);

  bool AtEnd();
  /// `name` is what a message calls the field.
  double Number(const char* name, double low, double high);
  int Integer(const char* name, int low, int high);
  K7LatLon Position();
  /// A field of 1 to `longest` characters.
  std::string_view Word(const char* name, size_t longest);
  /// What is left, without blanks about it; may be empty.
  std::string_view Rest();
  /// The last field of what is left, which it is cut off from.
  std::string_view LastWord(const char* name);

 private:
  std::string_view Next(const char* name);

  std::string_view m_rest;
  std::string m_problem;
};

/// Without blanks about it.
std::string_view Trimmed(std::string_view text);
/// A whole text as a finite number; a sign of either kind may lead.
bool ReadDecimal(std::string_view text, double& value);
