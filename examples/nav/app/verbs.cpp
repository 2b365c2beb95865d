#include "app/verbs.h"

// One file each; a new verb adds its line here and its row below.
std::unique_ptr<Verb> MakeImport();
std::unique_ptr<Verb> MakeFind();
std::unique_ptr<Verb> MakeDescribe();
std::unique_ptr<Verb> MakeNear();
std::unique_ptr<Verb> MakeField();
std::unique_ptr<Verb> MakeFields();
std::unique_ptr<Verb> MakeMorse();

namespace {

constexpr VerbRow VERBS[] = {
    {"import", "[OPTION]... OUT.db", "Reads published text files into a database.", MakeImport},
    {"find", "IDENT [OPTION]...", "Lists the records of an identifier.", MakeFind},
    {"describe", "IDENT [OPTION]...", "Prints the records of an identifier as XML.", MakeDescribe},
    {"near", "POSITION [OPTION]...", "Lists what is about a position, with distance and bearing.", MakeNear},
    {"field", "IDENT FIELD [OPTION]...", "Prints a field of the records of an identifier.", MakeField},
    {"fields", "[TYPE]...", "Lists the types of records, or all of them, with their fields.", MakeFields},
    {"morse", "TEXT", "Prints a text in Morse code.", MakeMorse},
    HELP_VERB,
};

}  // namespace

std::span<const VerbRow> Verbs() { return VERBS; }
