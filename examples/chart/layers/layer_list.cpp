#include "layers/layer_list.h"

#include "layers/layer_table.h"

#include <algorithm>

LayerList::LayerList(const std::vector<Layer*>& layers, const Theme& theme) {
  for (Layer* const layer : layers) {
    const char* const name = LayerNameOf(layer->Item());
    m_places.push_back({layer, name ? name : layer->Name(), theme[layer->Item()].visible});
  }
  std::vector<std::string> order;
  for (const ThemeItem item : theme.Order())
    if (std::string name = NameOf(item); !name.empty()) order.push_back(std::move(name));
  SetOrder(order);
  m_isReordered = false;
}

bool LayerList::Is(const Place& place, const std::string& name) {
  return K7String::IComp(place.name.c_str(), name.c_str()) == 0;
}

const LayerList::Place* LayerList::FindPlace(const std::string& name) const {
  const auto place =
      std::find_if(m_places.begin(), m_places.end(), [&](const Place& p) { return Is(p, name); });
  return place == m_places.end() ? nullptr : &*place;
}

std::vector<std::string> LayerList::Names() const {
  std::vector<std::string> names;
  for (const Place& place : m_places)
    if (FindPlace(place.name) == &place) names.push_back(place.name);
  return names;
}

bool LayerList::IsVisible(const std::string& name) const {
  const Place* const place = FindPlace(name);
  return place && place->visible;
}

bool LayerList::SetVisible(const std::string& name, bool visible) {
  for (Place& place : m_places)
    if (Is(place, name)) place.visible = visible;
  return FindPlace(name) != nullptr;
}

void LayerList::SetAllVisible(bool visible) {
  for (Place& place : m_places) place.visible = visible;
}

bool LayerList::SetOrder(const std::vector<std::string>& names) {
  std::vector<Place> moved;
  std::vector<size_t> free;
  for (const std::string& name : names) {
    const size_t before = moved.size();
    for (size_t i = 0; i < m_places.size(); ++i) {
      if (!Is(m_places[i], name)) continue;
      if (std::find(free.begin(), free.end(), i) != free.end()) return false;
      moved.push_back(m_places[i]);
      free.push_back(i);
    }
    if (moved.size() == before) return false;
  }
  std::sort(free.begin(), free.end());
  for (size_t i = 0; i < moved.size(); ++i) m_places[free[i]] = moved[i];
  m_isReordered = true;
  return true;
}

Layer* LayerList::Find(ThemeItem item) const {
  for (const Place& place : m_places)
    if (place.layer->Item() == item) return place.layer;
  return nullptr;
}

std::string LayerList::NameOf(ThemeItem item) const {
  const Layer* const layer = Find(item);
  for (const Place& place : m_places)
    if (place.layer == layer) return place.name;
  return {};
}

void LayerList::Remove(ThemeItem item) {
  std::erase_if(m_places, [item](const Place& place) { return place.layer->Item() == item; });
}

// Sets of the user's own share an item, which is on when one of them is.
void LayerList::KeepIn(Theme& theme) const {
  std::vector<ThemeItem> order;
  for (const Place& place : m_places) {
    const ThemeItem item = place.layer->Item();
    if (std::find(order.begin(), order.end(), item) != order.end()) {
      theme[item].visible = theme[item].visible || place.visible;
      continue;
    }
    order.push_back(item);
    theme[item].visible = place.visible;
  }
  if (m_isReordered) theme.SetOrder(std::move(order));
}
