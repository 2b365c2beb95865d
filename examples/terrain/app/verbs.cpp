#include "app/verbs.h"

// One file each; a new verb adds its line here and its row below.
std::unique_ptr<Verb> MakeBuild();
std::unique_ptr<Verb> MakeInfo();
std::unique_ptr<Verb> MakeCheck();

namespace {

constexpr VerbRow VERBS[] = {
    {"build", "[OPTION]... GRID...",
     "Makes region files from elevation grids: .hgt, .asc, .csv and .tif files, or folders of them.",
     MakeBuild},
    {"info", "FILE.ter", "Prints what a region file holds.", MakeInfo},
    {"check", "FOLDER", "Verifies region files against their checksums and inflates every tile.", MakeCheck},
    HELP_VERB,
};

}  // namespace

std::span<const VerbRow> Verbs() { return VERBS; }
