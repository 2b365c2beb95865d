// Signs that airport diagrams are made of, about device points.
#pragma once

#include <k7/projection/grfx.h>

/// A circle of chords, as a closed piece of the path.
void AddCircle(K7Grfx& g, double x, double y, double radius);
/// An upright rectangle about a point.
void AddBox(K7Grfx& g, double x, double y, double halfWidth, double halfHeight);
/// Two bars across each other, as on what is closed.
void AddCross(K7Grfx& g, double x, double y, double arm);
