#include "ink/symbol_images.h"

#include "ink/readable.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr int LARGEST = 256;

constexpr const char* NAMES[] = {
    "ToweredAirport", "Airport", "Heliport", "SeaplaneBase", "PrivateAirport", "VOR", "VORDME",
    "VORTAC",         "TACAN",   "DME",      "NDB",          "AirwayFix",      "Fix"};
static_assert(std::size(NAMES) == SYMBOL_KINDS);

// Around the pixels of a mask that are 1, about the picture's middle; a picture without any counts whole.
PixelBox SeenBox(const K7Bitmap& mask) {
  int left = mask.Width(), top = mask.Height(), right = 0, bottom = 0;
  for (int y = 0; y < mask.Height(); ++y)
    for (int x = 0; x < mask.Width(); ++x) {
      if (mask.GetValue(x, y) == 0) continue;
      left = std::min(left, x);
      top = std::min(top, y);
      right = std::max(right, x + 1);
      bottom = std::max(bottom, y + 1);
    }
  if (right == 0) left = top = 0, right = mask.Width(), bottom = mask.Height();
  const double x = mask.Width() / 2.0, y = mask.Height() / 2.0;
  return {left - x, top - y, right - x, bottom - y};
}

}  // namespace

const char* SymbolKindName(SymbolKind kind) { return NAMES[static_cast<size_t>(kind)]; }

std::string SymbolImages::Read(SymbolKind kind, const std::string& path, K7RasterCache& cache) {
  const auto cannot = [&path](const std::string& why) {
    return "cannot read the image '" + path + "': " + why;
  };
  const auto cannotFor = [&](int code) {
    const char* const why = K7ErrorString::ErrorString(code);
    return cannot(why ? why : "unknown error");
  };
  if (const std::string why = WhyUnreadable(path); !why.empty()) return cannot(why);
  int code = 0;
  const K7Bitmap* const read = cache.Get(path.c_str(), &code);
  if (!read) return cannotFor(code);
  if (read->Width() > LARGEST || read->Height() > LARGEST) return cannot("it is larger than 256 pixels");
  auto image = std::make_shared<SymbolImage>();
  K7Bitmap mask;
  code = read->GenMask(mask);
  if (code == 0) code = read->GenTransparent(image->bitmap);
  if (code != 0) return cannotFor(code);
  image->seen = SeenBox(mask);
  m_paths[static_cast<size_t>(kind)] = path;
  m_images[static_cast<size_t>(kind)] = std::move(image);
  return {};
}
