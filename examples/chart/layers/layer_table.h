// The layers that have a name, and the sets of a data folder that those of the map are read from.
#pragma once

#include "ink/theme.h"

#include <span>
#include <string>

/// Where a layer's data come from.
enum class LayerSource { Sets, Terrain, Magnetism, Navigation };

/// A layer is a row.
struct LayerRow {
  const char* name;
  const char* set;  ///< of the data folder, behind the scale; null for layers of another source
  ThemeItem item;   ///< how it looks
  LayerSource source = LayerSource::Sets;
};

std::span<const LayerRow> Layers();
/// Of the layer with that look.
LayerSource SourceOf(ThemeItem item);
/// Null when there is none of that name, regardless of case.
const LayerRow* FindLayer(const char* name);
/// What the layer with that look is called; null for a layer without a row.
const char* LayerNameOf(ThemeItem item);
/// The layer that a set of any folder is, by its name: "ne_10m_land.shp" and "Land.shp" are land. Null for
/// another name.
const LayerRow* LayerOfFile(const std::string& path);

/// The scales at which sets are made, the coarsest first, and the range of a chart, in nautical miles, from
/// which on a set shows all that a picture can.
struct DataScale {
  int millions;  ///< 110 for 1:110,000,000
  double fromNM;
};
inline constexpr DataScale DATA_SCALES[] = {{110, 2500}, {50, 400}, {10, 0}};

/// For a chart of that range; 0 is the whole world.
const DataScale& ScaleFor(double rangeNM);
/// "1:110m"
std::string ScaleName(const DataScale& scale);

/// "ne_110m_land"
std::string SetName(const LayerRow& layer, const DataScale& scale);
/// The main file of a layer's set; empty when the folder does not have it, as for a layer without sets.
std::string FindSet(const std::string& folder, const LayerRow& layer, const DataScale& scale);
/// The set at the wanted scale, or else the next finer one, or the next coarser; empty when there is none.
std::string FindAnySet(const std::string& folder, const LayerRow& layer, const DataScale& wanted);
/// "land, rivers": what a data folder has; empty for nothing.
std::string LayersIn(const std::string& folder);
