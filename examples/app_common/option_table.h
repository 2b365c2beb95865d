// Options of the command line as tables: what each is called, takes, says in the help and sets.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// One option of something that is to be filled in. What more there is to say depends on what that holds at
/// first.
template <class Target>
struct OptionRow {
  const char* name;   ///< "--range"
  const char* value;  ///< what the help calls its value; null for an option without one
  const char* help;
  std::string (*set)(const char* text, Target& target);  ///< empty, or what is wrong, in one line
  bool repeats = false;
  std::string (*more)(const Target& target) = nullptr;
};

/// The options of one verb.
class OptionTable {
 public:
  /// `target` must outlive the table.
  template <class Target, size_t N>
  void Add(const OptionRow<Target> (&rows)[N], Target& target) {
    for (const OptionRow<Target>& row : rows) {
      const std::string more = row.more ? row.more(target) : std::string();
      m_options.push_back({row.name, row.value, row.help + more, row.repeats, false,
                           [set = row.set, &target](const char* text) { return set(text, target); }});
    }
  }

  bool Has(const std::string& name) const;
  /// The first of them that was set; empty for none.
  std::string FirstGiven() const;
  /// Sets the option at `arguments[i]`, its value behind "=" or in the next argument, to which `i` moves
  /// then. Empty, or what is wrong.
  std::string Take(const std::vector<std::string>& arguments, size_t& i);
  /// Two columns, 80 characters wide.
  std::string Help() const;

 private:
  struct Option {
    std::string name;
    const char* value;
    std::string help;
    bool repeats;
    bool given;
    std::function<std::string(const char* text)> set;
  };
  std::vector<Option> m_options;
};

/// A table of two columns: what stands left, and text beside it that is broken between words.
std::string TwoColumns(const std::vector<std::pair<std::string, std::string>>& rows);

std::string Quoted(const std::string& text);
/// A finite number, with a decimal point in every locale, and nothing behind it.
bool ReadNumber(std::string_view text, double& value);
