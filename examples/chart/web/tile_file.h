// A file of tiles that tablets and geographic programs read: MBTiles 1.3, a database of SQLite in which rows
// of tiles count from the south and tiles that look the same are stored once.
#pragma once

#include "store/database.h"
#include "web/tile_grid.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Names and values of the table "metadata".
using TileFacts = std::vector<std::pair<std::string, std::string>>;
/// The first that only one has or that has two values, in words; empty for none.
std::string FactsDiffer(const TileFacts& these, const TileFacts& those);

/// One that is being written: beside its place, as "FILE.part", until it is whole. Used by one thread.
class TileWriter {
 public:
  /// Begins the file, or goes on with one that a run before has left, which then must have the same facts.
  /// Empty, or why that cannot be.
  std::string Open(const std::string& path, const TileFacts& facts);
  bool Has(const TileId& tile);
  /// A tile that is there must look the same. Empty, or what went wrong.
  std::string Add(const TileId& tile, std::string_view png);
  /// What was added is kept from now on, whatever becomes of the process. To be called between blocks: their
  /// first tile answers for the others. Seldom does anything.
  std::string Keep();
  /// Puts the file into its place. Empty, or what went wrong.
  std::string Finish();

  int64_t Tiles() { return Count("map"); }
  /// That look different.
  int64_t Images() { return Count("images"); }

 private:
  using Clock = std::chrono::steady_clock;

  std::string Begin();
  std::string Make(const TileFacts& facts);
  std::string Compare(const TileFacts& facts);
  std::string Failed();
  int64_t Count(const char* table);
  std::optional<int64_t> ImageOf(const TileId& tile);
  std::string Store(std::string_view png, int64_t& image);

  std::string m_path, m_part;
  Database m_database;
  Clock::time_point m_next{};
};

/// One that is there. Another program's serves as well, as far as it keeps to the format.
class TileReader {
 public:
  /// Empty, or why it cannot be read.
  std::string Open(const std::string& path);
  const TileFacts& Facts() const { return m_facts; }
  /// Empty for none of that name.
  std::string Fact(const std::string& name) const;
  /// Calls `visit` with every tile until it answers with a problem. Empty, or that.
  std::string Visit(const std::function<std::string(const TileId& tile, std::string_view png)>& visit);

 private:
  std::string m_path;
  Database m_database;
  TileFacts m_facts;
};
