// k7nav describe: records as XML.

#include "app/database.h"
#include "app_common/verb.h"

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

class DescribeVerb : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(OPTIONS, m_options);
    AddIdentOptions(table, m_ident);
    AddDatabaseOptions(table, m_database);
  }

  std::string TakeArgument(const std::string& argument) override {
    if (!m_ident.ident.empty()) return Verb::TakeArgument(argument);
    m_ident.ident = argument;
    return argument.empty() ? "an identifier has letters" : "";
  }

  std::string Run() override {
    if (m_ident.ident.empty()) return "describe needs an identifier, as KSEA";
    NavStore store;
    std::vector<const K7NavRec*> found;
    if (std::string problem = FindIdent(m_ident, m_database, store, found); !problem.empty()) return problem;
    for (const K7NavRec* rec : found) {
      K7String xml;
      // A rendering changes nothing of its record.
      if (store.ToXML(const_cast<K7NavRec*>(rec), m_options.as, xml) != 0)
        return "the record of " + Quoted(m_ident.ident) + " cannot be written";
      std::printf("%s\n", static_cast<const char*>(xml));
    }
    return {};
  }

 private:
  DescribeOptions m_options;
  IdentOptions m_ident;
  DatabaseOptions m_database;
};

}  // namespace

std::unique_ptr<Verb> MakeDescribe() { return std::make_unique<DescribeVerb>(); }
