#include "app/chart_options.h"

#include <cstring>
#include "app_common/position_text.h"
#include "app_common/shared_data.h"

namespace {

std::string SetProjection(const char* text, ChartRequest& request) {
  const NamedProjection* const projection = FindProjection(text);
  if (!projection) return UnknownProjection(text);
  request.type = projection->type;
  return {};
}

std::string AddParam(const char* text, ChartRequest& request) {
  const char* const equals = std::strrchr(text, '=');
  double value = 0;
  if (!equals || equals == text || !ReadNumber(equals + 1, value))
    return "a parameter is \"NAME=NUMBER\", not " + Quoted(text);
  const std::string name(text, equals);
  for (const auto& [known, number] : request.params)
    if (K7String::IComp(known.c_str(), name.c_str()) == 0)
      return "the parameter " + Quoted(name) + " is set twice";
  request.params.emplace_back(name, value);
  return {};
}

std::string SetCentre(const char* text, ChartRequest& request) { return ReadPosition(text, request.center); }

std::string SetRange(const char* text, ChartRequest& request) {
  double range = 0;
  if (!ReadNumber(text, range) || range < 1 || range > MOST_RANGE_NM)
    return "the range is nautical miles from 1 to 10800, not " + Quoted(text);
  request.rangeNM = range;
  return {};
}

std::string SetTheme(const char* text, LookOptions& look) { return ReadTheme(text, look.theme); }

constexpr OptionRow<ChartRequest> PROJECTION_OPTIONS[] = {
    {"--projection", "NAME", "one of ", SetProjection, false,
     [](const ChartRequest&) { return ProjectionNames() + " (default lambert)"; }},
    {"--param", "NAME=VALUE",
     "sets a parameter of the projection, as \"Standard Parallel 1=49\"; may be repeated; 'k7chart "
     "projections' lists them",
     AddParam, true},
};

constexpr OptionRow<ChartRequest> PLACE_OPTIONS[] = {
    {"--center", "POSITION",
     "where the chart lies, as \"N48 30.0 W123 30.0\" (default), \"48.5, -123.5\" and other usual ways of "
     "writing it",
     SetCentre},
    {"--range", "NM",
     "nautical miles from the centre to the nearer edge of the chart, 1 to 10800, at the scale that the "
     "centre has along its meridian: where the scale changes outwards or is another to the east and west, as "
     "of rectangular and miller, the edge lies nearer or farther than that. Without it the chart shows all "
     "that the projection can; a tilted perspective always shows what its field of view holds and takes none",
     SetRange},
};

constexpr OptionRow<LookOptions> THEME_OPTIONS[] = {
    {"--theme", "THEME",
     "day (default), night, printed in the colours of a paper chart, or FILE.xml with colours, lines and "
     "symbols of your own, as data/themes/day.xml",
     SetTheme},
};

constexpr OptionRow<LookOptions> PART_OPTIONS[] = {
    {"--write-theme", "FILE.xml",
     "writes the theme, with the layers shown, hidden and ordered as on this chart, for --theme to read",
     [](const char* text, LookOptions& look) {
       look.writeTo = text;
       return std::string();
     }},
    {"--no-graticule", nullptr, "leaves out meridians and parallels",
     [](const char*, LookOptions& look) {
       look.graticule = false;
       return std::string();
     }},
    {"--no-legend", nullptr, "leaves out the symbols that the margin explains",
     [](const char*, LookOptions& look) {
       look.legend = false;
       return std::string();
     }},
};

}  // namespace

std::string ThemeFile(const std::string& name) {
  for (const char* const shipped : SHIPPED_THEMES)
    if (K7String::IComp(name.c_str(), shipped) == 0) return SharedData("themes") + "/" + shipped + ".xml";
  return name;
}

std::string ReadTheme(const std::string& name, Theme& theme) {
  const std::string file = ThemeFile(name);
  if (file.size() > 4 && K7String::IComp(file.c_str() + file.size() - 4, ".xml") == 0)
    return theme.Read(file);
  return "unknown theme " + Quoted(name) + " (day, night, printed, or a file that ends in .xml)";
}

void AddProjectionOptions(OptionTable& table, ChartRequest& request) {
  table.Add(PROJECTION_OPTIONS, request);
}

void AddPlaceOptions(OptionTable& table, ChartRequest& request) { table.Add(PLACE_OPTIONS, request); }

void AddThemeOption(OptionTable& table, LookOptions& look) { table.Add(THEME_OPTIONS, look); }

void AddLookOptions(OptionTable& table, LookOptions& look) {
  AddThemeOption(table, look);
  table.Add(PART_OPTIONS, look);
}
