#include "app/verbs.h"

// One file each; a new verb adds its line here and its row below.
std::unique_ptr<Verb> MakeDraw();
std::unique_ptr<Verb> MakeGallery();
std::unique_ptr<Verb> MakePick();
std::unique_ptr<Verb> MakeRoute();
std::unique_ptr<Verb> MakeProfile();
std::unique_ptr<Verb> MakeAirport();
std::unique_ptr<Verb> MakeElev();
std::unique_ptr<Verb> MakeServe();
std::unique_ptr<Verb> MakeTiles();
std::unique_ptr<Verb> MakeLayers();
std::unique_ptr<Verb> MakeProjections();

namespace {

constexpr VerbRow VERBS[] = {
    {"draw", "[OPTION]...", "Draws a chart of the world's coasts, rivers and borders.", MakeDraw},
    {"gallery", "[OPTION]...", "Draws all nine projections on one sheet.", MakeGallery},
    {"pick", "X,Y [OPTION]...", "Says what lies under pixels of a chart drawn with the same options.",
     MakePick},
    {"route", "FROM TO [OPTION]...", "Finds a route over the airways, draws it and prints it as a table.",
     MakeRoute},
    {"profile", "FROM [VIA]... TO [OPTION]...",
     "Draws the ground under the great circles between identifiers or positions.", MakeProfile},
    {"airport", "IDENT [OPTION]...", "Draws an airport's diagram.", MakeAirport},
    {"elev", "POSITION... [OPTION]...", "Says how high the ground is at positions.", MakeElev},
    {"serve", "[OPTION]...", "Shows charts to browsers, map programs and tablets, over HTTP.", MakeServe},
    {"tiles", "[OPTION]... | merge OUTPUT PART...",
     "Draws a file of map tiles (MBTiles) for tablets and geographic programs.", MakeTiles},
    {"layers", "[OPTION]...", "Lists the layers and which of them the data folder has.", MakeLayers},
    {"projections", "", "Lists the projections with their parameters.", MakeProjections},
    HELP_VERB,
};

}  // namespace

std::span<const VerbRow> Verbs() { return VERBS; }
