#include "layers/fix_layer.h"

#include <k7/navdata/airway.h>
#include <k7/navdata/navaid.h>

#include <cmath>

namespace {

// Fixes that no airway uses are for large scales: nautical miles an ordinary pixel.
constexpr double OFF_AIRWAYS_TO_NM = 0.04;

// Pixels about a piece of a picture: a symbol, and what lies too near to it.
constexpr double BEYOND = 100;

// Pixels between fixes: more as they crowd.
double Apart(double nm) { return 18 + 60 * std::min(nm, 0.5); }

uint64_t WordOf(const K7NavKey& key) { return uint64_t{key.NavType()} << 32 | key.Idx(); }

}  // namespace

void FixLayer::Collect(const LayerContext& context) {
  const K7ChartRect extent = PlacesIn(context, BEYOND);
  std::unordered_map<uint64_t, int> segments;
  for (const K7NavType type : {K7NAV_LOW_AIRWAY, K7NAV_HIGH_AIRWAY})
    VisitRecords<K7AirwaySeg>(m_data->AreaQuery(type, extent), [&](const K7AirwaySeg& segment) {
      ++segments[WordOf(segment.fromKey)];
      ++segments[WordOf(segment.toKey)];
    });
  for (const K7NavType type : {K7NAV_ENROUTE_FIX, K7NAV_TERMINAL_FIX})
    VisitRecords<K7Waypoint>(m_data->AreaQuery(type, extent), [&](const K7Waypoint& record) {
      const auto used = segments.find(WordOf(record.key));
      FixPlace fix;
      if (!TakePlace(context, Item(), record, record.name, fix)) return;
      if (used == segments.end() && fix.nm > OFF_AIRWAYS_TO_NM) return;
      fix.segments = used == segments.end() ? 0 : used->second;
      fix.weight = fix.segments > 0 ? 1 + fix.segments : type == K7NAV_ENROUTE_FIX ? 1 : 0;
      fix.apart = Apart(fix.nm) * context.scale;
      m_places.push_back(std::move(fix));
    });
  Spacing spacing(FARTHEST_APART * context.scale);
  // Navaids keep their places clear of fixes.
  for (const K7NavType type : {K7NAV_VOR, K7NAV_ENROUTE_NDB, K7NAV_TERMINAL_NDB})
    VisitRecords<K7NavFix>(m_data->AreaQuery(type, extent), [&](const K7NavFix& fix) {
      NavPlace place;
      if (TakePlace(context, ThemeItem::Navaids, fix, nullptr, place)) spacing.Take(place.dx, place.dy, 0);
    });
  KeepImportant(context, m_places, spacing,
                [&](const FixPlace& fix) { return ReachOf(fix, BoxOf(context, fix)); });
}

// Solid where an airway leads.
void FixLayer::DrawSymbol(const FixPlace& fix, SymbolPen& pen) const {
  pen.Fix(fix.dx, fix.dy, fix.segments > 0);
}

bool FixLayer::OfferLabel(const LayerContext& context, const FixPlace& fix, double size,
                          LabelPlan& plan) const {
  return OfferBeside(context, BoxOf(context, fix),
                     {{fix.ident, 0, 0, {.size = size * 0.66, .halo = true, .item = Item()}}}, plan);
}

std::string FixLayer::KindOf(const FixPlace&) const { return "fix"; }

std::string FixLayer::LegendText(const FixPlace& fix) const {
  return fix.segments > 0 ? "fix on an airway" : "fix";
}
