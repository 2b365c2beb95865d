#include "app/bounds_text.h"

#include "app_common/option_table.h"
#include "web/query_value.h"

std::string ReadBounds(const std::string& text, double& west, double& south, double& east, double& north) {
  double edges[4] = {};
  const bool isRead = ReadEdges(text, edges);
  west = edges[0], south = edges[1], east = edges[2], north = edges[3];
  if (!isRead || std::abs(west) > 180 || std::abs(east) > 180 || west == east || south < -90 ||
      south >= north || north > 90)
    return "bounds are WEST,SOUTH,EAST,NORTH in degrees, as -125.5,47,-121,50, not " + Quoted(text);
  return {};
}
