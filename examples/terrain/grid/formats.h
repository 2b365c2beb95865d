// One file each; a new format adds its line here and its row in elev_grid.cpp.
#pragma once

#include "grid/elev_grid.h"

/// SRTM: big-endian 16-bit metres from the north-west corner, square; the name tells the south-west corner.
std::string OpenHgt(const std::string& path, std::unique_ptr<ElevGrid>& grid);
/// ESRI ASCII grid, in degrees.
std::string OpenAsc(const std::string& path, std::unique_ptr<ElevGrid>& grid);
/// A line of column names, latitude, longitude and elevation among them; then a line a post.
std::string OpenCsv(const std::string& path, std::unique_ptr<ElevGrid>& grid);
/// Through GDAL; a line saying so where the program was built without.
std::string OpenGeoTiff(const std::string& path, std::unique_ptr<ElevGrid>& grid);
