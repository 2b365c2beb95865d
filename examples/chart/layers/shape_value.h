// The values of shape records, as a chart letters them.
#pragma once

#include <k7/geometry/shape.h>

#include <optional>
#include <string>

/// UTF-8. Empty where the record has no such attribute and for values that say "unknown" or "absent".
std::string ShapeText(const K7Shape& shape, const K7ShapeRec& record, const char* name);
/// Nothing where `ShapeText` is empty or no number.
std::optional<double> ShapeNumber(const K7Shape& shape, const K7ShapeRec& record, const char* name);
/// What no aircraft may use: its STATUS says so.
bool IsClosedShape(const K7Shape& shape, const K7ShapeRec& record);
