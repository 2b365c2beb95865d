// k7nav: navigation data from the text formats in which it is published into a database, and out of it what a
// person asks. examples/store is the store that it uses; a host's own would do as well.

#include "app/verbs.h"

int main(int argc, char** argv) {
  const Program program = {"k7nav",
                           K7NAV_VERSION,
                           "Imports, finds and describes navigation data with k7core.",
                           "k7nav near \"N48 30.0 W123 30.0\" --range 20",
                           "help",
                           Verbs()};
  return RunProgram(program, argc, argv);
}
