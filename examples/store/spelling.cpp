#include "store/spelling.h"

#include <algorithm>
#include <array>
#include <cstdlib>

int SpellingDistance(std::string_view a, std::string_view b, int limit) {
  constexpr size_t LONGEST = 63;
  if (a.size() > LONGEST || b.size() > LONGEST) return limit + 1;
  if (std::abs(static_cast<int>(a.size()) - static_cast<int>(b.size())) > limit) return limit + 1;
  // The last three rows of the table of distances between beginnings.
  std::array<std::array<int, LONGEST + 1>, 3> rows;
  for (size_t j = 0; j <= b.size(); j++) rows[0][j] = static_cast<int>(j);
  for (size_t i = 1; i <= a.size(); i++) {
    const auto& above = rows[(i + 2) % 3];
    const auto& twoAbove = rows[(i + 1) % 3];
    auto& row = rows[i % 3];
    int least = row[0] = static_cast<int>(i);
    for (size_t j = 1; j <= b.size(); j++) {
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], twoAbove[j - 2] + 1);
      least = std::min(least, row[j]);
    }
    if (least > limit + 1) return limit + 1;
  }
  return std::min(rows[a.size() % 3][b.size()], limit + 1);
}
