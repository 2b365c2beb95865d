// k7nav find: the records of an identifier.

#include "app/ident_verb.h"

#include <cstdio>

namespace {

class Find : public IdentVerb {
 public:
  Find() : IdentVerb("find needs an identifier, as KSEA") {}

 private:
  std::string Tell(NavStore& store, const std::vector<const K7NavRec*>& found) override {
    for (const K7NavRec* rec : found) {
      K7LatLon at;
      const bool placed = PlaceOf(*rec, at);
      std::printf("%-20s  %-18s  %s", K7NavData::TypeName(rec->Type()),
                  placed ? PositionText(at).c_str() : "", Describe(store, *rec).c_str());
      if (placed && Near()) std::printf(", %.1f NM", Near()->Distance(at));
      std::putchar('\n');
    }
    return {};
  }
};

}  // namespace

std::unique_ptr<Verb> MakeFind() { return std::make_unique<Find>(); }
