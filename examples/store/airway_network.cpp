// All airways at once: of their wide rows only what a network needs is taken, a value at a time.
#include <k7/navdata/airway.h>

#include <algorithm>
#include <cmath>

#include "store/nav_store.h"
#include "store/store_file.h"

namespace {

constexpr char COLUMNS[] =
    "idx,from_lat,from_lon,to_lat,to_lon,mea_primary_alt,mea_primary_alt_flag,mea_opposite,mea_opposite_flag,"
    "maa,maa_flag,direction";

int32_t FixedDegrees(const Query& row, int column) {
  constexpr double UNITS = 1 << 23, LEAST = INT32_MIN, MOST = INT32_MAX;
  return static_cast<int32_t>(
      std::clamp(std::rint(sqlite3_column_double(row.Row(), column) * UNITS), LEAST, MOST));
}

K7Alt Altitude(const Query& row, int column) {
  constexpr int64_t MOST = 0xFFFFFF, MOST_FLAGS = 0xFF;
  const int64_t value = sqlite3_column_int64(row.Row(), column),
                flags = sqlite3_column_int64(row.Row(), column + 1);
  return K7Alt(static_cast<uint32_t>(std::clamp<int64_t>(value, 0, MOST)),
               static_cast<uint32_t>(std::clamp<int64_t>(flags, 0, MOST_FLAGS)));
}

char Direction(const Query& row, int column) {
  const unsigned char* const text = sqlite3_column_text(row.Row(), column);
  return text && *text ? static_cast<char>(*text) : K7AirwaySeg::BOTH_WAYS;
}

}  // namespace

bool NavStore::VisitAirwayNetwork(const std::function<void(const K7AirwaySeg&)>& visit) {
  if (!m_file) return false;
  K7AirwaySeg segment;
  for (const K7NavType type : AIRWAY_TYPES) {
    const bool good = m_file->Scan(type, COLUMNS, [&](const Query& row) {
      segment.key = K7NavKey(static_cast<uint32_t>(row.Integer(0)), type);
      segment.fromLat = FixedDegrees(row, 1);
      segment.fromLon = FixedDegrees(row, 2);
      segment.toLat = FixedDegrees(row, 3);
      segment.toLon = FixedDegrees(row, 4);
      segment.mea = Altitude(row, 5);
      segment.meaOpposite = Altitude(row, 7);
      segment.maa = Altitude(row, 9);
      segment.direction = Direction(row, 11);
      visit(segment);
    });
    if (!good) return false;
  }
  return true;
}
