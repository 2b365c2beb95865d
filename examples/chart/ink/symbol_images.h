// Pictures in place of the symbols that k7chart draws itself.
#pragma once

#include "ink/pixel_box.h"

#include <k7/raster/bitmap.h>
#include <k7/raster/raster_cache.h>

#include <array>
#include <memory>
#include <string>

enum class SymbolKind {
  ToweredAirport,
  Airport,
  Heliport,
  SeaplaneBase,
  PrivateAirport,
  VOR,
  VORDME,
  VORTAC,
  TACAN,
  DME,
  NDB,
  AirwayFix,
  Fix,
};
inline constexpr int SYMBOL_KINDS = static_cast<int>(SymbolKind::Fix) + 1;

/// "VOR": the key of a theme file.
const char* SymbolKindName(SymbolKind kind);

/// A picture whose middle stands at the place of what it means; on a sheet of ordinary size its pixels are
/// those of the sheet.
struct SymbolImage {
  K7Bitmap bitmap;  ///< of 32 bits
  PixelBox seen;    ///< around what is not transparent, about the middle

  PixelBox SeenAt(double dx, double dy, double scale) const {
    return {dx + seen.left * scale, dy + seen.top * scale, dx + seen.right * scale, dy + seen.bottom * scale};
  }
};

/// The pictures of a theme. A value; copies share them.
class SymbolImages {
 public:
  /// Null for a kind without one.
  const SymbolImage* Of(SymbolKind kind) const { return m_images[static_cast<size_t>(kind)].get(); }
  const std::string& PathOf(SymbolKind kind) const { return m_paths[static_cast<size_t>(kind)]; }
  /// Takes an image file of a kind that `K7Bitmap` reads, at most 256 pixels wide and high. Empty, or what is
  /// wrong.
  std::string Read(SymbolKind kind, const std::string& path, K7RasterCache& cache);
  /// Whether they are of the same files.
  bool operator==(const SymbolImages& other) const { return m_paths == other.m_paths; }

 private:
  std::array<std::string, SYMBOL_KINDS> m_paths;
  std::array<std::shared_ptr<const SymbolImage>, SYMBOL_KINDS> m_images;
};
