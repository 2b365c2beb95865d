// k7nav field: one field of the records of an identifier.

#include "app/ident_verb.h"

#include <k7/navdata/nav_data.h>

#include <cstdio>

namespace {

std::string ValueText(K7NavFieldDataType kind, const K7NavField& value) {
  char number[64];
  switch (kind) {
    case K7FIELD_CHAR: {
      const char text[] = {value.c, 0};
      return Utf8(text);
    }
    case K7FIELD_STRING:
      return Utf8(value.str);
    case K7FIELD_INTEGER:
      return std::to_string(value.i);
    case K7FIELD_UNSIGNED:
      return std::to_string(value.u);
    case K7FIELD_REAL:
      std::snprintf(number, sizeof number, "%.10g", value.d);
      return number;
    case K7FIELD_KEY:
      if (value.key.NoRecord()) return "none";
      return std::string(K7NavData::TypeName(value.key.NavType())) + " " + std::to_string(value.key.Idx());
  }
  return {};
}

class Field : public IdentVerb {
 public:
  Field() : IdentVerb("field needs an identifier and the name of a field, as KSEA Elev") {}

  std::string TakeArgument(const std::string& argument) override {
    if (Ident().empty() || !m_field.empty()) return IdentVerb::TakeArgument(argument);
    m_field = argument;
    return argument.empty() ? "a field has letters" : "";
  }

  std::string Run() override { return m_field.empty() ? Needs() : IdentVerb::Run(); }

 private:
  std::string Tell(NavStore& store, const std::vector<const K7NavRec*>& found) override {
    bool any = false;
    for (const K7NavRec* rec : found) any = Print(store, *rec) || any;
    return any ? ""
               : "no record of " + Quoted(Ident()) + " has a field " + Quoted(m_field) +
                     " (see k7nav fields)";
  }

  bool Print(NavStore& store, const K7NavRec& rec) const {
    const int index = K7NavData::GetFieldIndex(rec.Type(), m_field.c_str());
    K7NavFieldDataType kind;
    const char *name, *note;
    K7NavField value;
    if (!K7NavData::GetFieldInfo(rec.Type(), index, kind, name, note) ||
        !K7NavData::GetField(&rec, index, &value))
      return false;
    std::printf("%-20s  %-30s  %s\n", K7NavData::TypeName(rec.Type()), Describe(store, rec).c_str(),
                ValueText(kind, value).c_str());
    return true;
  }

  std::string m_field;
};

}  // namespace

std::unique_ptr<Verb> MakeField() { return std::make_unique<Field>(); }
