// Parts of a file of tiles into the whole.
#pragma once

#include <string>
#include <vector>

/// Joins what `--shard` has drawn, each part a file. Empty, or what went wrong: parts that are missing or do
/// not belong together.
std::string MergeTiles(const std::string& output, const std::vector<std::string>& parts);
