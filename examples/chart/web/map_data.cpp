#include "web/map_data.h"

#include <k7/foundation/string.h>

const Theme* MapData::FindTheme(const std::string& name) const {
  if (name.empty()) return &Themes().front().theme;
  for (const NamedTheme& known : Themes())
    if (K7String::IComp(known.name.c_str(), name.c_str()) == 0) return &known.theme;
  return nullptr;
}
