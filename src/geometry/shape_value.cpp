#include "geometry/shape_value.h"

#include "geometry/code_page.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string_view>

namespace k7shape {
namespace {

using std::string_view;

constexpr string_view UNKNOWN[] = {"$UNK", "-32767"};
constexpr string_view ABSENT[] = {"-32768", "-32765", "-32764", "$Null", "$NA", "$NE"};
constexpr char LIST_MARKS[] = ";|";

// Special values are six characters long: "-32767.000" is as good as "-32767".
string_view Normalised(string_view text) {
  return text.size() > 6 && text[6] == '.' ? text.substr(0, 6) : text;
}

template <class Values>
bool IsOneOf(string_view text, const Values& values) {
  return std::find(std::begin(values), std::end(values), Normalised(text)) != std::end(values);
}

string_view Trimmed(string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Hosts' tables hold any bytes: no text of theirs breaks a line or a document.
void Append(K7XmlText& out, string_view text) {
  for (const char c : text) out.AppendRun(k7page::Printable(c), 1);
}

bool AppendOne(K7XmlText& out, string_view text) {
  if (text.empty() || IsOneOf(text, ABSENT)) return false;
  Append(out, IsOneOf(text, UNKNOWN) ? string_view(K7Shape::UNKNOWN) : text);
  return true;
}

bool AppendList(K7XmlText& out, string_view text) {
  bool any = false;
  while (!text.empty()) {
    const size_t end = std::min(text.find_first_of(LIST_MARKS), text.size());
    const int size = out.Size();
    if (any) Append(out, ", ");
    if (AppendOne(out, Trimmed(text.substr(0, end))))
      any = true;
    else
      out.Cut(size);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return any;
}

// Room for any double with three decimals.
constexpr size_t LONGEST_NUMBER = 320;

// A value as "%d", "%ld" or "%.3lf" write it, in every locale.
class Text {
 public:
  Text(K7ShapeAttribType type, const K7ShapeAttrib& value) {
    char* const end = std::end(m_number);
    if (type == K7_ATTRIB_INT) Take(std::to_chars(m_number, end, static_cast<int>(value)));
    if (type == K7_ATTRIB_INT64) Take(std::to_chars(m_number, end, static_cast<int64_t>(value)));
    if (type == K7_ATTRIB_DOUBLE)
      Take(std::to_chars(m_number, end, static_cast<double>(value), std::chars_format::fixed, 3));
    const char* const text = type == K7_ATTRIB_TEXT ? static_cast<const char*>(value) : nullptr;
    if (text) m_view = text;
  }
  string_view View() const { return m_view; }

 private:
  void Take(std::to_chars_result written) {
    m_view = {m_number, static_cast<size_t>(written.ptr - m_number)};
  }

  char m_number[LONGEST_NUMBER];
  string_view m_view;
};

// False when the attribute is no number. Some tables hold theirs as texts.
bool AppendMetres(K7XmlText& out, K7ShapeAttribType type, const K7ShapeAttrib& value, string_view text) {
  double metres = 0;
  if (type == K7_ATTRIB_DOUBLE) {
    metres = value;
  } else {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), metres);
    if (error != std::errc() || end != text.data() + text.size()) return false;
  }
  if (!std::isfinite(metres)) return false;
  char number[LONGEST_NUMBER];
  const char* const end = std::to_chars(number, std::end(number), metres, std::chars_format::fixed, 2).ptr;
  Append(out, {number, static_cast<size_t>(end - number)});
  Append(out, " m");
  return true;
}

}  // namespace

void AppendText(K7XmlText& out, const char* text) { Append(out, text ? text : ""); }

bool AppendValue(K7XmlText& out, K7ShapeAttribType type, const K7ShapeAttrib& value, Form form) {
  const Text written(type, value);
  const string_view text = Trimmed(written.View());
  if (form == Form::List) return AppendList(out, text);
  const bool isSpecial = IsOneOf(text, ABSENT) || IsOneOf(text, UNKNOWN);
  if (form == Form::Metres && !isSpecial && AppendMetres(out, type, value, text)) return true;
  return AppendOne(out, text);
}

}  // namespace k7shape
