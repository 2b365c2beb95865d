// Meridians and parallels, and their labels at the frame.
#pragma once

#include "layers/geo_path.h"

#include <string>

class Graticule {
 public:
  /// Spacing by what the view shows.
  explicit Graticule(const View& view);

  void DrawLines(double scale) const;
  /// Labels stand outside the window where a line meets its frame. Parallels or meridians that have none
  /// there, as on a globe that does not reach the frame, are labelled on the map, along the centre's meridian
  /// and parallel.
  void DrawLabels(double size) const;

 private:
  enum class Kind { Parallel, Meridian };
  struct Crossing {
    double along;  // pixels from the side's start
    double value;  // degrees
  };
  struct Side;

  std::vector<Crossing> Crossings(const Side& side, Kind kind) const;
  int LabelSide(const Side& side, Kind kind, double size) const;
  void LabelMap(bool parallels, bool meridians, double size) const;
  std::string Label(Kind kind, double value) const;
  void DrawMeridian(double lon) const;

  const View& m_view;
  FlatWindow m_extent;
  double m_latStep;
  double m_lonStep;
};

/// Text of the library, in which the degree sign is one byte, as UTF-8.
std::string Utf8(const char* latin1);
