// How high the ground is: the terrain of a folder.
#pragma once

#include <k7/terrain/terrain.h>

#include <string>

/// The terrain of the process, in which what lies outside the bounds of a region file has no elevation:
/// whoever asks how high the ground is must not be told 0 ft where there are no data.
class Elevations : public K7Terrain {
 public:
  Elevations() = default;

  /// Empty, or why the folder cannot serve.
  std::string Open(const std::string& folder);
  int Read(const char* folder) override;
  void Clear() override;
  int GetElev(double lat, double lon, double resolution) override;

  struct Answer {
    int feet = 0;            // K7_NO_ELEV: none
    int postsPerDegree = 0;  // of the data that answered
  };
  Answer Find(double lat, double lon, double resolution);
  /// Arc-seconds between the posts of the finest data that a resolution asks for; 0 without any.
  double PostSpacing(double resolution) const;

 private:
  K7TerLevel* m_levels[K7TerrainK7::LEVELS] = {};
};
