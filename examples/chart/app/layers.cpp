// k7chart layers: what can be drawn from a data folder.

#include "app/nav_source.h"
#include "app_common/verb.h"
#include "layers/terrain_files.h"

#include <cstdio>
#include <iterator>

namespace {

class LayersVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override { AddDataOptions(table, m_options); }

  std::string Run() override {
    std::printf("Layers in %s\n\n  %-11s%-11s%-14s%s\n", m_options.folder.c_str(), "layer", "theme",
                "present", "sets");
    NavStore store;
    const std::string terrain = TerrainFolder(m_options);
    const std::string noStore = WhyNoStore(m_options.nav, store);
    const std::string noModel = WhyNoMagneticModel(m_options.magnetic);
    const std::string noTerrain = WhyNoTerrain(terrain);
    for (const LayerRow& layer : Layers()) switch (layer.source) {
        case LayerSource::Sets:
          PrintSets(layer);
          break;
        case LayerSource::Terrain:
          Print(layer, noTerrain.empty() ? "yes" : "no", noTerrain.empty() ? terrain : noTerrain);
          break;
        case LayerSource::Magnetism:
          Print(layer, noModel.empty() ? "yes" : "no", noModel.empty() ? m_options.magnetic : noModel);
          break;
        case LayerSource::Navigation:
          Print(layer, noStore.empty() ? "yes" : "no", noStore.empty() ? m_options.nav : noStore);
          break;
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
  static void Print(const LayerRow& layer, const std::string& present, const std::string& from) {
    std::printf("  %-11s%-11s%-14s%s\n", layer.name, ThemeItemName(layer.item), present.c_str(),
                from.c_str());
  }

  void PrintSets(const LayerRow& layer) const {
    std::string scales, sets;
    for (const DataScale& scale : DATA_SCALES) {
      sets += (sets.empty() ? "" : ", ") + SetName(layer, scale);
      if (FindSet(m_options.folder, layer, scale).empty()) continue;
      scales += scales.empty() ? "" : " ";
      scales += ScaleName(scale);
    }
    Print(layer, scales.empty() ? "no" : scales, sets);
  }

  LayerOptions m_options;
};

}  // namespace

std::unique_ptr<Verb> MakeLayers() { return std::make_unique<LayersVerb>(); }
