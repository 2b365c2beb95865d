// The floating-point conversions of the formatter.
#pragma once

#include "foundation/format_spec.h"

void WriteFloat(FormatOutput& out, const FormatSpec& spec, double value);
void WriteFloat(FormatOutput& out, const FormatSpec& spec, long double value);
