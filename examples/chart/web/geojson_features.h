// Records of navigation data and of shapefile sets as features of GeoJSON (RFC 7946).
#pragma once

#include "web/json.h"

#include <k7/navdata/nav_types.h>
#include <k7/projection/chart_rect.h>

#include <string>

class K7NavData;
class ShapeLayer;

/// Features one after the other, up to a number of them and a size of the document.
class FeatureWriter {
 public:
  /// Begins within the array of the features.
  FeatureWriter(JsonWriter& json, int most) : m_json(json), m_most(most) {}

  /// Adds the records of a type that an area holds, or whose bounds it meets. False when there is no more
  /// room, and one more to write.
  bool AddRecords(K7NavData& store, K7NavType type, const K7ChartRect& area);
  /// Adds the features of a set whose bounds meet the area.
  bool AddShapes(ShapeLayer& layer, const std::string& name, const K7ChartRect& area);
  int Count() const { return m_count; }

 private:
  bool HasRoom() const;

  JsonWriter& m_json;
  int m_most, m_count = 0;
};

/// "low-airway-segment"; empty for a type whose records have no place.
std::string GeoTypeName(K7NavType type);
