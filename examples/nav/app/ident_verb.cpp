#include "app/ident_verb.h"

#include "store/spelling.h"
#include "store/text_1252.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <tuple>

namespace {

constexpr OptionRow<std::optional<K7LatLon>> OPTIONS[] = {
    {"--near", "POSITION", "Where it is meant: the nearest comes first.",
     [](const char* text, std::optional<K7LatLon>& near) { return ReadPosition(text, near.emplace()); }},
};

std::vector<const K7NavRec*> FindAll(NavStore& store, const std::string& ident, const K7LatLon* near) {
  std::vector<const K7NavRec*> found;
  for (const K7NavType type : ListedTypes()) {
    const std::unique_ptr<K7NavQueryResult> result(store.IdentQuery(type, Text1252(ident).c_str()));
    while (const K7NavRec* rec = result ? result->Next() : nullptr)
      if (const K7NavRec* kept = store.GetRec(rec->key)) found.push_back(kept);
  }
  if (!near) return found;
  const auto distance = [near](const K7NavRec* rec) {
    K7LatLon at;
    return PlaceOf(*rec, at) ? near->Distance(at) : 1e9;
  };
  std::stable_sort(found.begin(), found.end(),
                   [&](const K7NavRec* a, const K7NavRec* b) { return distance(a) < distance(b); });
  return found;
}

// "there is no 'KSAE'; spelled like it are KSEA, ...".
std::string NotThere(NavStore& store, const std::string& ident) {
  static constexpr int SHOWN = 8, ASKED = 100, MOST_DIFFERENT = 3;
  // The nearest spelling first; of equally near ones those of the same letters, as exchanged ones are.
  std::set<std::tuple<int, bool, std::string>> similar;
  std::string wanted = ident;
  for (char& c : wanted) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  for (const K7NavType type : ListedTypes()) {
    const std::unique_ptr<K7NavQueryResult> result(
        store.SimilarIdentQuery(type, Text1252(ident).c_str(), ASKED));
    while (const K7NavRec* rec = result ? result->Next() : nullptr) {
      const std::string name = IdentOf(*rec);
      if (name.empty()) continue;
      const bool sameLetters = std::is_permutation(name.begin(), name.end(), wanted.begin(), wanted.end());
      similar.emplace(SpellingDistance(wanted, name, MOST_DIFFERENT), !sameLetters, name);
    }
  }
  std::string text = "there is no " + Quoted(ident);
  int shown = 0;
  for (const auto& [difference, otherLetters, name] : similar)
    if (shown < SHOWN) text += (shown++ == 0 ? "; spelled like it are " : ", ") + name;
  return text;
}

}  // namespace

void IdentVerb::AddOptions(OptionTable& table) {
  table.Add(OPTIONS, m_near);
  AddDatabaseOptions(table, m_database);
}

std::string IdentVerb::TakeArgument(const std::string& argument) {
  if (!m_ident.empty()) return Verb::TakeArgument(argument);
  m_ident = argument;
  return argument.empty() ? "an identifier has letters" : "";
}

std::string IdentVerb::Run() {
  if (m_ident.empty()) return m_needs;
  NavStore store;
  if (std::string problem = OpenDatabase(m_database, store); !problem.empty()) return problem;
  const std::vector<const K7NavRec*> found = FindAll(store, m_ident, Near());
  return found.empty() ? NotThere(store, m_ident) : Tell(store, found);
}
