// What a client sends: the target of a request line, its headers, the path of a tile.

#include "input.h"
#include "web/http_request.h"
#include "web/limits.h"
#include "web/query_value.h"
#include "web/tile_path.h"

#include <string>

namespace {

bool IsClean(const std::string& text) {
  for (const char c : text)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) return false;
  return true;
}

// The address of a tile, from what was read of it.
std::string Written(const TilePath& tile) {
  return tile.theme + "/" + std::to_string(tile.id.z) + "/" + std::to_string(tile.id.x) + "/" +
         std::to_string(tile.id.y) + (tile.ratio == 2 ? "@2x.png" : ".png");
}

void LookAtTile(const std::string& path) {
  const std::optional<TilePath> tile = ReadTilePath(path);
  if (!tile) return;
  Require(path == Written(*tile) && IsTile(tile->id));
}

// Lists and numbers, as boxes of WMS and GeoJSON have them.
void LookAtValue(const std::string& value) {
  std::string joined;
  for (const std::string& part : SplitList(value)) {
    Require(part.find(',') == std::string::npos);
    joined += "," + part;
    double number = 0;
    int whole = 0;
    if (ReadValue(part, whole)) Require(ReadValue(part, number) && number == whole);
  }
  Require(joined == "," + value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static const std::string HOSTS[] = {"localhost", "127.0.0.1", "[::1]"};
  if (IsHost(text, HOSTS)) Require(IsLoopbackOrigin("http://" + std::string(text)) && text.size() <= 15);
  HoldsTag(text, "\"k7-1\"");
  Require(Escaped(text).find_first_of("\n\r\" ") == std::string::npos);
  LookAtTile(std::string(text));

  HttpRequest request;
  if (ReadTarget(text, request) != 200) return 0;
  Require(request.path.starts_with('/') && IsClean(request.path) && request.query.size() <= MAX_PARAMETERS);
  Require(("/" + request.path + "/").find("/../") == std::string::npos);
  for (const auto& [name, value] : request.query) {
    Require(!name.empty() && IsClean(name) && IsClean(value));
    LookAtValue(value);
    Require(request.Find(name.c_str()) != nullptr);
  }
  LookAtTile(request.path.substr(1));
  return 0;
}
