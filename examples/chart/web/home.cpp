#include "web/home.h"

#include "layers/chart.h"
#include "layers/projection_names.h"
#include "store/text_1252.h"

#include <algorithm>

Home HomeOf(NavStore* store) {
  static const double SEEN = 0.6, USUAL_NM = 120, LEAST_NM = 20;  // share of the data, middle to edge
  const ChartRequest chart;
  Home home = {chart.center.Lat(), chart.center.Lon(), USUAL_NM};
  const K7ChartRect extent = store ? store->GetExtent() : K7ChartRect();
  if (extent.IsEmpty()) return home;
  extent.Center(home.lat, home.lon);
  const double tall = (extent.North() - extent.South()) * 60;
  home.rangeNM = std::clamp(tall * SEEN, LEAST_NM, MOST_RANGE_NM);
  return home;
}

std::string AttributionOf(NavStore* store) {
  K7String source;
  return store && store->GetSource(source) == 0 ? Utf8Of1252(static_cast<const char*>(source))
                                                : std::string();
}
