#include "app/arrange_layers.h"

#include <algorithm>
#include <filesystem>

namespace {

// What has no row in the table is called as its layer: the graticule, a set of the user's own.
std::string NameIn(const LayerList& layers, const std::string& name) {
  const std::filesystem::path path = name;
  const bool isFile = K7String::IComp(path.extension().string().c_str(), ".shp") == 0;
  const LayerRow* row = FindLayer(name.c_str());
  if (!row && isFile) row = LayerOfFile(name);
  if (row) return layers.NameOf(row->item);
  return isFile ? path.stem().string() : name;
}

std::string NoLayer(const std::string& name, const LayerList& layers) {
  std::string names;
  for (const std::string& layer : layers.Names()) names += (names.empty() ? "" : ", ") + layer;
  return "the chart has no layer " + Quoted(name) + "; it has " + names;
}

}  // namespace

std::string ArrangeLayers(const LayerOptions& options, LayerList& layers) {
  for (const auto& [names, visible] :
       {std::pair{&options.names, true}, {&options.shown, true}, {&options.hidden, false}})
    for (const std::string& name : *names)
      if (!layers.SetVisible(NameIn(layers, name), visible)) return NoLayer(name, layers);
  std::vector<std::string> order;
  for (const std::string& name : options.order) {
    order.push_back(NameIn(layers, name));
    const std::vector<std::string> all = layers.Names();
    if (std::none_of(all.begin(), all.end(), [&](const std::string& layer) {
          return K7String::IComp(layer.c_str(), order.back().c_str()) == 0;
        }))
      return NoLayer(name, layers);
  }
  return layers.SetOrder(order) ? std::string() : "--order names a layer twice";
}
