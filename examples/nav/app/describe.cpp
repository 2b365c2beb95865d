// k7nav describe: records as XML.

#include "app/ident_verb.h"

#include <cstdio>

namespace {

struct OutputType {
  const char* name;
  K7XmlOutputType_t type;
};
constexpr OutputType OUTPUT_TYPES[] = {
    {"plain", K7XML_PLAIN}, {"full", K7XML_FULL}, {"display", K7XML_DISPLAY}, {"document", K7XML_DOCUMENT}};

struct DescribeOptions {
  K7XmlOutputType_t as = K7XML_DISPLAY;
};

constexpr OptionRow<DescribeOptions> OPTIONS[] = {
    {"--as", "NAME", "plain, full (with keys), display (for reading; default) or document.",
     [](const char* text, DescribeOptions& o) -> std::string {
       for (const OutputType& row : OUTPUT_TYPES) {
         if (std::string(text) != row.name) continue;
         o.as = row.type;
         return {};
       }
       return Quoted(text) + " is none of plain, full, display and document";
     }},
};

class DescribeVerb : public IdentVerb {
 public:
  DescribeVerb() : IdentVerb("describe needs an identifier, as KSEA") {}
  void AddOptions(OptionTable& table) override {
    table.Add(OPTIONS, m_options);
    IdentVerb::AddOptions(table);
  }

 private:
  std::string Tell(NavStore& store, const std::vector<const K7NavRec*>& found) override {
    for (const K7NavRec* rec : found) {
      K7String xml;
      // A rendering changes nothing of its record.
      if (store.ToXML(const_cast<K7NavRec*>(rec), m_options.as, xml) != 0)
        return "the record of " + Quoted(Ident()) + " cannot be written";
      std::printf("%s\n", static_cast<const char*>(xml));
    }
    return {};
  }

  DescribeOptions m_options;
};

}  // namespace

std::unique_ptr<Verb> MakeDescribe() { return std::make_unique<DescribeVerb>(); }
