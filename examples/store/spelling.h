// How different two identifiers are spelled.
#pragma once

#include <string_view>

/// The number of letters to change, add, leave out or exchange with their neighbour to make one of the other;
/// more than `limit` when it is more than that. Letters compare as they are.
int SpellingDistance(std::string_view a, std::string_view b, int limit);
