#include "web/map_data.h"

#include <k7/foundation/string.h>

#include <cctype>

std::string TitleOf(std::string name) {
  if (!name.empty()) name[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
  return name;
}

const Theme* MapData::FindTheme(const std::string& name) const {
  if (name.empty()) return &Themes().front().theme;
  for (const NamedTheme& known : Themes())
    if (K7String::IComp(known.name.c_str(), name.c_str()) == 0) return &known.theme;
  return nullptr;
}

std::string MapData::WhyNoTheme(const std::string& name) const {
  return FindTheme(name) ? std::string() : "there is no theme '" + name + "'";
}
