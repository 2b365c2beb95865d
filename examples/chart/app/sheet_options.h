// The sheet that charts are drawn on.
#pragma once

#include "app/option_table.h"

struct SheetOptions {
  int width = 1600;
  int height = 1000;
  std::string output;
};

/// --size, --output. The table names the output that `options` has.
void AddSheetOptions(OptionTable& table, SheetOptions& options);
