// How large the symbols of fixes are, so that lines and lettering stay clear of them.
#pragma once

#include <k7/navdata/nav_types.h>

/// Pixels from the middle to the outermost of a symbol on a sheet of ordinary size.
inline constexpr double SymbolRadius(K7NavType type) {
  switch (type) {
    case K7NAV_VOR:
    case K7NAV_TERMINAL_NDB:
    case K7NAV_ENROUTE_NDB:
      return 7.5;
    case K7NAV_AIRPORT:
      return 6;
    default:
      return 4;
  }
}
