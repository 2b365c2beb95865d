#include "app_common/verb.h"

#include "app_common/part_file.h"

#include <k7/io/io.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

// The program of the process, as its messages and helps name it.
const Program* g_program = nullptr;

std::string Name() { return g_program->name; }

const VerbRow* FindVerb(const std::string& name) {
  for (const VerbRow& row : g_program->verbs)
    if (name == row.name) return &row;
  return nullptr;
}

std::unique_ptr<Verb> MakeVerb(const VerbRow& row);

std::string GeneralHelp() {
  std::vector<std::pair<std::string, std::string>> rows;
  for (const VerbRow& row : g_program->verbs) rows.emplace_back(row.name, row.summary);
  return "Usage: " + Name() + " VERB [OPTION]...\n" + g_program->about + "\n\n" + TwoColumns(rows) + "\n'" +
         Name() + " help VERB' lists the options of a verb, '" + Name() + " --version' says which\n" +
         Name() + " this is.\n\nExample:\n  " + g_program->example + "\n";
}

std::string VerbHelp(const VerbRow& row) {
  OptionTable options;
  const std::unique_ptr<Verb> verb = MakeVerb(row);
  verb->AddOptions(options);
  std::string text = "Usage: " + Name() + " " + row.name + " " + row.arguments;
  while (text.back() == ' ') text.pop_back();
  text += "\n" + std::string(row.summary) + "\n";
  const std::string help = options.Help();
  return help.empty() ? text : text + "\n" + help;
}

class Help : public Verb {
 public:
  std::string TakeArgument(const std::string& argument) override {
    if (m_verb) return Verb::TakeArgument(argument);
    m_verb = FindVerb(argument);
    return m_verb ? std::string() : "there is no verb " + Quoted(argument) + " (see " + Name() + " help)";
  }
  std::string Run() override {
    std::fputs((m_verb ? VerbHelp(*m_verb) : GeneralHelp()).c_str(), stdout);
    return {};
  }

 private:
  const VerbRow* m_verb = nullptr;
};

std::unique_ptr<Verb> MakeVerb(const VerbRow& row) {
  return row.make ? row.make() : std::make_unique<Help>();
}

// An option that another verb has would be ignored by this one; one that is called like a verb is meant as
// that.
std::string UnknownOption(const VerbRow& row, const std::string& argument) {
  const std::string name = argument.substr(0, argument.find('='));
  const std::string see = " (see " + Name() + " " + row.name + " --help)";
  if (name.compare(0, 2, "--") == 0 && FindVerb(name.substr(2)))
    return "unknown option " + Quoted(name) + ": say '" + Name() + " " + name.substr(2) + "'";
  for (const VerbRow& other : g_program->verbs) {
    OptionTable options;
    const std::unique_ptr<Verb> verb = MakeVerb(other);
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
  const std::unique_ptr<Verb> verb = MakeVerb(row);
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
    std::printf("%s %s\n", g_program->name, g_program->version);
    return {};
  }
  const VerbRow* row = FindVerb(g_program->plainVerb);
  if (!arguments.empty() && (first.empty() || first[0] != '-')) {
    row = FindVerb(first);
    if (!row) return "there is no verb " + Quoted(first) + " (see " + Name() + " --help)";
    arguments.erase(arguments.begin());
  }
  return RunVerb(*row, arguments);
}

void EndBySignal(int signal) {
  PartFile::RemoveAll();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void LeaveNoHalfFiles() {
  for (const int signal : {SIGINT, SIGTERM})
    // Who starts a program may want a signal to be ignored.
    if (std::signal(signal, EndBySignal) == SIG_IGN) std::signal(signal, SIG_IGN);
#if defined(SIGXFSZ)
  // A file that may not grow further is a reason like a full disk, not the end.
  std::signal(SIGXFSZ, SIG_IGN);
#endif
}

}  // namespace

std::string Verb::TakeArgument(const std::string& argument) {
  return "unexpected argument " + Quoted(argument);
}

int RunProgram(const Program& program, int argc, char** argv) {
  g_program = &program;
  LeaveNoHalfFiles();
  std::string problem;
  try {
    problem = RunCommand({argv + std::min(argc, 1), argv + argc});
  } catch (const std::bad_alloc&) {
    problem = "out of memory";
  }
  if (problem.empty() && std::fflush(stdout) != 0)
    problem = std::string("cannot write to the standard output: ") + std::strerror(errno);
  K7IO::Destroy();
  if (problem.empty()) return 0;
  std::fprintf(stderr, "%s: %s\n", program.name, problem.c_str());
  return 1;
}
