// Records of shape layers as XML and in a line.

#include <k7/geometry/shape.h>

#include <k7/foundation/error_string.h>
#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>

#include "geometry/shape_feature.h"
#include "geometry/shape_value.h"
#include "io/xml_sink.h"
#include "io/xml_text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

namespace {

using k7shape::FeatureRow;
using k7shape::Form;

// A record with its table, and where its values and their elements' names are put together.
struct Source {
  const K7ShapeTable& table;
  const K7ShapeRec& record;
  K7XmlText text{}, name{};

  bool Failed() const { return text.Failed() || name.Failed(); }
  // Puts attribute i into `text`. False when there is nothing to be read.
  bool Take(int i, Form form) {
    text.Clear();
    K7ShapeAttrib value;
    return table.GetAttrib(record, i, value) == 0 &&
           k7shape::AppendValue(text, table.AttribType(i), value, form);
  }
  bool Take(const FeatureRow& row) {
    const int i = table.FindAttrib(row.key);
    return i >= 0 && Take(i, row.form);
  }
};

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool IsNameChar(char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }

// Fields may have names that elements may not.
void ElementName(const char* field, K7XmlText& name) {
  name.Clear();
  if (!field || !IsLetter(*field)) name.Append("_", 1);
  for (; field && *field; ++field) name.Append(IsNameChar(*field) ? field : "_", 1);
}

void AddNumber(k7xml::XmlDocument& out, const char* element, const char* label, int value) {
  char text[16];
  *std::to_chars(text, std::end(text), value).ptr = 0;
  out.Add(element, label, text);
}

void AddText(k7xml::XmlDocument& out, const char* element, const char* label, const char* text,
             Source& source) {
  source.text.Clear();
  k7shape::AppendText(source.text, text);
  out.Add(element, label, source.text.Text());
}

void AddKeys(k7xml::XmlDocument& out, const K7Shape& shape, Source& source) {
  const K7ShapeType type = shape.Type();
  AddText(out, "ShapeType", "Shape Type", type == K7_SHAPE_PLAIN ? shape.Name() : K7Shape::TypeName(type),
          source);
  AddNumber(out, "ShapeKey", "Shape Key", shape.Key());
  AddText(out, "DbName", "Database Name", source.table.DbName(), source);
  AddNumber(out, "TableIndex", "Table Index", source.table.TableIndex());
  AddNumber(out, "Key", "Key", source.record.GetKey());
}

void AddFeature(k7xml::XmlDocument& out, std::span<const FeatureRow> rows, Source& source) {
  for (const FeatureRow& row : rows)
    if (source.Take(row)) out.Add(row.key, row.label, source.text.Text());
}

// Null for an attribute that the kind is not read by.
const FeatureRow* RowOf(const char* name, std::span<const FeatureRow> rows) {
  for (const FeatureRow& row : rows)
    if (name && K7String::IComp(row.key, name) == 0) return &row;
  return nullptr;
}

void AddAttribs(k7xml::XmlDocument& out, std::span<const FeatureRow> rows, Source& source) {
  for (int i = 0; i < source.table.AttribCount(); ++i) {
    if (!source.Take(i, Form::Text)) continue;
    ElementName(source.table.AttribName(i), source.name);
    const FeatureRow* const row = RowOf(source.table.AttribName(i), rows);
    out.Add(source.name.Text(), row ? row->label : source.name.Text(), source.text.Text());
  }
}

// What plain records are called, and what they are.
constexpr FeatureRow NAMES[] = {{"NAME", ""}, {"NAME_EN", ""}, {"LABEL", ""}, {"IDENT", ""}};
constexpr FeatureRow DETAILS[] = {{"TYPE", ""}, {"FEATURECLA", ""}, {"STATUS", ""}};

// Takes the first of the values that there is.
bool TakeFirst(Source& source, std::span<const FeatureRow> rows) {
  return std::any_of(rows.begin(), rows.end(), [&](const FeatureRow& row) { return source.Take(row); });
}

void Append(K7XmlText& line, const char* before, const K7XmlText& text, const char* behind) {
  line.Append(before);
  line.Append(text.Text(), static_cast<size_t>(text.Size()));
  line.Append(behind);
}

void Describe(const K7Shape& shape, Source& source, K7XmlText& line) {
  std::span<const FeatureRow> rows = k7shape::RowsOf(shape.Type());
  const bool isPlain = rows.empty();
  // Behind the airport stands what identifies a feature.
  if (!isPlain) line.Append(K7Shape::TypeName(shape.Type()));
  if (TakeFirst(source, isPlain ? std::span(NAMES) : rows.subspan(1, 1)))
    Append(line, isPlain ? "" : " ", source.text, "");
  else if (isPlain)
    k7shape::AppendText(line, shape.Name());
  if (TakeFirst(source, isPlain ? std::span(DETAILS) : rows.subspan(2))) Append(line, " (", source.text, ")");
}

}  // namespace

int K7Shape::ToXML(K7ShapeRec* record, K7XmlOutputType_t type, K7String& out) {
  if (!record) return 0;
  const K7ShapeTable* const table = GetTable(record);
  if (!table) return K7_ERR_NOT_FOUND;
  Source source{*table, *record};
  const std::span<const FeatureRow> rows = k7shape::RowsOf(Type());
  k7xml::XmlDocument document;
  document.Open("Record");
  AddKeys(document, *this, source);
  if (type == K7XML_DISPLAY && !rows.empty())
    AddFeature(document, rows, source);
  else
    AddAttribs(document, rows, source);
  document.Close("Record");
  return document.CopyTo(out, source.Failed());
}

int K7Shape::GetDescription(K7ShapeRec* record, K7String& out) {
  if (!record) return 0;
  const K7ShapeTable* const table = GetTable(record);
  if (!table) return K7_ERR_NOT_FOUND;
  Source source{*table, *record};
  K7XmlText line;
  Describe(*this, source, line);
  return line.CopyTo(out, source.Failed());
}

int K7Shape::GetAttribText(const K7ShapeRec* record, const char* name, K7String& out) const {
  out.Clear();
  const K7ShapeTable* const table = record ? GetTable(record) : nullptr;
  const int i = table ? table->FindAttrib(name) : -1;
  if (i < 0) return K7_ERR_NOT_FOUND;
  Source source{*table, *record};
  const FeatureRow* const row = RowOf(name, k7shape::RowsOf(Type()));
  const bool isList = row && row->form == Form::List;
  if (!source.Take(i, isList ? Form::List : Form::Text)) return K7_ERR_NOT_FOUND;
  return source.text.CopyTo(out, source.Failed());
}
