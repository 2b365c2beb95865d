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
  bool onEdge = false;  ///< of a piece of a larger picture: the pieces beside it show it too
};

/// What a view shows, and of a piece of a larger picture so many ordinary pixels around it.
K7ChartRect PlacesIn(const LayerContext& context, double beyond);
/// Pixels from a place to the farthest of a box about it.
inline double ReachOf(const NavPlace& place, const PixelBox& box) {
  return std::max({box.right - place.dx, place.dx - box.left, box.bottom - place.dy, place.dy - box.top});
}
/// Whether what reaches so many pixels about a place crosses the edge of a piece.
bool IsOnEdge(const LayerContext& context, double x, double y, double reach);

/// Takes what the beginning of a record says. False when the view does not show its place, or not at a scale
/// at which the theme shows the item. About a piece of a larger picture others have places too.
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

template <class Place>
void SortByWeight(std::vector<Place>& places) {
  std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) {
    return a.weight != b.weight ? a.weight > b.weight : a.key < b.key;
  });
}

/// Orders places by their weight, of equal ones the lower key first, and leaves those for which there is
/// room. `reach` tells how many pixels about its place a symbol takes.
///
/// Where pieces of a picture meet, what crosses their edge comes before all others, and stays where nothing
/// heavier that crosses one is near: neither depends on more than both sides know. What lies within another
/// piece is that one's.
template <class Place, class Reach>
void KeepImportant(const LayerContext& context, std::vector<Place>& places, Spacing& spacing, Reach reach) {
  SortByWeight(places);
  if (context.IsPiece()) {
    Spacing heavier = spacing;
    const PixelBox part = context.Part();
    std::erase_if(places, [&](Place& place) {
      const double x = place.dx, y = place.dy;
      place.onEdge = IsOnEdge(context, x, y, reach(place));
      if (!place.onEdge) return !part.Holds({x, y, x, y});
      const bool isFree = heavier.IsFree(x, y, place.apart);
      heavier.Take(x, y, 0);
      return !isFree;
    });
    for (const Place& place : places)
      if (place.onEdge) spacing.Take(place.dx, place.dy, 0);
  }
  std::erase_if(places, [&](const Place& place) {
    return !place.onEdge && !spacing.Take(place.dx, place.dy, place.apart);
  });
}
