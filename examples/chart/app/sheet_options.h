// The sheet that charts are drawn on.
#pragma once

#include "app_common/option_table.h"

struct SheetOptions {
  int smallest = 200;  // of width and height: less leaves no room for a chart beside its margins
  int width = 1600;
  int height = 1000;
  std::string output;
};

/// --size
void AddSizeOptions(OptionTable& table, SheetOptions& options);
/// --size, --output. The table names the output that `options` has.
void AddSheetOptions(OptionTable& table, SheetOptions& options);
