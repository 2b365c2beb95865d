#include "web/tile_cache.h"

// Two nodes, and the key and the file's text on the heap.
size_t TileCache::Cost(const Tile& tile) {
  constexpr size_t NODES = 256;
  return NODES + tile.key.size() + tile.file->capacity();
}

void TileCache::Drop(std::list<Tile>::iterator tile) {
  m_bytes -= Cost(*tile);
  m_places.erase(tile->key);
  m_tiles.erase(tile);
}

std::shared_ptr<const std::string> TileCache::Find(const std::string& key) {
  const std::lock_guard lock(m_mutex);
  const auto place = m_places.find(key);
  if (place == m_places.end()) return nullptr;
  m_tiles.splice(m_tiles.begin(), m_tiles, place->second);
  return place->second->file;
}

void TileCache::Add(const std::string& key, std::shared_ptr<const std::string> tile) {
  const std::lock_guard lock(m_mutex);
  if (const auto old = m_places.find(key); old != m_places.end()) Drop(old->second);
  m_tiles.push_front({key, std::move(tile)});
  m_places.emplace(m_tiles.front().key, m_tiles.begin());
  m_bytes += Cost(m_tiles.front());
  while (m_bytes > m_budget) Drop(std::prev(m_tiles.end()));
}

size_t TileCache::Bytes() const {
  const std::lock_guard lock(m_mutex);
  return m_bytes;
}
