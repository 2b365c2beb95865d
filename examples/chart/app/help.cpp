// k7chart help: what there is, or what one verb does and takes.

#include "app/verb.h"

#include <cstdio>

namespace {

class Help : public Verb {
 public:
  std::string TakeArgument(const std::string& argument) override {
    if (m_verb) return Verb::TakeArgument(argument);
    m_verb = FindVerb(argument);
    return m_verb ? std::string() : "there is no verb " + Quoted(argument) + " (see k7chart help)";
  }
  std::string Run() override {
    std::fputs((m_verb ? VerbHelp(*m_verb) : GeneralHelp()).c_str(), stdout);
    return {};
  }

 private:
  const VerbRow* m_verb = nullptr;
};

}  // namespace

std::unique_ptr<Verb> MakeHelp() { return std::make_unique<Help>(); }
