// Altitudes as people type them.
#pragma once

#include <string>

/// Reads "FL350" or "35000", up to FL1000. Empty, or what is wrong with the text, with `feet` as it was.
std::string ReadLevel(const char* text, int& feet);
