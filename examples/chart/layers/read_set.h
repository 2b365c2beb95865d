// Shapefile sets read, or said in words why not.
#pragma once

#include <k7/geometry/shp_layer.h>

#include <string>

/// Reads a set; `reader`, which may be null, is the layer's from now on. Empty, or which file of the set
/// cannot be read and why.
std::string ReadSet(K7ShpLayer& layer, const std::string& path, K7ShpFile* reader = nullptr);
