// k7terrain: region files of terrain from the elevation grids that are published, one process a region where
// there are many.

#include "app/verbs.h"

int main(int argc, char** argv) {
  const Program program = {"k7terrain",
                           K7TERRAIN_VERSION,
                           "Makes, describes and verifies region files of terrain with k7core.",
                           "k7terrain build --output terrain N48W122.hgt N48W123.hgt",
                           "help",
                           Verbs()};
  return RunProgram(program, argc, argv);
}
