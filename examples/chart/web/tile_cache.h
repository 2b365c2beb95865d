// Tiles that have been drawn, as many as a budget of bytes holds; those that were asked for longest ago go
// first.
#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

/// Any thread may call any operation.
class TileCache {
 public:
  explicit TileCache(size_t bytes) : m_budget(bytes) {}

  /// Null for none. A tile that is in use outlives its place here.
  std::shared_ptr<const std::string> Find(const std::string& key);
  void Add(const std::string& key, std::shared_ptr<const std::string> tile);
  size_t Bytes() const;

 private:
  struct Tile {
    std::string key;
    std::shared_ptr<const std::string> file;
  };
  static size_t Cost(const Tile& tile);
  void Drop(std::list<Tile>::iterator tile);

  const size_t m_budget;
  mutable std::mutex m_mutex;
  std::list<Tile> m_tiles;  // the one that was asked for last in front
  std::unordered_map<std::string_view, std::list<Tile>::iterator> m_places;  // keys are those of the tiles
  size_t m_bytes = 0;
};
