// Records by how they are called.
#include <algorithm>
#include <cstring>

#include "store/nav_store.h"
#include "store/spelling.h"
#include "store/store_file.h"
#include "store/text_1252.h"

namespace {

constexpr char END_OF_ALPHABET[] = "\xF4\x8F\xBF\xBF";

bool HasColumn(K7NavType type, const char* column) { return TableOf(type).Find(column); }

}  // namespace

K7NavQueryResult* NavStore::IdentQuery(K7NavType type, const char* ident) {
  if (!m_file || !ident) return nullptr;
  if (!HasColumn(type, "ident")) return ResultOf(*m_file, Keys(std::in_place));
  return ResultOf(
      *m_file, m_file->Select(type, "WHERE t.ident=? ORDER BY t.idx", std::string_view(Utf8Of1252(ident))));
}

K7NavQueryResult* NavStore::IdentPrefixQuery(K7NavType type, const char* prefix) {
  if (!m_file || !prefix) return nullptr;
  if (!HasColumn(type, "ident")) return ResultOf(*m_file, Keys(std::in_place));
  const std::string first = Utf8Of1252(prefix);
  return ResultOf(*m_file,
                  m_file->Select(type, "WHERE t.ident BETWEEN ? AND ? ORDER BY t.ident,t.idx",
                                 std::string_view(first), std::string_view(first + END_OF_ALPHABET)));
}

// All identifiers are looked at, out of their index alone: a wrong first letter is a slip like any other.
K7NavQueryResult* NavStore::SimilarIdentQuery(K7NavType type, const char* ident, int maxCount) {
  if (!m_file || !ident) return nullptr;
  struct Candidate {
    int distance;
    std::string ident;
    K7NavKey key;
    bool operator<(const Candidate& other) const {
      if (distance != other.distance) return distance < other.distance;
      return ident != other.ident ? ident < other.ident : key < other.key;
    }
  };
  std::vector<Candidate> best;  // a heap, the worst on top
  const auto room = static_cast<size_t>(std::max(maxCount, 0));
  const std::string wanted = Folded1252(ident);
  int limit = std::max(1, static_cast<int>(wanted.size()) / 2);
  const auto consider = [&](const Query& row) {
    const std::string folded = Folded1252(Text1252(row.Text(0)));
    const int distance = folded.empty() ? limit + 1 : SpellingDistance(wanted, folded, limit);
    if (distance > limit || room == 0) return;
    Candidate candidate{distance, folded, K7NavKey(static_cast<uint32_t>(row.Integer(1)), type)};
    if (best.size() == room && !(candidate < best.front())) return;
    if (best.size() == room) {
      std::pop_heap(best.begin(), best.end());
      best.pop_back();
    }
    best.push_back(std::move(candidate));
    std::push_heap(best.begin(), best.end());
    if (best.size() == room) limit = best.front().distance;
  };
  if (HasColumn(type, "ident") && !m_file->Scan(type, "ident,idx", consider)) return nullptr;
  std::sort_heap(best.begin(), best.end());
  std::vector<K7NavKey> keys;
  keys.reserve(best.size());
  for (const Candidate& candidate : best) keys.push_back(candidate.key);
  return ResultOf(*m_file, std::move(keys));
}

K7NavQueryResult* NavStore::NameQuery(K7NavType type, const char* name) {
  if (!m_file || !name) return nullptr;
  std::vector<K7NavKey> keys;
  const std::string wanted = Folded1252(name);
  const auto consider = [&](const Query& row) {
    if (Folded1252(Text1252(row.Text(1))).find(wanted) != std::string::npos)
      keys.emplace_back(static_cast<uint32_t>(row.Integer(0)), type);
  };
  if (HasColumn(type, "name") && !m_file->Scan(type, "idx,name", consider)) return nullptr;
  return ResultOf(*m_file, std::move(keys));
}

K7NavQueryResult* NavStore::RegionQuery(K7NavType type, const char* icao) {
  if (!m_file || !icao) return nullptr;
  if (!HasColumn(type, "icao_region")) return ResultOf(*m_file, Keys(std::in_place));
  return ResultOf(*m_file, m_file->Select(type, "WHERE t.icao_region=? COLLATE NOCASE ORDER BY t.idx",
                                          std::string_view(Utf8Of1252(icao))));
}

K7NavQueryResult* NavStore::AirwayQuery(const char* ident) { return IdentQuery(K7NAV_AIRWAY_HEADER, ident); }
