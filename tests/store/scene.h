// Databases that tests fill record by record.
#pragma once

#include <k7/navdata.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "store/nav_store.h"
#include "store/nav_writer.h"
#include "support/temp_dir.h"

template <class Record>
std::unique_ptr<Record> Make(K7NavType type) {
  std::unique_ptr<Record> rec(static_cast<Record*>(K7NavData::CreateRecord(type)));
  rec->key = K7NavKey(0, type);
  return rec;
}

template <class Record>
std::unique_ptr<Record> MakeFix(K7NavType type, const std::string& ident, double lat, double lon) {
  auto rec = Make<Record>(type);
  ident.copy(rec->ident, 8);
  rec->lat = K7NavData::DecDeg2FixPt(lat);
  rec->lon = K7NavData::DecDeg2FixPt(lon);
  return rec;
}

/// The indexes of a result's records, in their order; {-1} for a failed query.
inline std::vector<int> Indexes(K7NavQueryResult* result) {
  const std::unique_ptr<K7NavQueryResult> owned(result);
  if (!result) return {-1};
  std::vector<int> indexes;
  while (const K7NavRec* rec = result->Next()) indexes.push_back(static_cast<int>(rec->key.Idx()));
  return indexes;
}

class Scene {
 public:
  Scene() { EXPECT_TRUE(writer.Open(path, problem)) << problem; }
  void Open() {
    ASSERT_TRUE(writer.Finish(problem)) << problem;
    ASSERT_EQ(store.Open(path.c_str()), 0);
  }

  TempDir dir;
  std::string path = dir / "nav.db";
  std::string problem;
  NavWriter writer;
  NavStore store;
};
