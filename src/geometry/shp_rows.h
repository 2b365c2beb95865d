// The points of a record as K7MapFeatures repairs them, so that what is found and filled is what is drawn.
#pragma once

#include "foundation/buffer.h"

#include <k7/geometry/shp_obj.h>
#include <k7/projection/chart_rect.h>

class ShpLayerRec;

struct ShpRows {
  Buffer<K7ShpXY> points;  ///< degrees; longitudes may pass 180
  Buffer<int> sizes;       ///< of the rows, laid end to end

  /// Takes a record's lines, its rings closed, or its places as one row. Points off the earth are left out,
  /// rows that jump across 180 carried on. Nothing is left of a record with a point that its reader refuses.
  /// 0 or K7_ERR_MEMORY.
  int Take(const ShpLayerRec& record);
  /// Those of the points taken; empty without any.
  K7ChartRect Bounds() const;
};
