// k7chart: draws charts of the real world with k7core. The page to read when writing a host: app/ reads what
// is wanted, layers/ sets a projection up on the graphics context of ink/ and turns positions into paths,
// sheet/ puts chart and page together.

#include "app/verb.h"

#include <k7/io/io.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace {

// An option that another verb has would be ignored by this one; one that is called like a verb is meant as
// that.
std::string UnknownOption(const VerbRow& row, const std::string& argument) {
  const std::string name = argument.substr(0, argument.find('='));
  const std::string see = std::string(" (see k7chart ") + row.name + " --help)";
  if (name.compare(0, 2, "--") == 0 && FindVerb(name.substr(2)))
    return "unknown option " + Quoted(name) + ": say 'k7chart " + name.substr(2) + "'";
  for (const VerbRow& other : Verbs()) {
    OptionTable options;
    const std::unique_ptr<Verb> verb = other.make();
    verb->AddOptions(options);
    if (options.Has(name)) return std::string(row.name) + " takes no " + name + see;
  }
  return "unknown option " + Quoted(name) + see;
}

// "-5,3" is a value: no option begins with a digit.
bool IsOption(const std::string& argument) {
  return argument.size() > 1 && argument[0] == '-' && !std::strchr("0123456789.", argument[1]);
}

std::string RunVerb(const VerbRow& row, const std::vector<std::string>& arguments) {
  const std::unique_ptr<Verb> verb = row.make();
  OptionTable options;
  verb->AddOptions(options);
  std::string problem;
  for (size_t i = 0; i < arguments.size() && problem.empty(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--help" || argument == "-h") {
      std::fputs(VerbHelp(row).c_str(), stdout);
      return {};
    }
    if (!IsOption(argument))
      problem = verb->TakeArgument(argument);
    else
      problem = options.Has(argument) ? options.Take(arguments, i) : UnknownOption(row, argument);
  }
  return problem.empty() ? verb->Run() : problem;
}

std::string RunCommand(std::vector<std::string> arguments) {
  const std::string first = arguments.empty() ? std::string() : arguments[0];
  if (first == "--help" || first == "-h") return RunVerb(*FindVerb("help"), {});
  if (first == "--version") {
    std::puts("k7chart " K7CHART_VERSION);
    return {};
  }
  const VerbRow* row = FindVerb("draw");
  if (!arguments.empty() && (first.empty() || first[0] != '-')) {
    row = FindVerb(first);
    if (!row) return "there is no verb " + Quoted(first) + " (see k7chart --help)";
    arguments.erase(arguments.begin());
  }
  return RunVerb(*row, arguments);
}

}  // namespace

int main(int argc, char** argv) {
#if defined(SIGXFSZ)
  // A file that may not grow further is a reason like a full disk, not the end.
  std::signal(SIGXFSZ, SIG_IGN);
#endif
  std::string problem = RunCommand({argv + std::min(argc, 1), argv + argc});
  if (problem.empty() && std::fflush(stdout) != 0)
    problem = std::string("cannot write to the standard output: ") + std::strerror(errno);
  K7IO::Destroy();
  if (problem.empty()) return 0;
  std::fprintf(stderr, "k7chart: %s\n", problem.c_str());
  return 1;
}
