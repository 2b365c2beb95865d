#include "store/import_fields.h"

#include <charconv>
#include <cmath>

namespace {

constexpr std::string_view BLANKS = " \t";

}  // namespace

std::string_view Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(BLANKS);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

bool ReadDecimal(std::string_view text, double& value) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
  return !text.empty() && error == std::errc() && stop == end && std::isfinite(value);
}

void Fields::Fail(const std::string& problem) {
  if (m_problem.empty()) m_problem = problem;
}

bool Fields::AtEnd() { return Trimmed(m_rest).empty(); }

std::string_view Fields::Next(const char* name) {
  if (!m_problem.empty()) return {};
  m_rest = Trimmed(m_rest);
  if (m_rest.empty()) Fail(std::string("there is no ") + name);
  const std::string_view field = m_rest.substr(0, m_rest.find_first_of(BLANKS));
  m_rest.remove_prefix(field.size());
  return field;
}

double Fields::Number(const char* name, double low, double high) {
  const std::string_view field = Next(name);
  double value = 0;
  if (m_problem.empty() && (!ReadDecimal(field, value) || value < low || value > high))
    Fail(std::string(name) + " '" + std::string(field.substr(0, 20)) + "' is no number within its bounds");
  return m_problem.empty() ? value : 0;
}

int Fields::Integer(const char* name, int low, int high) {
  const double value = Number(name, low, high);
  if (value != std::floor(value)) Fail(std::string(name) + " is no whole number");
  return static_cast<int>(value);
}

K7LatLon Fields::Position() {
  const double lat = Number("latitude", -90, 90);
  return {lat, Number("longitude", -180, 180)};
}

std::string_view Fields::Word(const char* name, size_t longest) {
  const std::string_view field = Next(name);
  if (field.size() <= longest) return field;
  Fail(std::string(name) + " '" + std::string(field.substr(0, 20)) + "' is too long");
  return {};
}

std::string_view Fields::Rest() {
  const std::string_view rest = Trimmed(m_rest);
  m_rest = {};
  return m_problem.empty() ? rest : std::string_view();
}

std::string_view Fields::LastWord(const char* name) {
  m_rest = Trimmed(m_rest);
  if (m_rest.empty()) Fail(std::string("there is no ") + name);
  const size_t blank = m_rest.find_last_of(BLANKS);
  const std::string_view word = blank == std::string_view::npos ? m_rest : m_rest.substr(blank + 1);
  m_rest.remove_suffix(word.size());
  return m_problem.empty() ? word : std::string_view();
}
