// The records of K7ShpLayer.
#pragma once

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shp_obj.h>

#include <atomic>

class K7ShpFile;
class K7ShpRecord;
struct K7ShpLayerStore;
struct ShpRows;
struct TessBlock;

class ShpLayerRec final : public K7ShapeRec {
 public:
  ShpLayerRec() = default;
  ShpLayerRec(const ShpLayerRec&) = delete;
  ShpLayerRec& operator=(const ShpLayerRec&) = delete;
  ~ShpLayerRec() override { FreeCache(); }
  /// Takes the number, from 0, of a record of the store's file, and bounds its points: boxes that files hold
  /// may be those of other points. 0 or K7_ERR_MEMORY.
  int Init(K7ShpLayerStore* store, int number, ShpRows& scratch);

  int Number() const { return m_number; }
  const K7ShpLayerStore* Store() const { return m_store; }
  const K7ShpObj* Obj() const;
  bool IsArea() const;
  /// Where line or ring `poly` begins among the points.
  int PolyStart(int poly) const;

  int GetKey() const override { return m_number + 1; }
  int GetBounds(K7ChartRect& bounds) const override;
  int GetPos(double& lat, double& lon) const override;
  int GetPolyCount() const override;
  int GetPolySize(int i) const override;
  int GetPolyPoint(int poly, int i, double& lat, double& lon) const override;
  int GetTriVertCount() override;
  const K7ShpXY* GetTriVerts() override;
  const uint16_t* GetTriVertIndices() override;
  int GetTessGroupCount() override;
  int GetTessGroups(const K7STessGroup*& groups) override;
  void* GetCache() const override { return m_cache; }
  void SetCache(void* cache) override { m_cache = cache; }
  int FreeCache() override;

 private:
  const TessBlock* Tess();

  K7ShpLayerStore* m_store = nullptr;
  int m_number = 0;
  K7ChartRect m_bounds;
  void* m_cache = nullptr;  // the host's own
  std::atomic<TessBlock*> m_tess{nullptr};
};
