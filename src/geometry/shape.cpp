// The defaults of the shape interfaces: what a kind of layer does not have.

#include <k7/geometry/shape.h>

#include <k7/geometry/shape_rec.h>
#include <k7/geometry/shape_table.h>

K7ShapeRec::~K7ShapeRec() = default;
int K7ShapeRec::GetTriVertCount() { return 0; }
const K7ShpXY* K7ShapeRec::GetTriVerts() { return nullptr; }
const uint16_t* K7ShapeRec::GetTriVertIndices() { return nullptr; }
int K7ShapeRec::GetTessGroupCount() { return 0; }
int K7ShapeRec::GetTessGroups(const K7STessGroup*& groups) {
  groups = nullptr;
  return 0;
}
int K7ShapeRec::GetAdjacentFaceKey(int) const { return 0; }
void* K7ShapeRec::GetCache() const { return nullptr; }
void K7ShapeRec::SetCache(void*) {}
int K7ShapeRec::FreeCache() { return 0; }

K7ShapeQuery::~K7ShapeQuery() = default;

K7ShapeTable::~K7ShapeTable() = default;
K7ShapeQuery* K7ShapeTable::InclusionQuery(K7ShapeInclusionTest, void*) { return nullptr; }
int K7ShapeTable::FreeMemCache() { return 0; }

K7Shape::~K7Shape() = default;
int K7Shape::FreeMemCache() { return 0; }
