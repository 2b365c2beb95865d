// What a chart shows: the options that its request is filled in by.
#pragma once

#include "app_common/option_table.h"
#include "layers/chart.h"
#include "layers/projection_names.h"

/// --projection and --param.
void AddProjectionOptions(OptionTable& table, ChartRequest& request);
/// --center, --range.
void AddPlaceOptions(OptionTable& table, ChartRequest& request);

/// How a chart looks.
struct LookOptions {
  Theme theme;
  bool graticule = true;
  bool legend = true;
  std::string writeTo;  // file for the theme with the layers as the chart has them; empty: none
};

inline constexpr const char* SHIPPED_THEMES[] = {"day", "night", "printed"};
/// Where one of those is, or the file itself.
std::string ThemeFile(const std::string& name);
/// One of those, or a file that ends in .xml. Empty, or what is wrong.
std::string ReadTheme(const std::string& name, Theme& theme);
/// --theme
void AddThemeOption(OptionTable& table, LookOptions& look);
/// --theme, --write-theme, --no-graticule, --no-legend.
void AddLookOptions(OptionTable& table, LookOptions& look);
