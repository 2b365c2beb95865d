// k7chart elev: how high the ground is.

#include "app/terrain_options.h"
#include "app_common/position_text.h"
#include "app_common/verb.h"
#include "sheet/elevations.h"
#include "sheet/profile.h"

#include <k7/terrain/ter_tile.h>

#include <cstdio>
#include <vector>

namespace {

class Elev : public Verb {
 public:
  void AddOptions(OptionTable& table) override { AddTerrainOptions(table, m_terrain); }

  std::string TakeArgument(const std::string& argument) override {
    K7LatLon place;
    std::string problem = ReadPosition(argument, place);
    if (problem.empty()) m_places.push_back(place);
    return problem;
  }

  std::string Run() override {
    if (m_places.empty()) return "elev needs at least one position, as \"N48 30.0 W123 30.0\"";
    Elevations terrain;
    if (std::string problem = terrain.Open(m_terrain.folder); !problem.empty()) return problem;
    for (const K7LatLon& place : m_places) {
      const std::string where = PositionText(place);
      const Elevations::Answer answer = terrain.Find(place.Lat(), place.Lon(), m_terrain.resolution);
      if (answer.feet == K7_NO_ELEV)
        std::printf("%s  no elevation\n", where.c_str());
      else
        std::printf("%s  %d ft  %d m  posts %s arc-seconds apart\n", where.c_str(), answer.feet,
                    MetresOfFeet(answer.feet), Seconds(answer.postsPerDegree).c_str());
    }
    return {};
  }

 private:
  static std::string Seconds(int postsPerDegree) {
    return std::string(K7FmtString("%.9g", 3600.0 / postsPerDegree));
  }

  TerrainOptions m_terrain;
  std::vector<K7LatLon> m_places;
};

}  // namespace

std::unique_ptr<Verb> MakeElev() { return std::make_unique<Elev>(); }
