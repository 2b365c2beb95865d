// What a program can do: one class a verb, one row each in its table of verbs.
#pragma once

#include "app_common/option_table.h"

#include <memory>
#include <span>

class Verb {
 public:
  virtual ~Verb() = default;
  virtual void AddOptions(OptionTable&) {}
  /// Takes an argument that is no option. Empty, or what is wrong.
  virtual std::string TakeArgument(const std::string& argument);
  /// Empty, or what went wrong, in one line.
  virtual std::string Run() = 0;

 protected:
  Verb() = default;
  Verb(const Verb&) = default;
  Verb& operator=(const Verb&) = default;
};

struct VerbRow {
  const char* name;
  const char* arguments;  ///< as the usage line shows them
  const char* summary;
  std::unique_ptr<Verb> (*make)();  ///< null for the verb that shows the helps
};

/// Every program has the verb "help".
constexpr VerbRow HELP_VERB = {"help", "[VERB]", "Shows what a verb does and takes.", nullptr};

struct Program {
  const char* name;
  const char* version;
  const char* about;      ///< lines behind that of the usage
  const char* example;    ///< a command line
  const char* plainVerb;  ///< what is done when none is named
  std::span<const VerbRow> verbs;
};

/// Does what the command line says. The exit code: 0, or 1 with what went wrong in one line on the standard
/// error output.
int RunProgram(const Program& program, int argc, char** argv);
