#include "ink/theme.h"

#include "ink/readable.h"

#include <k7/foundation/error_string.h>
#include <k7/foundation/options.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <vector>

namespace {

// Keys of an entry.
constexpr unsigned FILL = 1, LINE = 2, WIDTH = 4, DASH = 8, MIN_SCALE = 16, MAX_SCALE = 32, TINTS = 64,
                   VISIBLE = 128;
constexpr unsigned STROKE = LINE | WIDTH | DASH;
constexpr unsigned SCALES = MIN_SCALE | MAX_SCALE;
constexpr unsigned LAYER = SCALES | VISIBLE;

struct Row {
  const char* name;
  unsigned keys;
  ThemeEntry day;
  ThemeItem partOf = ThemeItem::Text;  // the layer's item; Text: none
  bool isVariant = false;              // what a file leaves out is as it has it for the layer, not as by day
};

constexpr Color INK = {33, 46, 61, 255};
constexpr Color SEA = {207, 227, 237, 255};
constexpr Color RIVER = {107, 161, 199, 255};
constexpr Color LAND = {229, 236, 211, 255};
// Greens, yellow and browns upwards, blues downwards, as on printed charts; pale, since everything else is
// read on top. About the sea's level they are those of the sea and the land, so that terrain whose data end
// there has no edge.
constexpr HeightTints DAY_TINTS = {14,
                                   {{{-9000, {140, 184, 212, 255}},
                                     {-6000, {154, 195, 220, 255}},
                                     {-3000, {170, 206, 227, 255}},
                                     {-1200, {186, 216, 233, 255}},
                                     {-300, {197, 222, 235, 255}},
                                     {-60, SEA},
                                     {0, LAND},
                                     {500, {238, 238, 208, 255}},
                                     {1000, {245, 236, 199, 255}},
                                     {2000, {244, 226, 180, 255}},
                                     {3000, {238, 211, 160, 255}},
                                     {5000, {226, 192, 141, 255}},
                                     {7000, {211, 173, 126, 255}},
                                     {10000, {197, 160, 125, 255}}}}};

constexpr ThemeEntry CONTROLLED = {{31, 95, 168, 46}, {31, 95, 168, 230}, 1.1, {}, 0, 0.8};
constexpr ThemeEntry AIRPORT = {{253, 252, 250, 255}, {98, 44, 122, 255}, 1.2};

// In the order of ThemeItem.
constexpr Row ROWS[] = {
    {"Paper", FILL, {{253, 252, 250, 255}}},
    {"Sea", FILL | VISIBLE, {SEA}},
    {"Sky", FILL, {{233, 241, 247, 255}}, ThemeItem::Sea},
    {"Land", FILL | STROKE | LAYER, {LAND, {69, 107, 133, 255}, 0.9}},
    {"Underlay", LAYER, {}},
    {"Terrain", TINTS | LAYER, {.tints = DAY_TINTS}},
    {"Contours", STROKE | LAYER, {{}, {133, 90, 48, 204}, 0.6, {}, 0, 0.35, {}, false}},
    {"Lakes", FILL | STROKE | LAYER, {SEA, RIVER, 0.8}},
    {"Rivers", FILL | STROKE | LAYER, {SEA, RIVER, 0.8}},
    {"LakeLines", STROKE, {{}, {156, 197, 222, 255}, 3.2}, ThemeItem::Rivers},
    {"Borders", STROKE | LAYER, {{}, {153, 77, 107, 204}, 0.9, {7, 2.5, 1.5, 2.5}}},
    {"Other", FILL | STROKE | LAYER, {{140, 51, 140, 38}, {140, 51, 140, 230}, 1}},
    {"Graticule", STROKE | VISIBLE, {{}, {64, 89, 115, 89}, 0.6}},
    {"Elevations", LINE | LAYER, {{}, {32, 60, 128, 230}, 0, {}, 0.03, 0.4}},
    {"Isogonics", STROKE | LAYER, {{}, {140, 92, 154, 217}, 0.8, {9, 4}}},
    {"Airspaces", FILL | STROKE | LAYER, CONTROLLED},
    {"ClassCAirspaces", FILL | STROKE | SCALES, CONTROLLED, ThemeItem::Airspaces, true},
    {"ClassDAirspaces", FILL | STROKE | SCALES, CONTROLLED, ThemeItem::Airspaces, true},
    {"ClassEAirspaces", FILL | STROKE | SCALES, CONTROLLED, ThemeItem::Airspaces, true},
    {"RestrictedAirspaces",
     FILL | STROKE | SCALES,
     {{178, 46, 58, 46}, {178, 46, 58, 230}, 1.1, {}, 0, 0.8},
     ThemeItem::Airspaces},
    {"OtherAirspaces",
     FILL | STROKE | SCALES,
     {{92, 122, 56, 46}, {92, 122, 56, 230}, 1.1, {}, 0, 0.8},
     ThemeItem::Airspaces},
    {"Airways", FILL | STROKE | LAYER, {{253, 252, 250, 235}, {66, 82, 110, 255}, 1, {}, 0, 1}},
    {"Fixes", FILL | STROKE | LAYER, {{253, 252, 250, 255}, {66, 82, 110, 255}, 1, {}, 0, 0.3}},
    {"CompassRoses", STROKE | SCALES, {{}, {28, 84, 140, 153}, 0.8, {}, 0, 0.3}, ThemeItem::Navaids},
    {"Navaids", FILL | STROKE | LAYER, {{253, 252, 250, 255}, {28, 84, 140, 255}, 1.2, {}, 0, 3}},
    {"Airports", FILL | STROKE | LAYER, AIRPORT},
    {"ToweredAirports", FILL | STROKE, AIRPORT, ThemeItem::Airports, true},
    {"Aprons", FILL | STROKE, {{221, 224, 227, 255}, {156, 163, 170, 255}, 0.8}},
    {"Taxiways", FILL | STROKE, {{176, 183, 190, 255}, {128, 136, 144, 255}, 0.8}},
    {"Runways", FILL | STROKE, {{58, 64, 72, 255}, {30, 35, 40, 255}, 0.9}},
    {"Buildings", FILL | STROKE, {{104, 92, 82, 255}, {60, 50, 43, 255}, 0.8}},
    {"AerodromeLines", STROKE, {{}, {140, 70, 0, 255}, 1}},
    {"Hotspots", STROKE, {{}, {186, 18, 32, 255}, 1.8}},
    {"Route", FILL | STROKE | VISIBLE, {{253, 252, 250, 230}, {196, 0, 122, 255}, 2.6}},
    {"Limb", STROKE, {{}, {89, 122, 148, 255}, 1.2}, ThemeItem::Sea},
    {"Frame", STROKE, {{}, INK, 2.5}},
    {"Neatline", STROKE, {{}, INK, 1}},
    {"Text", FILL, {INK}},
    {"Halo", FILL, {{255, 255, 255, 179}}},
};
static_assert(std::size(ROWS) == THEME_ITEMS);

constexpr double THINNEST = 0.1, WIDEST = 40;
constexpr double LONGEST_DASH = 200;

bool ReadNumber(const char*& text, double& value) {
  while (*text == ' ') ++text;
  const auto [stop, error] = std::from_chars(text, text + std::strlen(text), value);
  text = stop;
  return error == std::errc() && std::isfinite(value);
}

bool ReadLast(const char* text, double& value) { return ReadNumber(text, value) && *text == 0; }

std::string Written(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

bool ReadColor(const char* text, Color& color) {
  const size_t length = std::strlen(text);
  if (text[0] != '#' || (length != 7 && length != 9)) return false;
  uint8_t* const bytes[] = {&color.red, &color.green, &color.blue, &color.alpha};
  color.alpha = 255;
  for (size_t i = 1; i < length; i += 2) {
    const auto [stop, error] = std::from_chars(text + i, text + i + 2, *bytes[i / 2], 16);
    if (error != std::errc() || stop != text + i + 2) return false;
  }
  return true;
}

std::string Written(const Color& color) {
  K7String text;
  text.Format("#%02X%02X%02X", color.red, color.green, color.blue);
  if (color.alpha != 255) text += K7FmtString("%02X", color.alpha);
  return std::string(text);
}

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::string part;
  for (std::istringstream rest(text); std::getline(rest, part, at);) parts.push_back(part);
  return parts;
}

bool ReadDash(const char* text, std::array<double, 4>& dash) {
  dash = {};
  if (std::strcmp(text, "none") == 0) return true;
  size_t count = 0;
  for (; *text && count < dash.size(); ++count)
    if (!ReadNumber(text, dash[count]) || !(dash[count] >= THINNEST && dash[count] <= LONGEST_DASH))
      return false;
  return count > 0 && *text == 0;
}

std::string Written(const std::array<double, 4>& dash) {
  std::string text;
  for (size_t i = 0; i < dash.size() && dash[i] > 0; ++i) text += (i ? " " : "") + Written(dash[i]);
  return text.empty() ? "none" : text;
}

bool ReadScale(const char* text, double none, double& scale) {
  if (std::strcmp(text, "none") != 0) return ReadLast(text, scale) && scale >= 0;
  scale = none;
  return true;
}

std::string WrittenScale(double scale, double none) { return scale == none ? "none" : Written(scale); }

// "FEET #RRGGBB" for each, with commas between.
bool ReadTints(const char* text, HeightTints& tints) {
  static const double HIGHEST = 40000;
  tints = {};
  for (const std::string& row : Split(text, ',')) {
    const char* rest = row.c_str();
    double feet = 0;
    if (tints.count == static_cast<int>(tints.rows.size()) || !ReadNumber(rest, feet) || *rest != ' ' ||
        !(std::fabs(feet) <= HIGHEST))
      return false;
    HeightTint& tint = tints.rows[static_cast<size_t>(tints.count)];
    tint.feet = static_cast<int>(std::lround(feet));
    if (!ReadColor(rest + 1, tint.color)) return false;
    if (tints.count > 0 && tint.feet <= tints.rows[static_cast<size_t>(tints.count) - 1].feet) return false;
    ++tints.count;
  }
  return tints.count > 0;
}

std::string Written(const HeightTints& tints) {
  std::string text;
  for (int i = 0; i < tints.count; ++i) {
    const HeightTint& tint = tints.rows[static_cast<size_t>(i)];
    text += (i ? ", " : "") + std::to_string(tint.feet) + " " + Written(tint.color);
  }
  return text;
}

constexpr ThemeEntry BARE;

struct Key {
  const char* name;
  unsigned bit;
  const char* values;
  bool (*read)(const char* text, ThemeEntry& entry);
  std::string (*write)(const ThemeEntry& entry);
};

constexpr Key KEYS[] = {
    {"Fill", FILL, "#RRGGBB or #RRGGBBAA",
     [](const char* text, ThemeEntry& entry) { return ReadColor(text, entry.fill); },
     [](const ThemeEntry& entry) { return Written(entry.fill); }},
    {"Line", LINE, "#RRGGBB or #RRGGBBAA",
     [](const char* text, ThemeEntry& entry) { return ReadColor(text, entry.line); },
     [](const ThemeEntry& entry) { return Written(entry.line); }},
    {"Width", WIDTH, "0.1 to 40 pixels",
     [](const char* text, ThemeEntry& entry) {
       return ReadLast(text, entry.width) && entry.width >= THINNEST && entry.width <= WIDEST;
     },
     [](const ThemeEntry& entry) { return Written(entry.width); }},
    {"Dash", DASH, "one to four lengths from 0.1 to 200 pixels, or none",
     [](const char* text, ThemeEntry& entry) { return ReadDash(text, entry.dash); },
     [](const ThemeEntry& entry) { return Written(entry.dash); }},
    {"MinNMPerPixel", MIN_SCALE, "nautical miles a pixel, or none",
     [](const char* text, ThemeEntry& entry) {
       return ReadScale(text, BARE.minNMPerPixel, entry.minNMPerPixel);
     },
     [](const ThemeEntry& entry) { return WrittenScale(entry.minNMPerPixel, BARE.minNMPerPixel); }},
    {"MaxNMPerPixel", MAX_SCALE, "nautical miles a pixel, or none",
     [](const char* text, ThemeEntry& entry) {
       return ReadScale(text, BARE.maxNMPerPixel, entry.maxNMPerPixel);
     },
     [](const ThemeEntry& entry) { return WrittenScale(entry.maxNMPerPixel, BARE.maxNMPerPixel); }},
    {"Tints", TINTS, "up to 20 heights in feet, rising, each with its colour: \"-60 #BAD6E6, 0 #E4EBD0\"",
     [](const char* text, ThemeEntry& entry) { return ReadTints(text, entry.tints); },
     [](const ThemeEntry& entry) { return Written(entry.tints); }},
    {"Visible", VISIBLE, "yes or no",
     [](const char* text, ThemeEntry& entry) {
       entry.visible = std::strcmp(text, "yes") == 0;
       return entry.visible || std::strcmp(text, "no") == 0;
     },
     [](const ThemeEntry& entry) { return std::string(entry.visible ? "yes" : "no"); }},
};

// The item that a group is; THEME_ITEMS for none.
int ItemNamed(const std::string& group) {
  int item = 0;
  while (item < THEME_ITEMS && group != ROWS[item].name) ++item;
  return item;
}

// A table of its own: a theme leaves the settings of the process alone.
class ThemeFile : public K7Options {};

template <class Table, class Wanted>
std::string Names(const Table& table, Wanted wanted) {
  std::string names;
  for (const auto& row : table) {
    if (!wanted(row)) continue;
    names += names.empty() ? "" : ", ";
    names += row.name;
  }
  return names;
}

constexpr const char* SYMBOLS = "Symbols";
// What the images of a theme may take while they are read: those of many kinds may be one file's.
constexpr int64_t IMAGE_BYTES = 4 << 20;

// Empty, or what is wrong with the setting of a symbol; `folder` is the theme's.
std::string TakeSymbol(const K7KeyValue& setting, const std::filesystem::path& folder, K7RasterCache& cache,
                       SymbolImages& symbols) {
  std::string names;
  for (int i = 0; i < SYMBOL_KINDS; ++i) {
    const SymbolKind kind = static_cast<SymbolKind>(i);
    if (std::strcmp(setting.key, SymbolKindName(kind)) == 0)
      return symbols.Read(kind, (folder / std::string(setting.value)).lexically_normal().string(), cache);
    names += std::string(i ? ", " : "") + SymbolKindName(kind);
  }
  return std::string(SYMBOLS) + " has no '" + std::string(setting.key) + "'; it has " + names;
}

constexpr const char* LAYERS = "Layers";
constexpr const char* ORDER = "Order";

bool HasKey(int item, unsigned bits) { return (ROWS[item].keys & bits) != 0; }

// Empty, or what is wrong with the order of layers.
std::string TakeOrder(const std::string& name, const std::string& value, Theme& theme) {
  if (name != ORDER) return std::string(LAYERS) + " has no '" + name + "'; it has " + ORDER;
  std::vector<ThemeItem> order;
  for (const std::string& part : Split(value, ',')) {
    const std::string layer = part.substr(std::min(part.find_first_not_of(' '), part.size()));
    const int item = ItemNamed(layer);
    if (item == THEME_ITEMS || !HasKey(item, VISIBLE))
      return "Order of Layers has no layer '" + layer + "'; layers are " +
             Names(ROWS, [](const Row& row) { return (row.keys & VISIBLE) != 0; });
    if (std::find(order.begin(), order.end(), static_cast<ThemeItem>(item)) != order.end())
      return "Order of Layers has '" + layer + "' twice";
    order.push_back(static_cast<ThemeItem>(item));
  }
  if (order.empty()) return "Order of Layers names none";
  theme.SetOrder(std::move(order));
  return {};
}

std::string Written(const std::vector<ThemeItem>& order) {
  std::string text;
  for (const ThemeItem item : order) text += (text.empty() ? "" : ", ") + std::string(ThemeItemName(item));
  return text;
}

// Empty, or what is wrong with a setting.
std::string Take(const K7KeyValue& setting, Theme& theme) {
  const std::string group(setting.group), name(setting.key), value(setting.value);
  if (group == LAYERS) return TakeOrder(name, value, theme);
  const int item = ItemNamed(group);
  if (item == THEME_ITEMS)
    return "it sets '" + name + "' of '" + group + "', but the groups are " +
           Names(ROWS, [](const Row&) { return true; }) + ", " + LAYERS + ", " + SYMBOLS;
  for (const Key& key : KEYS) {
    if (name != key.name || !HasKey(item, key.bit)) continue;
    if (key.read(value.c_str(), theme[static_cast<ThemeItem>(item)])) return {};
    return name + " of " + group + " is " + key.values + ", not '" + value + "'";
  }
  return group + " has no '" + name + "'; it has " +
         Names(KEYS, [item](const Key& key) { return HasKey(item, key.bit); });
}

// A theme that makes airspaces green need not say so class by class.
void FillVariants(ThemeFile& file, Theme& theme) {
  for (int item = 0; item < THEME_ITEMS; ++item)
    for (const Key& key : KEYS)
      if (ROWS[item].isVariant && HasKey(item, key.bit) && !file.GetKeyValueByName(key.name, ROWS[item].name))
        key.read(key.write(theme[ROWS[item].partOf]).c_str(), theme[static_cast<ThemeItem>(item)]);
}

std::string TakeAll(ThemeFile& file, const std::filesystem::path& folder, Theme& theme,
                    SymbolImages& symbols) {
  K7RasterCache cache(IMAGE_BYTES);
  int i = 0;
  for (const K7KeyValue* setting; (setting = file.GetKeyValueByIndex(i)); ++i) {
    if (file.GetKeyValueByName(setting->key, setting->group) != setting)
      return "it sets " + std::string(setting->key) + " of " + std::string(setting->group) + " twice";
    std::string problem =
        setting->group == SYMBOLS ? TakeSymbol(*setting, folder, cache, symbols) : Take(*setting, theme);
    if (!problem.empty()) return problem;
  }
  if (i == 0) return "it sets nothing";
  FillVariants(file, theme);
  for (int item = 0; item < THEME_ITEMS; ++item) {
    const ThemeEntry& entry = theme[static_cast<ThemeItem>(item)];
    if (entry.minNMPerPixel > entry.maxNMPerPixel)
      return "MinNMPerPixel of " + std::string(ROWS[item].name) + " is above its MaxNMPerPixel";
  }
  return {};
}

}  // namespace

