#include "store/relations.h"

namespace {

constexpr Relation ASKED[] = {
    RUNWAYS_OF_AIRPORT,
    COMMS_OF_AIRPORT,
    LOCALIZERS_OF_AIRPORT,
    LOCALIZERS_OF_RUNWAY,
    MARKERS_OF_AIRPORT,
    FLEETS_OF_AIRPORT,
    HOLDINGS_OF_FIX,
    CROSSING_ALTS_OF_FIX,
    RESTRICTIONS_OF_SEGMENT,
    SEGMENTS_OF_AIRSPACE,
    COMMS_OF_AIRSPACE,
    LINKS_TO_RECORD,
    LINKS_OF_NOTE,
    COMMS_OF_NOTE,
    ALTITUDES_OF_NOTE,
    LegsOfAirport(K7NAV_SID),
    LegsOfAirport(K7NAV_STAR),
    LegsOfAirport(K7NAV_APPROACH),
};

}  // namespace

std::vector<std::string> IndexesOf(const TypeTable& table) {
  std::vector<std::string> columns;
  if (table.Find("ident")) columns.push_back("ident");
  for (const Relation& relation : ASKED) {
    if (relation.type == table.type) columns.push_back(relation.key);
  }
  for (const K7NavType type : AIRWAY_TYPES) {
    if (type == table.type) columns.insert(columns.end(), {"header_key", "from_key", "to_key"});
  }
  return columns;
}
