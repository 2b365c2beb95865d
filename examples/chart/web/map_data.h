// What maps are drawn from and how they look. The application opens it; each thread that draws has layers of
// its own.
#pragma once

#include "layers/layer.h"
#include "layers/layer_table.h"
#include "sheet/elevations.h"

#include "store/nav_store.h"

#include <memory>
#include <string>
#include <vector>

/// Layers with all that they draw from. Used by one thread at a time.
class LayerSet {
 public:
  virtual ~LayerSet() = default;
  /// From the ground up; they live as long as the set.
  virtual std::vector<Layer*> Layers() const = 0;

 protected:
  LayerSet() = default;
  LayerSet(const LayerSet&) = delete;
  LayerSet& operator=(const LayerSet&) = delete;
};

struct NamedTheme {
  std::string name;
  Theme theme;
};

/// How the name of a theme or a layer is written where there are headings: "Airports".
std::string TitleOf(std::string name);

/// Any thread may call any operation.
class MapData {
 public:
  virtual ~MapData() = default;
  /// New layers for charts of that scale. Null with `problem` in words when a file cannot be read.
  virtual std::unique_ptr<LayerSet> OpenLayers(const DataScale& scale, std::string& problem) const = 0;
  /// The navigation data opened once more. Null when there are none, with `problem` in words when they cannot
  /// be read.
  virtual std::unique_ptr<NavStore> OpenStore(std::string& problem) const = 0;
  /// Null without terrain. It lives as long as the data.
  virtual Elevations* Terrain() const = 0;
  /// At least one; the first is the usual one.
  virtual const std::vector<NamedTheme>& Themes() const = 0;

  /// Of that name, without regard to case; empty: the usual one. Null for none.
  const Theme* FindTheme(const std::string& name) const;
  /// Empty, or in one sentence that there is none of that name.
  std::string WhyNoTheme(const std::string& name) const;

 protected:
  MapData() = default;
  MapData(const MapData&) = delete;
  MapData& operator=(const MapData&) = delete;
};
