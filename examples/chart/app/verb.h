// What k7chart can do: one class a verb, one row each in the table of verbs.
#pragma once

#include "app/option_table.h"

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
  std::unique_ptr<Verb> (*make)();
};

std::span<const VerbRow> Verbs();
/// Null when there is none of that name.
const VerbRow* FindVerb(const std::string& name);

/// What `k7chart --help` and `k7chart VERB --help` print.
std::string GeneralHelp();
std::string VerbHelp(const VerbRow& row);
