// The headers of BMP files.
#pragma once

namespace k7raster {

constexpr int BMP_FILE_HEADER = 14;
constexpr int BMP_CORE_HEADER = 12;
constexpr int BMP_INFO_HEADER = 40;

}  // namespace k7raster
