// The layers that have a name, and the sets of a data folder that they are read from.
#pragma once

#include "ink/style.h"

#include <span>
#include <string>

/// A layer is a row.
struct LayerRow {
  const char* name;
  const char* set;  ///< of the data folder, behind the scale
  LayerKind kind;
};

std::span<const LayerRow> Layers();
/// Null when there is none of that name, regardless of case.
const LayerRow* FindLayer(const char* name);

/// The sets of a layer at two scales. Beyond COARSE_FROM_NM the coarse one shows all that a picture can.
enum class DataScale { Coarse, Fine };
inline constexpr DataScale DATA_SCALES[] = {DataScale::Coarse, DataScale::Fine};
inline constexpr double COARSE_FROM_NM = 2500;
const char* ScaleName(DataScale scale);

/// "ne_110m_land"
std::string SetName(const LayerRow& layer, DataScale scale);
/// The main file of a layer's set; empty when the folder does not have it.
std::string FindSet(const std::string& folder, const LayerRow& layer, DataScale scale);
/// The set at the wanted scale, or at the other one when the folder has only that; empty when it has neither.
std::string FindAnySet(const std::string& folder, const LayerRow& layer, DataScale wanted);
/// "land, rivers": what a data folder has; empty for nothing.
std::string LayersIn(const std::string& folder);
