#include "app/trip_sources.h"

#include <k7/foundation/time.h>
#include <k7/geodesy/magvar.h>

#include "store/text_1252.h"

namespace {

constexpr int64_t DAY = 86400;

std::string Day(int64_t seconds) { return std::string(K7Time(seconds).Format("%Y-%m-%d")); }

std::string DataText(NavStore& store) {
  K7String source;
  std::string text = "Navigation data";
  if (store.GetSource(source) == 0 && source.Len() > 0) text += ": " + Utf8Of1252(std::string(source));
  int cycle = 0, revision = 0;
  if (store.GetDataCycle(K7NavData::STORE_NAVDATA, 0, &cycle, &revision) == 0 && cycle > 0)
    text +=
        ", cycle " + std::to_string(cycle) + (revision > 0 ? " revision " + std::to_string(revision) : "");
  unsigned from = 0, until = 0;
  if (store.GetEffectivity(K7NavData::STORE_NAVDATA, 0, &from, &until, nullptr) == 0 && from > 0) {
    text += ", from " + Day(from * DAY);
    if (until > from) text += " to " + Day((until - 1) * DAY);
  }
  return text + ".";
}

std::string MagneticText() {
  const auto* const model = dynamic_cast<const Tarsvald::MagVarWMM*>(K7MagVar::GetMagVar());
  if (!model || !model->IsLoaded()) return {};
  return "Magnetic model " + std::string(model->ModelName()) + ", its base " +
         std::string(K7FmtString("%.1f", static_cast<double>(model->Epoch()))) + ", for " +
         Day(std::time(nullptr)) + "; airways have the courses that their data state.";
}

}  // namespace

std::vector<std::string> SourcesOf(NavStore& store) {
  std::vector<std::string> sources = {DataText(store)};
  if (std::string magnetic = MagneticText(); !magnetic.empty()) sources.push_back(std::move(magnetic));
  return sources;
}
