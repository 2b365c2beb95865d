// The values of shape records, as a chart letters them.
#pragma once

#include <k7/geometry/shape_table.h>

#include <optional>
#include <string>

/// UTF-8, the members of a list with ", " between them; numbers with at most three decimals. Empty where the
/// table has no such attribute and for values that say "unknown" or "absent".
std::string ShapeText(const K7ShapeTable& table, const K7ShapeRec& record, const char* name);
/// Nothing where `ShapeText` is empty or no number.
std::optional<double> ShapeNumber(const K7ShapeTable& table, const K7ShapeRec& record, const char* name);
/// What no aircraft may use: its STATUS says so.
bool IsClosedShape(const K7ShapeTable& table, const K7ShapeRec& record);
