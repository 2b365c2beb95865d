#include "store/airway_network.h"

#include <cstring>
#include <memory>

#include "store/nav_store.h"
#include "store/store_file.h"

namespace {

// As it lies in the file.
struct Packed {
  uint32_t idx;
  int32_t fromLat, fromLon, toLat, toLon;
  uint32_t mea, meaOpposite, maa;  // words of K7Alt
  uint32_t direction;
};
static_assert(sizeof(Packed) == 36);

K7Alt Altitude(uint32_t word) { return K7Alt(word & 0xFFFFFF, word >> 24); }

}  // namespace

void AppendToNetwork(const K7AirwaySeg& s, std::string& network) {
  const Packed packed = {s.key.Idx(),
                         s.fromLat,
                         s.fromLon,
                         s.toLat,
                         s.toLon,
                         s.mea.Word(),
                         s.meaOpposite.Word(),
                         s.maa.Word(),
                         static_cast<unsigned char>(s.direction)};
  network.append(reinterpret_cast<const char*>(&packed), sizeof packed);
}

bool TakeFromNetwork(std::string_view& network, K7AirwaySeg& s) {
  Packed packed;
  if (network.size() < sizeof packed) return false;
  std::memcpy(&packed, network.data(), sizeof packed);
  network.remove_prefix(sizeof packed);
  s.key = K7NavKey(packed.idx, s.Type());
  s.fromLat = packed.fromLat;
  s.fromLon = packed.fromLon;
  s.toLat = packed.toLat;
  s.toLon = packed.toLon;
  s.mea = Altitude(packed.mea);
  s.meaOpposite = Altitude(packed.meaOpposite);
  s.maa = Altitude(packed.maa);
  s.direction = static_cast<char>(packed.direction);
  return true;
}

bool NavStore::VisitAirwayNetwork(const std::function<void(const K7AirwaySeg&)>& visit) {
  if (!m_file) return false;
  for (const K7NavType type : AIRWAY_TYPES) {
    if (!m_file->Has(type)) continue;
    Query query(m_file->Connection().Prepare("SELECT segments FROM airway_network WHERE type=?"));
    if (query.IsGood() && query.Bind(int64_t{type}).Next()) {
      std::string_view network = query.Bytes(0);
      K7AirwaySeg segment;
      segment.key = K7NavKey(0, type);
      while (TakeFromNetwork(network, segment)) visit(segment);
      continue;
    }
    // A database of before there was one.
    const std::unique_ptr<K7NavQueryResult> all(AllQuery(type));
    if (!all) return false;
    while (const K7NavRec* const rec = all->Next()) visit(static_cast<const K7AirwaySeg&>(*rec));
  }
  return true;
}
