#include "grid/text.h"

#include "app_common/option_table.h"
#include "grid/elev_grid.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <limits>
#include <system_error>

bool ReadText(const std::string& path, std::string& text, uintmax_t most) {
  std::error_code failed;
  const uintmax_t size = std::min(std::filesystem::file_size(path, failed), most);
  if (failed || size > text.max_size()) return false;
  text.resize(static_cast<size_t>(size));
  std::ifstream file(path, std::ios::binary);
  return static_cast<bool>(file.read(text.data(), static_cast<std::streamsize>(size)));
}

std::string_view Words::Next() {
  constexpr std::string_view SPACE = " \t\r\n";
  m_rest.remove_prefix(std::min(m_rest.find_first_not_of(SPACE), m_rest.size()));
  const std::string_view word = m_rest.substr(0, m_rest.find_first_of(SPACE));
  m_rest.remove_prefix(word.size());
  return word;
}

bool ReadMetres(std::string_view word, double& metres, std::string& problem) {
  if (!ReadNumber(word, metres))
    problem = "has an elevation that is no number";
  else if (!IsPost(metres))
    problem = "has an elevation that is none";
  if (metres == VOID_POST) metres = std::numeric_limits<double>::quiet_NaN();
  return problem.empty();
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}
