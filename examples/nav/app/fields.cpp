// k7nav fields: the table of types and fields, for those who check it or fill records.

#include "app_common/verb.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr const char* KINDS[] = {"char", "string", "integer", "unsigned", "real", "key"};
constexpr const char* STORAGES[] = {"char", "text", "absent", "pointer",   "fixed degrees", "u8",    "u16",
                                    "u32",  "i16",  "i32",    "alt value", "alt flag",      "float", "key"};

const char* NameIn(const auto& names, int code) {
  return code >= 0 && code < static_cast<int>(std::size(names)) ? names[code] : "unknown";
}

class FieldList : public Verb {
 public:
  // A number, or a type's display name.
  std::string TakeArgument(const std::string& argument) override {
    for (int type = 0; type < K7NAV_TYPE_COUNT; ++type) {
      if (argument != std::to_string(type) && argument != K7NavData::TypeName(static_cast<K7NavType>(type)))
        continue;
      m_types.push_back(static_cast<K7NavType>(type));
      return {};
    }
    return Quoted(argument) + " is no type of records (see k7nav fields)";
  }

  std::string Run() override {
    for (int type = 0; type < K7NAV_TYPE_COUNT; ++type)
      if (m_types.empty() || std::count(m_types.begin(), m_types.end(), static_cast<K7NavType>(type)))
        Print(static_cast<K7NavType>(type));
    return {};
  }

 private:
  static void Print(K7NavType type) {
    const int count = K7NavData::GetFieldCount(type);
    std::printf("%d  %s: %d bytes, %d fields\n", static_cast<int>(type), K7NavData::TypeName(type),
                K7NavData::GetRecSize(type), count);
    for (int i = 0; i < count; ++i) {
      K7NavFieldDataType kind;
      K7NavFieldLayout layout;
      const char *name, *note;
      if (!K7NavData::GetFieldInfo(type, i, kind, name, note) || !K7NavData::GetFieldLayout(type, i, layout))
        continue;
      std::printf("    %-24s  %-8s  %-13s  at %4d", name, NameIn(KINDS, kind),
                  NameIn(STORAGES, layout.storage), layout.at);
      if (layout.bits >= 0)
        std::printf("  %4d bits", layout.bits);
      else
        std::printf("  %9s", "");
      if (layout.scale != 1) std::printf("  x %.10g", layout.scale);
      std::printf("%s%s\n", *note ? "  " : "", note);
    }
  }

  std::vector<K7NavType> m_types;
};

}  // namespace

std::unique_ptr<Verb> MakeFields() { return std::make_unique<FieldList>(); }
