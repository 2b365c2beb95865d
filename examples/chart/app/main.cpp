// k7chart: draws charts of the real world with k7core. The page to read when writing a host: app/ reads what
// is wanted, layers/ sets a projection up on the graphics context of ink/ and turns positions into paths,
// sheet/ puts chart and page together.

#include "app/verbs.h"

int main(int argc, char** argv) {
  const Program program = {"k7chart",
                           K7CHART_VERSION,
                           "Charts of the real world, drawn with k7core. Without a verb it draws.",
                           "k7chart draw --center \"N48 30.0 W123 30.0\" --range 300 --output chart.png",
                           "draw",
                           Verbs()};
  return RunProgram(program, argc, argv);
}
