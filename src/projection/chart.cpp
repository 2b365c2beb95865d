#include <k7/projection/chart.h>

K7Chart::~K7Chart() = default;

K7String K7Chart::GetComponentParentName(const char*) { return K7String(); }
bool K7Chart::SetOffRouteAlpha(unsigned char) { return false; }
bool K7Chart::CanToggleTerrainContours() { return false; }
void K7Chart::ToggleTerrainContours() {}
void K7Chart::ClearRoute() {}
void K7Chart::ResetLayers(unsigned char) {}
void K7Chart::SetRouteVisible(unsigned char) {}
void K7Chart::WriteUserThemePref(const char*) {}
