// Region files from outside. The first two bytes choose a cell of the world, the rest is its file.

#include <k7/core.h>

#include "support/mem_io.h"

#include "input.h"

namespace {

// Answers are marked as missing, or lie within what 16 bits of metres make in feet.
void Look(K7TerrainK7& terrain, double lat, double lon) {
  const int elev = terrain.GetElev(lat, lon, 3);
  Require(elev >= -107506 && elev <= 107503);
}

void LookAround(K7TerrainK7& terrain, const K7TerRegion& region) {
  for (int i = 0; i < 64 && i < region.RowCount(); ++i)
    for (int j = 0; j < 64 && j < region.ColCount(); ++j) {
      const K7TerTile* const tile = region.Tile(i, j);
      if (!tile) continue;
      const K7ChartRect& bounds = tile->GetChartRect();
      for (const double lat : {bounds.South(), (bounds.South() + bounds.North()) / 2, bounds.North()})
        for (const double lon : {bounds.West(), (bounds.West() + bounds.East()) / 2, bounds.East()})
          Look(terrain, lat, lon);
      const K7TerMeshHold hold(*tile);
      if (hold.Rows()) Require(tile->RowCount() > 0 && hold.Rows()[tile->RowCount() - 1] != nullptr);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const int south = data[0] % 6 * 30 - 90, west = data[1] % 12 * 30 - 180;
  const K7FmtString path("/1200_%c%02d%c%03d.ter", south < 0 ? 'S' : 'N', std::abs(south),
                         west < 0 ? 'W' : 'E', std::abs(west));
  MemIO io;
  io.Put(path, Bytes(data + 2, data + size));
  K7IO* const native = K7IO::Inst();
  K7IO::SetInst(&io);

  K7TerrainK7& terrain = *K7TerrainK7::Inst();
  Require(terrain.Read("/") == 0);
  for (double lat = south - 1; lat < south + 31; lat += 3.7)
    for (double lon = west - 1; lon < west + 31; lon += 3.7) Look(terrain, lat, lon);
  if (const K7TerRegion* const region = terrain.GetLevel(4)->RegionAt(south, west))
    LookAround(terrain, *region);
  terrain.Clear();
  K7IO::SetInst(native);
  return 0;
}
