// How a chart looks: colours, lines and the scales at which layers show, read from an options file.
#pragma once

#include "ink/symbol_images.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

struct Color {
  uint8_t red = 0, green = 0, blue = 0, alpha = 0;
  bool operator==(const Color&) const = default;
};

/// What has a look of its own.
enum class ThemeItem {
  Paper,
  Sea,
  Sky,  ///< behind the earth, as a tilted eye sees it
  Land,
  Underlay,  ///< the scales at which a picture under the map shows
  Terrain,   ///< tints of height and depth
  Contours,  ///< lines of equal height
  Lakes,
  Rivers,
  LakeLines,  ///< centre lines of lakes among the rivers
  Borders,
  Other,  ///< sets of the user's own
  Graticule,
  Elevations,  ///< maximum elevation figures
  Isogonics,   ///< lines of equal magnetic variation
  Airspaces,   ///< controlled: line, and band inside it
  ClassCAirspaces,
  ClassDAirspaces,
  ClassEAirspaces,  ///< and those of F and G
  RestrictedAirspaces,
  OtherAirspaces,
  Airways,  ///< fill: under their names
  Fixes,
  CompassRoses,
  Navaids,
  Airports,
  ToweredAirports,
  Aprons,  ///< of an airport diagram, as what follows
  Taxiways,
  Runways,
  Buildings,
  AerodromeLines,  ///< holding positions, exit lines, frequency areas
  Hotspots,        ///< and crosses on what is closed
  Route,           ///< fill: around its line
  Limb,
  Frame,
  Neatline,  ///< the inner line of the frame
  Text,
  Halo,  ///< around text that stands on the map
};
inline constexpr int THEME_ITEMS = static_cast<int>(ThemeItem::Halo) + 1;

/// What ground is painted from a height on, in feet; below the sea's level it is depth.
struct HeightTint {
  int feet = 0;
  Color color{};
  bool operator==(const HeightTint&) const = default;
};

/// From low to high. A tint reaches up to the next one; the first has what lies below it as well.
struct HeightTints {
  int count = 0;
  std::array<HeightTint, 20> rows{};
  bool operator==(const HeightTints&) const = default;
};

/// Widths and dashes are pixels of a sheet of ordinary size.
struct ThemeEntry {
  Color fill{};
  Color line{};
  double width = 0;
  std::array<double, 4> dash{};  ///< lengths of ink and gap, up to the first 0; none: a whole line
  double minNMPerPixel = 0;      ///< scales at which a layer shows
  double maxNMPerPixel = std::numeric_limits<double>::infinity();
  HeightTints tints{};
  bool visible = true;  ///< of a layer: whether a chart has it on at first

  bool ShowsAt(double nmPerPixel) const { return nmPerPixel >= minNMPerPixel && nmPerPixel <= maxNMPerPixel; }
  bool operator==(const ThemeEntry&) const = default;
};

/// A file is one of `K7Options`: the item is the group, and its keys are Fill, Line (#RRGGBB or #RRGGBBAA),
/// Width, Dash ("7 2.5 1.5 2.5" or "none"), MinNMPerPixel, MaxNMPerPixel ("none" for no limit), Tints
/// ("-60 #BAD6E6, 0 #E4EBD0, 1000 #EFE7C3") and Visible ("yes" or "no"):
///
///     <Options><Fill Group="Land">#F4EFDC</Fill><Width Group="Borders">0.9</Width></Options>
///
/// The key Order of the group Layers names layers from the ground up by their groups: they change places
/// among themselves, others stay: <Order Group="Layers">Airspaces, Terrain</Order>
///
/// Keys of the group Symbols are kinds of symbols, and name image files to draw in their place, relative to
/// the theme's own folder: <VOR Group="Symbols">vor.png</VOR>.
class Theme {
 public:
  /// Day.
  Theme();

  const ThemeEntry& operator[](ThemeItem item) const { return m_entries[static_cast<size_t>(item)]; }
  ThemeEntry& operator[](ThemeItem item) { return m_entries[static_cast<size_t>(item)]; }

  const SymbolImages& Symbols() const { return m_symbols; }
  /// From the ground up; empty: layers lie as they always do.
  const std::vector<ThemeItem>& Order() const { return m_order; }
  void SetOrder(std::vector<ThemeItem> order) { m_order = std::move(order); }

  /// Takes on the look of a file; what it leaves out is day's. Empty, or what is wrong with it, and then the
  /// theme is as before.
  std::string Read(const std::string& path);
  /// Writes all of it, so that it reads back equal. Empty, or what went wrong.
  std::string Save(const std::string& path) const;
  bool operator==(const Theme&) const = default;

 private:
  std::array<ThemeEntry, THEME_ITEMS> m_entries;
  SymbolImages m_symbols;
  std::vector<ThemeItem> m_order;
};

/// "Land": the group of a theme file.
const char* ThemeItemName(ThemeItem item);
/// Whether an item is a layer, which can be hidden and has a place in the order of layers.
bool IsLayerItem(ThemeItem item);
/// The item of the layer that an item is part of: of LakeLines it is Rivers, of a layer itself that layer.
/// What belongs to no layer, as Paper, is its own.
ThemeItem LayerItemOf(ThemeItem item);
