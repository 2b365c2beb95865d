// k7nav find: the records of an identifier.

#include "app/database.h"
#include "app_common/verb.h"

#include <cstdio>

namespace {

class Find : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    AddIdentOptions(table, m_ident);
    AddDatabaseOptions(table, m_database);
  }

  std::string TakeArgument(const std::string& argument) override {
    if (!m_ident.ident.empty()) return Verb::TakeArgument(argument);
    m_ident.ident = argument;
    return argument.empty() ? "an identifier has letters" : "";
  }

  std::string Run() override {
    if (m_ident.ident.empty()) return "find needs an identifier, as KSEA";
    NavStore store;
    std::vector<const K7NavRec*> found;
    if (std::string problem = FindIdent(m_ident, m_database, store, found); !problem.empty()) return problem;
    for (const K7NavRec* rec : found) Print(store, *rec);
    return {};
  }

 private:
  void Print(NavStore& store, const K7NavRec& rec) const {
    K7LatLon at;
    const bool placed = PlaceOf(rec, at);
    std::printf("%-20s  %-18s  %s", K7NavData::TypeName(rec.Type()), placed ? PositionText(at).c_str() : "",
                Describe(store, rec).c_str());
    K7LatLon near;
    if (placed && !m_ident.near.empty() && ReadPosition(m_ident.near, near).empty())
      std::printf(", %.1f NM", near.Distance(at));
    std::putchar('\n');
  }

  IdentOptions m_ident;
  DatabaseOptions m_database;
};

}  // namespace

std::unique_ptr<Verb> MakeFind() { return std::make_unique<Find>(); }
