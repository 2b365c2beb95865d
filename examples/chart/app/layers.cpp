// k7chart layers: what can be drawn from a data folder.

#include "app/nav_source.h"
#include "app_common/verb.h"

#include <cstdio>
#include <iterator>

namespace {

class LayersVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override { AddDataOptions(table, m_options); }

  std::string Run() override {
    std::printf("Layers in %s\n\n  %-11s%-11s%-14s%s\n", m_options.folder.c_str(), "layer", "theme",
                "present", "sets");
    for (const LayerRow& layer : Layers()) {
      if (!layer.set) continue;
      std::string scales, sets;
      for (const DataScale& scale : DATA_SCALES) {
        sets += (sets.empty() ? "" : ", ") + SetName(layer, scale);
        if (FindSet(m_options.folder, layer, scale).empty()) continue;
        scales += scales.empty() ? "" : " ";
        scales += ScaleName(scale);
      }
      std::printf("  %-11s%-11s%-14s%s\n", layer.name, ThemeItemName(layer.item),
                  scales.empty() ? "no" : scales.c_str(), sets.c_str());
    }
    NavStore store;
    const std::string noStore = WhyNoStore(m_options.nav, store);
    const std::string noModel = WhyNoMagneticModel(m_options.magnetic);
    for (const LayerRow& layer : Layers()) {
      if (layer.set) continue;
      const bool magnetic = layer.item == ThemeItem::Isogonics;
      const std::string& problem = magnetic ? noModel : noStore;
      std::printf(
          "  %-11s%-11s%-14s%s\n", layer.name, ThemeItemName(layer.item), problem.empty() ? "yes" : "no",
          problem.empty() ? (magnetic ? m_options.magnetic : m_options.nav).c_str() : problem.c_str());
    }
    std::puts("");
    for (size_t i = 0; i + 1 < std::size(DATA_SCALES); ++i)
      std::printf("%s serves beyond %.0f NM of range.\n", ScaleName(DATA_SCALES[i]).c_str(),
                  DATA_SCALES[i].fromNM);
    std::puts(
        "Where a set is missing, the next finer one is taken, or else a coarser. '--layer FILE.shp' draws "
        "any\n"
        "other set.");
    return {};
  }

 private:
  LayerOptions m_options;
};

}  // namespace

std::unique_ptr<Verb> MakeLayers() { return std::make_unique<LayersVerb>(); }
