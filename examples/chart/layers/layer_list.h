// The layers of a chart: in which order they lie and which of them are on.
#pragma once

#include "layers/layer.h"

#include <string>
#include <vector>

/// Layers have the names that 'k7chart layers' lists; those without a row there their own, as a shapefile set
/// of the user's. Names are compared without regard to case, and layers of one name are one. The layers stay
/// the caller's.
class LayerList {
 public:
  /// As they lie from the ground up, then as the theme wants them ordered and on.
  LayerList(const std::vector<Layer*>& layers, const Theme& theme);

  /// From the ground up, each once.
  std::vector<std::string> Names() const;
  bool IsVisible(const std::string& name) const;
  /// False when there is no layer of that name.
  bool SetVisible(const std::string& name, bool visible);
  void SetAllVisible(bool visible);
  /// The layers named change places among themselves, so that they lie in this order from the ground up; all
  /// others stay where they are. False, and nothing is changed, for a name that is not there or is there
  /// twice.
  bool SetOrder(const std::vector<std::string>& names);

  /// The lowest of those with that item; null for none.
  Layer* Find(ThemeItem item) const;
  /// Of the layer with that item; empty for none.
  std::string NameOf(ThemeItem item) const;
  void Remove(ThemeItem item);
  /// Sets in a theme which layers are on, and their order once `SetOrder` has changed it.
  void KeepIn(Theme& theme) const;

  template <class Visit>
  void VisitAll(Visit visit) const {
    for (const Place& place : m_places) visit(*place.layer);
  }
  template <class Visit>
  void VisitVisible(Visit visit) const {
    for (const Place& place : m_places)
      if (place.visible) visit(*place.layer);
  }

 private:
  struct Place {
    Layer* layer;
    std::string name;
    bool visible;
  };
  static bool Is(const Place& place, const std::string& name);
  const Place* FindPlace(const std::string& name) const;

  std::vector<Place> m_places;
  bool m_isReordered = false;
};
