// Text files of navigation data from outside. The first byte picks the format; records are counted and looked
// at, none is stored.

#include "store/import_run.h"

#include <cstdint>
#include <cstdlib>

namespace {

// Checks what a store relies on.
class CountingSink : public NavSink {
 public:
  K7NavKey Add(K7NavRec& rec) override {
    const K7NavType type = rec.key.NavType();
    if (type >= K7NAV_TYPE_COUNT) std::abort();
    rec.key = K7NavKey(m_counts[type]++, type);
    for (int i = 0; i < K7NavData::GetFieldCount(type); ++i) {
      K7NavField value;
      K7NavData::GetField(&rec, i, &value);
    }
    if (K7IsFix(type))
      CheckPlace(static_cast<const K7NavFix&>(rec).lat, static_cast<const K7NavFix&>(rec).lon);
    if (type == K7NAV_AIRSPACE_SEG) {
      const auto& piece = static_cast<const K7AirspaceSeg&>(rec);
      CheckPlace(piece.lat, piece.lon);
      CheckPlace(piece.endLat, piece.endLon);
    }
    if (type == K7NAV_CTRL_AIRSPACE || type == K7NAV_SPECIAL_USE_AIRSPACE) {
      const auto& area = static_cast<const K7NavArea&>(rec);
      CheckPlace(area.north, area.east);
      CheckPlace(area.south, area.west);
      if (area.north < area.south || area.segCount == 0) std::abort();
    }
    return rec.key;
  }
  uint32_t Count(K7NavType type) const override { return m_counts[type]; }

 private:
  static void CheckPlace(int32_t lat, int32_t lon) {
    static constexpr int32_t DEGREE = 1 << 23;
    if (std::abs(lat) > 90 * DEGREE || std::abs(lon) > 180 * DEGREE) std::abort();
  }

  uint32_t m_counts[K7NAV_TYPE_COUNT] = {};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  constexpr decltype(&ImportFixes) IMPORTERS[] = {ImportNavaids, ImportFixes, ImportAirways, ImportAirports,
                                                  ImportAirspaces};
  CountingSink sink;
  ImportLog log;
  ImportRun run{sink, log, Variation(nullptr, 0), [](const std::string&, double) {}, {}, {}, {}};
  MemorySource source({reinterpret_cast<const char*>(data) + 1, size - 1});
  IMPORTERS[data[0] % std::size(IMPORTERS)](source, "input", run);
  log.Lines();
  return 0;
}
