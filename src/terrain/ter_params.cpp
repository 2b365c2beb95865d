#include <k7/terrain/ter_params.h>

K7TerParams::K7TerParams() {
  const int32_t lowest = -9999;
  const K7Color white(0xFFFFFFFF);
  m_colorMap.Init(1, &lowest, &white);
}
