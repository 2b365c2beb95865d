#include "app/verb.h"

// One file each; a new verb adds its line here and its row below.
std::unique_ptr<Verb> MakeDraw();
std::unique_ptr<Verb> MakeGallery();
std::unique_ptr<Verb> MakePick();
std::unique_ptr<Verb> MakeLayers();
std::unique_ptr<Verb> MakeProjections();
std::unique_ptr<Verb> MakeHelp();

namespace {

constexpr VerbRow VERBS[] = {
    {"draw", "[OPTION]...", "Draws a chart of the world's coasts, rivers and borders.", MakeDraw},
    {"gallery", "[OPTION]...", "Draws all nine projections on one sheet.", MakeGallery},
    {"pick", "X,Y [OPTION]...", "Says what lies under pixels of a chart drawn with the same options.",
     MakePick},
    {"layers", "[OPTION]...", "Lists the layers and which of them the data folder has.", MakeLayers},
    {"projections", "", "Lists the projections with their parameters.", MakeProjections},
    {"help", "[VERB]", "Shows what a verb does and takes.", MakeHelp},
};

}  // namespace

std::span<const VerbRow> Verbs() { return VERBS; }

const VerbRow* FindVerb(const std::string& name) {
  for (const VerbRow& row : VERBS)
    if (name == row.name) return &row;
  return nullptr;
}

std::string Verb::TakeArgument(const std::string& argument) {
  return "unexpected argument " + Quoted(argument);
}

std::string GeneralHelp() {
  std::vector<std::pair<std::string, std::string>> rows;
  for (const VerbRow& row : VERBS) rows.emplace_back(row.name, row.summary);
  return "Usage: k7chart VERB [OPTION]...\n"
         "Charts of the real world, drawn with k7core. Without a verb it draws.\n\n" +
         TwoColumns(rows) +
         "\n'k7chart help VERB' lists the options of a verb, 'k7chart --version' says which\n"
         "k7chart this is.\n\n"
         "Example:\n"
         "  k7chart draw --center \"N48 30.0 W123 30.0\" --range 300 --output chart.png\n";
}

std::string VerbHelp(const VerbRow& row) {
  OptionTable options;
  const std::unique_ptr<Verb> verb = row.make();
  verb->AddOptions(options);
  std::string text = std::string("Usage: k7chart ") + row.name + " " + row.arguments;
  while (text.back() == ' ') text.pop_back();
  text += "\n" + std::string(row.summary) + "\n";
  const std::string help = options.Help();
  return help.empty() ? text : text + "\n" + help;
}
