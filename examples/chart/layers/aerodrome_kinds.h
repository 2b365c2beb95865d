// The kinds of features that an aerodrome is mapped by, and how a chart shows each.
#pragma once

#include "ink/theme.h"

#include <k7/geometry/shape.h>

#include <span>

/// How a feature is drawn.
enum class AerodromeMark {
  Area,
  DashedArea,  ///< with a dashed outline
  Dashes,      ///< its outline alone, dashed
  Line,
  DoubleLine,
  Ring,  ///< about its place
  Dot,
  Nothing,  ///< it is there to be picked
};

/// A kind is a row.
struct AerodromeKind {
  K7ShapeType type;
  const char* set;  ///< what its sets are called
  ThemeItem item;
  AerodromeMark mark;
  const char* legend;           ///< null: none
  const char* letters[2] = {};  ///< attributes that are written on it
  double size = 0;              ///< of the lettering, in ordinary letters
  bool isBeside = false;        ///< else in the middle, where that has room
  ThemeItem ink = ThemeItem::Text;
};

/// From the ground up.
std::span<const AerodromeKind> AerodromeKinds();
/// The radius of a ring that has no extent of its own, and of a dot, in pixels of an ordinary sheet.
inline constexpr double LEAST_RING = 9, DOT = 1.6;
