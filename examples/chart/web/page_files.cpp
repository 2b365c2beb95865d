#include "web/page_files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

namespace {

// The page and its parts come from here alone; pictures that it makes itself are "blob:" and "data:".
constexpr const char* POLICY =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob: data:; connect-src "
    "'self'; "
    "font-src 'self'; manifest-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

constexpr struct {
  std::string_view suffix;
  const char* type;
} TYPES[] = {
    {".html", "text/html; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".mjs", "text/javascript; charset=utf-8"},
    {".json", "application/json"},
    {".webmanifest", "application/manifest+json"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".ico", "image/vnd.microsoft.icon"},
    {".txt", "text/plain; charset=utf-8"},
    {".md", "text/plain; charset=utf-8"},
};

const char* TypeOf(std::string_view name) {
  for (const auto& [suffix, type] : TYPES)
    if (name.ends_with(suffix)) return type;
  return "application/octet-stream";
}

}  // namespace

std::string PageFiles::Read(const std::string& folder) {
  namespace fs = std::filesystem;
  std::error_code failed;
  for (auto entry = fs::recursive_directory_iterator(folder, failed); entry != fs::end(entry);
       entry.increment(failed)) {
    if (failed) break;
    if (!entry->is_regular_file()) continue;
    std::ifstream file(entry->path(), std::ios::binary);
    HttpAnswer answer;
    answer.body.assign(std::istreambuf_iterator<char>(file), {});
    if (file.bad() || !file.is_open()) return "cannot read " + entry->path().string();
    const std::string name = fs::relative(entry->path(), folder).generic_string();
    answer.type = TypeOf(name);
    answer.headers.emplace_back("Content-Security-Policy", POLICY);
    m_files.emplace(name, std::move(answer));
  }
  return failed ? "cannot read the folder of the page " + folder + ": " + failed.message() : std::string();
}

const HttpAnswer* PageFiles::Find(const std::string& name) const {
  const auto found = m_files.find(name);
  return found == m_files.end() ? nullptr : &found->second;
}
