// Records of navigation data as a view shows them: where they fall, and which of them there is room for.
#pragma once

#include "layers/layer.h"

#include <k7/navdata/nav_data.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

inline constexpr double FARTHEST_APART = 80;

/// What all layers keep of a record that has a place.
struct NavPlace {
  K7NavKey key;
  std::string ident;
  std::string name;  ///< UTF-8
  double lat = 0, lon = 0;
  double dx = 0, dy = 0;  ///< on the device
  double nm = 0;          ///< nautical miles that a pixel of a sheet of ordinary size spans there
  double apart = 0;       ///< pixels that it keeps from what is heavier, up to FARTHEST_APART ordinary ones
  double weight = 0;      ///< how much it matters: where there is no room for all, the heavier stays
  bool isShown = true;
};

/// Takes what the beginning of a record says. False when the view does not show its place, or not at a scale
/// at which the theme shows the item.
bool TakePlace(const LayerContext& context, ThemeItem item, const K7NavFix& fix, const char* name,
               NavPlace& place);
/// The scale at a place: a tilted view's falls towards its horizon; others have one, which their margin
/// states.
double NMPerPixelAt(const K7MapView& view, double lat, double lon);
/// Nautical miles that a pixel of a sheet of ordinary size would span at the chart's centre, in a tilted view
/// where it is nearest. Symbols are chosen by ordinary pixels, so that a larger print shows the same.
double NMPerOrdinaryPixel(const LayerContext& context);
/// "KSEA (SEATTLE-TACOMA INTL)"
std::string IdentAndName(const NavPlace& place);

/// Visits the records of a result, which may be null, and deletes it.
template <class Record, class Visit>
void VisitRecords(K7NavQueryResult* result, Visit visit) {
  const std::unique_ptr<K7NavQueryResult> owned(result);
  while (const K7NavRec* record = owned ? owned->Next() : nullptr) visit(static_cast<const Record&>(*record));
}

/// Places on the device, none nearer to another than a distance.
class Spacing {
 public:
  /// `apart`: the largest distance, in pixels.
  explicit Spacing(double apart) : m_apart(apart) {}
  bool IsFree(double x, double y) const { return IsFree(x, y, m_apart); }
  bool IsFree(double x, double y, double apart) const;
  /// Takes a place that is far enough from all that are taken; says whether it was.
  bool Take(double x, double y) { return Take(x, y, m_apart); }
  bool Take(double x, double y, double apart);

 private:
  struct At {
    double x, y;
  };
  int64_t CellOf(double x, double y, int right, int down) const;

  double m_apart;
  std::unordered_map<int64_t, std::vector<At>> m_cells;
};

/// Orders places by their weight, of equal ones the lower key first, and leaves those for which there is
/// room.
template <class Place>
void KeepImportant(std::vector<Place>& places, Spacing& spacing) {
  std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) {
    return a.weight != b.weight ? a.weight > b.weight : a.key < b.key;
  });
  std::erase_if(places, [&](const Place& place) { return !spacing.Take(place.dx, place.dy, place.apart); });
}
