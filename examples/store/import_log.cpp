#include "store/import_log.h"

#include "store/text_1252.h"

void ImportLog::Begin(const std::string& file) { m_files.push_back({file, {}, 0}); }

void ImportLog::Problem(int line, const std::string& what) {
  if (m_files.empty()) Begin("input");
  File& file = m_files.back();
  ++m_count;
  if (++file.count <= SHOWN)
    file.shown.push_back(file.name + ":" + std::to_string(line) + ": " + Printable1252(what));
}

std::vector<std::string> ImportLog::Lines() const {
  std::vector<std::string> lines;
  for (const File& file : m_files) {
    lines.insert(lines.end(), file.shown.begin(), file.shown.end());
    if (file.count > SHOWN)
      lines.push_back(file.name + ": " + std::to_string(file.count - SHOWN) + " more of this kind");
  }
  return lines;
}
