#include "web/tile_path.h"

#include "web/query_value.h"

namespace {

bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

// The step in front of the next slash.
std::string_view TakeStep(std::string_view& path) {
  const std::string_view step = path.substr(0, path.find('/'));
  path.remove_prefix(step.size() < path.size() ? step.size() + 1 : path.size());
  return step;
}

// Digits alone, without zeros in front.
bool ReadIndex(std::string_view text, int& value) {
  const bool isOne =
      !text.empty() && text[0] >= '0' && text[0] <= '9' && (text[0] != '0' || text.size() == 1);
  return isOne && ReadValue(text, value);
}

}  // namespace

std::optional<TilePath> ReadTilePath(std::string_view path) {
  TilePath tile;
  if (!TakeSuffix(path, ".png")) return std::nullopt;
  if (TakeSuffix(path, "@2x")) tile.ratio = 2;
  tile.theme = TakeStep(path);
  const std::string_view z = TakeStep(path), x = TakeStep(path);
  const bool isRead = ReadIndex(z, tile.id.z) && ReadIndex(x, tile.id.x) && ReadIndex(path, tile.id.y);
  return isRead && !tile.theme.empty() && IsTile(tile.id) ? std::optional(std::move(tile)) : std::nullopt;
}
