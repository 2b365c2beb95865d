#include "web/tile_grid.h"

bool IsTile(const TileId& tile) {
  const auto isOn = [&](int index) { return index >= 0 && index < 1 << tile.z; };
  return tile.z >= 0 && tile.z <= MOST_ZOOM && isOn(tile.x) && isOn(tile.y);
}
