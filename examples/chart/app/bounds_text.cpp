#include "app/bounds_text.h"

#include "app_common/option_table.h"

#include <algorithm>
#include <cmath>
#include <string_view>

std::string ReadBounds(const std::string& text, double& west, double& south, double& east, double& north) {
  std::string_view left = text;
  bool isRead = true;
  for (double* const edge : {&west, &south, &east, &north}) {
    const bool isLast = edge == &north;
    const size_t end = isLast ? left.size() : std::min(left.find(','), left.size());
    isRead = isRead && ReadNumber(left.substr(0, end), *edge);
    left.remove_prefix(std::min(end + 1, left.size()));
  }
  if (!isRead || !(std::abs(west) <= 180 && std::abs(east) <= 180 && west != east) ||
      !(south >= -90 && south < north && north <= 90))
    return "bounds are WEST,SOUTH,EAST,NORTH in degrees, as -125.5,47,-121,50, not " + Quoted(text);
  return {};
}
