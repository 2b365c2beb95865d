// All airways of a type in one piece, beside their records: whoever looks for a way over them needs a little
// of each, and reading seventy thousand wide rows takes far longer than the search.
#pragma once

#include <k7/navdata/airway.h>

#include <string>
#include <string_view>

/// Adds what a network needs of a segment to the piece that the database keeps.
void AppendToNetwork(const K7AirwaySeg& segment, std::string& network);

/// Takes the next segment of a piece, which may come from a damaged file. False at its end.
bool TakeFromNetwork(std::string_view& network, K7AirwaySeg& segment);
