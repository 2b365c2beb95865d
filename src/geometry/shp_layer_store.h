// What K7ShpLayer, its table and its records share.
#pragma once

#include "geometry/bounds_tree.h"
#include "geometry/shp_layer_rec.h"

#include <k7/foundation/mutex.h>
#include <k7/foundation/string.h>
#include <k7/geometry/poly_bifurcator.h>
#include <k7/geometry/shape_table.h>
#include <k7/geometry/shp_file.h>
#include <k7/projection/map_features.h>

#include <atomic>
#include <memory>

class ShpTable final : public K7ShapeTable {
 public:
  explicit ShpTable(const K7ShpLayerStore& store) : m_store(store) {}
  const char* DbName() const override;
  int TableIndex() const override { return 0; }
  int RecordCount() const override;
  K7ShapeRec* GetRecord(int i) const override;
  K7ShapeRec* FindRecord(int key) const override { return key > 0 ? GetRecord(key - 1) : nullptr; }
  K7ChartRect GetBounds() const override;
  K7ShapeQuery* AreaQuery(const K7ChartRect& area) const override;
  int AttribCount() const override;
  const char* AttribName(int i) const override;
  K7ShapeAttribType AttribType(int i) const override;
  int FindAttrib(const char* name) const override;
  int GetAttrib(const K7ShapeRec& record, int i, K7ShapeAttrib& value) const override;
  K7ShapeQuery* InclusionQuery(K7ShapeInclusionTest test, void* context) override;
  int FreeMemCache() override;

 private:
  const K7ShpLayerStore& m_store;
};

struct K7ShpLayerStore {
  K7String name;
  std::unique_ptr<K7ShpFile> file;
  K7ShpPart badFile = K7_SHP_NO_FILE;
  std::unique_ptr<ShpLayerRec[]> records;
  std::unique_ptr<K7String[]> fields;  // their names: those of the file may lack a terminator
  int count = 0;
  BoundsTree tree;
  K7ChartRect bounds;
  ShpTable table{*this};
  K7Mutex mutex;  // of what is made on first use
  K7PolyBifurcator cut;
  std::unique_ptr<K7MapFeatures> features;
  std::atomic<const K7MapFeatures*> ready{nullptr};
};