Theme::Theme() {
  for (size_t i = 0; i < m_entries.size(); ++i) m_entries[i] = ROWS[i].day;
}

std::string Theme::Read(const std::string& path) {
  const std::string why = WhyUnreadable(path);
  if (!why.empty()) return "cannot read the theme '" + path + "': " + why;
  ThemeFile file;
  if (const int code = file.Read(path.c_str()); code != 0)
    return "cannot read the theme '" + path + "': " +
           (code == K7_ERR_XML_MISMATCHED_TAG ? "it is no whole XML document"
                                              : K7ErrorString::ErrorString(code));
  Theme theme;
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::absolute(path, error).parent_path();
  if (const std::string problem = TakeAll(file, folder, theme, theme.m_symbols); !problem.empty())
    return "the theme '" + path + "': " + problem;
  *this = theme;
  return {};
}

std::string Theme::Save(const std::string& path) const {
  ThemeFile file;
  int code = 0;
  for (size_t i = 0; i < m_entries.size(); ++i)
    for (const Key& key : KEYS)
      if (code == 0 && (ROWS[i].keys & key.bit))
        code = file.SetOption(key.name, key.write(m_entries[i]).c_str(), ROWS[i].name);
  for (int i = 0; i < SYMBOL_KINDS; ++i) {
    const SymbolKind kind = static_cast<SymbolKind>(i);
    if (code == 0 && m_symbols.Of(kind))
      code = file.SetOption(SymbolKindName(kind), m_symbols.PathOf(kind).c_str(), SYMBOLS);
  }
  if (code == 0 && !m_order.empty()) code = file.SetOption(ORDER, Written(m_order).c_str(), LAYERS);
  if (code == 0) code = file.Write(path.c_str());
  if (code == 0) return {};
  return "cannot write the theme '" + path + "'" + (code == K7_ERR_MEMORY ? ": out of memory" : "");
}

const char* ThemeItemName(ThemeItem item) { return ROWS[static_cast<size_t>(item)].name; }

bool IsLayerItem(ThemeItem item) { return HasKey(static_cast<int>(item), VISIBLE); }

ThemeItem LayerItemOf(ThemeItem item) {
  const Row& row = ROWS[static_cast<size_t>(item)];
  return row.partOf == ThemeItem::Text ? item : row.partOf;
}
