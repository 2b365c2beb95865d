// Records as names and values, for formats other than the library's XML.
#pragma once

#include "layers/picked.h"

#include <string>
#include <utility>
#include <vector>

/// UTF-8, in the order of the record; of an element within another, the names of both with '/' between.
using RecordRows = std::vector<std::pair<std::string, std::string>>;

/// Of each record that the thing stands for, as a person reads it.
std::vector<RecordRows> RowsOf(const Picked& thing);

/// A record alone, what it is and the rows of its own.
struct RecordCard {
  std::string type;
  RecordRows rows;
};
/// Those of a thing; what a record has within it, as an airport its runways, are cards behind its own.
std::vector<RecordCard> CardsOf(const Picked& thing);

/// The name of the chart's layer that a thing is of, whatever scale its data have.
std::string ChartLayerOf(const Picked& thing);
