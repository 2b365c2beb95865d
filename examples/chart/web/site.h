// What all threads of the server answer from.
#pragma once

#include "web/http.h"
#include "web/map_data.h"
#include "web/page_files.h"
#include "web/tile_cache.h"

#include <optional>

/// Any thread may call any operation but the first.
class Site {
 public:
  /// The data stay the caller's and must outlive the site.
  Site(const MapData& data, size_t cacheBytes) : m_data(data), m_tiles(cacheBytes) {}
  /// Empty, or why the page in that folder cannot be shown.
  std::string Open(const std::string& pageFolder) { return m_page.Read(pageFolder); }

  const MapData& Data() const { return m_data; }
  TileCache& Tiles() { return m_tiles; }

  /// What needs no drawing: files, kept tiles, and that there is nothing of that path.
  std::optional<HttpAnswer> AnswerAtOnce(const HttpRequest& request);
  /// All else, at a desk of the site's data and tiles. Never throws.
  static HttpAnswer Answer(const HttpRequest& request, Desk& desk);
  /// Requests of one key are answered one after the other, since the first makes what the others want; an
  /// empty key is nobody else's.
  static std::string WorkKey(const HttpRequest& request);
  /// Whether pages of other ports of this machine may read what it answers.
  static bool IsOpen(const HttpRequest& request);

 private:
  const MapData& m_data;
  TileCache m_tiles;
  PageFiles m_page;
};
