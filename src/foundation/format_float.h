// The floating-point conversions of the formatter.
#pragma once

#include "foundation/format_field.h"

void WriteFloat(FormatOutput& out, const FormatField& field, double value);
void WriteFloat(FormatOutput& out, const FormatField& field, long double value);
