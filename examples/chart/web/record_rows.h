// Records as names and values, for formats other than the library's XML.
#pragma once

#include "layers/picked.h"

#include <string>
#include <utility>
#include <vector>

/// UTF-8, in the order of the record; of an element within another, the names of both with '/' between.
using RecordRows = std::vector<std::pair<std::string, std::string>>;

/// What a document of the library says; empty for one that cannot be read.
RecordRows RowsOf(const std::string& document);
/// Of each record that the thing stands for, as a person reads it.
std::vector<RecordRows> RowsOf(const Picked& thing);
/// The name of the chart's layer that a thing is of, whatever scale its data have.
std::string ChartLayerOf(const Picked& thing);
