#include "navdata/field_table.h"

#include <k7/geodesy/latlon.h>
#include <k7/navdata/nav_data.h>

K7NavQueryResult::~K7NavQueryResult() = default;
void K7NavQueryResult::AddRec(K7NavRec*) {}

K7NavData::~K7NavData() = default;
K7NavQueryResult* K7NavData::AllQuery(K7NavType) { return nullptr; }
K7NavQueryResult* K7NavData::AllQuery(K7NavType, const char*, const char**, K7TextSearchFlags) {
  return nullptr;
}
int K7NavData::GetEffectivity(StoreType_t, int, unsigned*, unsigned*, const char*) { return 0; }
int K7NavData::GetActiveStore(StoreType_t, int*) { return 0; }
int K7NavData::GetNumStores(StoreType_t, int*, const char*) { return 0; }
int K7NavData::SetActiveStore(StoreType_t, int) { return 0; }
int K7NavData::GetDataCycle(StoreType_t, int, int*, int*) { return 0; }
K7NavRec* K7NavData::CopyRec(K7NavRec*) { return nullptr; }

K7NavRec* K7NavData::CreateRecord(K7NavType type) {
  const k7nav::Type* found = k7nav::FindType(type);
  return found && found->create ? found->create() : nullptr;
}

int K7NavData::GetRecSize(K7NavType type) {
  const k7nav::Type* found = k7nav::FindType(type);
  return found ? found->bytes : 0;
}

const char* K7NavData::TypeName(K7NavType type) {
  const k7nav::Type* found = k7nav::FindType(type);
  return found ? found->name : "Unknown";
}

const K7NavRec* K7NavData::GetFixByIdent(K7NavType type, const char* ident, double lat, double lon) {
  if (!ident || !K7IsFix(type)) return nullptr;
  K7NavQueryResult* found = IdentQuery(type, ident);
  if (!found) return nullptr;
  const K7LatLon at(lat, lon);
  K7NavKey best;
  double nearest = 0;
  while (const K7NavRec* rec = found->Next()) {
    const K7NavFix& fix = *static_cast<const K7NavFix*>(rec);
    const double distance = at.Distance(K7LatLon(FixPt2DecDeg(fix.lat), FixPt2DecDeg(fix.lon)));
    if (best.NoRecord() || distance < nearest || (distance == nearest && fix.key < best)) {
      best = fix.key;
      nearest = distance;
    }
  }
  delete found;
  return best.NoRecord() ? nullptr : GetRec(best);
}
