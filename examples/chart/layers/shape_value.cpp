#include "layers/shape_value.h"

#include <k7/foundation/string.h>
#include "store/text_1252.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace {

// A number that is one of these may have decimals behind it.
bool IsSpecial(const std::string& text) {
  static constexpr const char* VALUES[] = {"$UNK",   "$NULL",  "$NA",    "$NE",
                                           "-32767", "-32768", "-32765", "-32764"};
  const std::string value = text.size() > 6 && text[6] == '.' ? text.substr(0, 6) : text;
  return std::any_of(std::begin(VALUES), std::end(VALUES),
                     [&](const char* special) { return K7String::IComp(value.c_str(), special) == 0; });
}

std::string Written(double value) {
  char text[64];
  return std::isfinite(value) && std::fabs(value) < 1e15
             ? std::string(text, std::to_chars(text, std::end(text), value, std::chars_format::fixed, 3).ptr)
             : std::string();
}

std::string WithCommas(const std::string& list) {
  std::string text;
  for (const char c : list) {
    const bool parts = c == ';' || c == '|';
    if (!parts || !text.empty()) text += parts ? std::string(", ") : std::string(1, c);
  }
  return text;
}

}  // namespace

std::string ShapeText(const K7ShapeTable& table, const K7ShapeRec& record, const char* name) {
  const int i = table.FindAttrib(name);
  K7ShapeAttrib value;
  if (i < 0 || table.GetAttrib(record, i, value) != 0) return {};
  std::string text;
  switch (table.AttribType(i)) {
    case K7_ATTRIB_INT:
      text = std::to_string(static_cast<int>(value));
      break;
    case K7_ATTRIB_INT64:
      text = std::to_string(static_cast<int64_t>(value));
      break;
    case K7_ATTRIB_DOUBLE:
      text = Written(value);
      break;
    case K7_ATTRIB_TEXT:
      if (const char* const given = value) text = Utf8Of1252(given);
      break;
  }
  return IsSpecial(text) ? std::string() : WithCommas(text);
}

std::optional<double> ShapeNumber(const K7ShapeTable& table, const K7ShapeRec& record, const char* name) {
  const std::string text = ShapeText(table, record, name);
  double number = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || stop != text.data() + text.size() || !std::isfinite(number)) return {};
  return number;
}

bool IsClosedShape(const K7ShapeTable& table, const K7ShapeRec& record) {
  return K7String::IComp(ShapeText(table, record, "STATUS").c_str(), "Closed") == 0;
}
