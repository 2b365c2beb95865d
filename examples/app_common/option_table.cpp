#include "app_common/option_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

namespace {

constexpr size_t LINE_LENGTH = 80;

// "--range", of "--range=300" too.
std::string NameOf(const std::string& argument) { return argument.substr(0, argument.find('=')); }

}  // namespace

bool OptionTable::Has(const std::string& name) const {
  return std::any_of(m_options.begin(), m_options.end(),
                     [&](const Option& option) { return option.name == NameOf(name); });
}

std::string OptionTable::FirstGiven() const {
  const auto given =
      std::find_if(m_options.begin(), m_options.end(), [](const Option& option) { return option.given; });
  return given == m_options.end() ? std::string() : given->name;
}

std::string OptionTable::Take(const std::vector<std::string>& arguments, size_t& i) {
  const std::string name = NameOf(arguments[i]);
  const bool valueInside = name != arguments[i];
  for (Option& option : m_options) {
    if (option.name != name) continue;
    if (option.given && !option.repeats) return name + " is given twice";
    option.given = true;
    if (!option.value) return valueInside ? name + " takes no value" : option.set("");
    if (valueInside) return option.set(arguments[i].c_str() + name.size() + 1);
    if (i + 1 == arguments.size()) return name + " needs a value: " + option.value;
    return option.set(arguments[++i].c_str());
  }
  return "unknown option " + Quoted(name);
}

std::string OptionTable::Help() const {
  std::vector<std::pair<std::string, std::string>> rows;
  for (const Option& option : m_options)
    rows.emplace_back(option.value ? option.name + " " + option.value : option.name, option.help);
  return TwoColumns(rows);
}

std::string TwoColumns(const std::vector<std::pair<std::string, std::string>>& rows) {
  size_t left = 0;
  for (const auto& [name, text] : rows) left = std::max(left, name.size());
  const std::string indent(left + 4, ' ');
  std::string out;
  for (const auto& [name, text] : rows) {
    std::string line = "  " + name + std::string(left - name.size(), ' ') + " ";
    std::istringstream words(text);
    for (std::string word; words >> word;) {
      if (line.size() + 1 + word.size() > LINE_LENGTH) {
        out += line + "\n";
        line = indent.substr(1);
      }
      line += " " + word;
    }
    out += line + "\n";
  }
  return out;
}

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

bool ReadNumber(std::string_view text, double& value) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end && std::isfinite(value);
}
