#include "app/level_text.h"

#include "app_common/option_table.h"

#include <k7/foundation/string.h>

#include <cmath>

namespace {

constexpr int MOST_FEET = 100000;

}  // namespace

std::string ReadLevel(const char* text, int& feet) {
  const std::string level = text;
  const bool flight = level.size() > 2 && K7String::IComp(level.substr(0, 2).c_str(), "FL") == 0;
  const double unit = flight ? 100 : 1;
  double number = 0;
  if (!ReadNumber(text + (flight ? 2 : 0), number) || number < 0 || number * unit > MOST_FEET)
    return "a level is FL350 or 35000 feet, up to FL1000, not " + Quoted(text);
  feet = static_cast<int>(std::lround(number * unit));
  return {};
}
