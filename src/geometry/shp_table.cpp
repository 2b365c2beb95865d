// The table of K7ShpLayer, and its queries.

#include "geometry/shp_layer_store.h"

#include <k7/foundation/error_string.h>

#include <algorithm>
#include <new>

namespace {

class ShpQuery final : public K7ShapeQuery {
 public:
  explicit ShpQuery(const ShpTable& table) : m_table(table) {}
  int Count() const override { return numbers.Count(); }
  K7ShapeRec* GetRecord(int i) const override {
    return i >= 0 && i < numbers.Count() ? m_table.GetRecord(numbers[i]) : nullptr;
  }
  K7ShapeRec* Next() override { return m_next < numbers.Count() ? GetRecord(m_next++) : nullptr; }
  void Rewind() override { m_next = 0; }

  Buffer<int32_t> numbers;

 private:
  const ShpTable& m_table;
  int m_next = 0;
};

// A query with what `fill` finds.
template <class Fill>
K7ShapeQuery* MakeQuery(const ShpTable& table, Fill fill) {
  std::unique_ptr<ShpQuery> query(new (std::nothrow) ShpQuery(table));
  if (!query) return nullptr;
  fill(query->numbers);
  return query->numbers.Failed() ? nullptr : query.release();
}

}  // namespace

const char* ShpTable::DbName() const { return m_store.name; }
int ShpTable::RecordCount() const { return m_store.count; }

K7ShapeRec* ShpTable::GetRecord(int i) const {
  return i >= 0 && i < m_store.count ? &m_store.records[static_cast<size_t>(i)] : nullptr;
}

K7ChartRect ShpTable::GetBounds() const { return m_store.bounds; }

K7ShapeQuery* ShpTable::AreaQuery(const K7ChartRect& area) const {
  return MakeQuery(*this, [&](Buffer<int32_t>& found) { m_store.tree.Find(area, found); });
}

K7ShapeQuery* ShpTable::InclusionQuery(K7ShapeInclusionTest test, void* context) {
  if (!test) return nullptr;
  return MakeQuery(*this, [&](Buffer<int32_t>& found) {
    for (int32_t i = 0; i < m_store.count; ++i) {
      K7ChartRect box;
      if (GetRecord(i)->GetBounds(box) == 0 &&
          test(context, box.North(), box.South(), box.East(), box.West()))
        found.Add(i);
    }
  });
}

int ShpTable::AttribCount() const { return m_store.file ? m_store.file->FieldCount() : 0; }

const char* ShpTable::AttribName(int i) const {
  return i >= 0 && i < AttribCount() ? static_cast<const char*>(m_store.fields[static_cast<size_t>(i)])
                                     : nullptr;
}

K7ShapeAttribType ShpTable::AttribType(int i) const {
  const K7DbfFieldDesc* const field = m_store.file ? m_store.file->Field(i) : nullptr;
  if (!field || field->type == 'C') return K7_ATTRIB_TEXT;
  return field->decimals > 0 ? K7_ATTRIB_DOUBLE : K7_ATTRIB_INT;
}

int ShpTable::FindAttrib(const char* name) const {
  for (int i = 0; name && i < AttribCount(); ++i)
    if (m_store.fields[static_cast<size_t>(i)].IComp(name) == 0) return i;
  return -1;
}

int ShpTable::GetAttrib(const K7ShapeRec& record, int i, K7ShapeAttrib& value) const {
  if (i < 0 || i >= AttribCount()) return K7_ERR_OUT_OF_RANGE;
  // Records of another table may be of another class: their key alone is not looked at.
  const K7ShapeRec* const own = FindRecord(record.GetKey());
  const K7DbfField* const fields =
      own == &record ? m_store.file->GetRecord(record.GetKey() - 1)->Attrs() : nullptr;
  if (!fields) return K7_ERR_NOT_FOUND;
  switch (AttribType(i)) {
    case K7_ATTRIB_TEXT:
      value = K7ShapeAttrib(static_cast<const char*>(fields[i].text));
      break;
    case K7_ATTRIB_DOUBLE:
      value = K7ShapeAttrib(fields[i].number);
      break;
    default:
      value = K7ShapeAttrib(static_cast<int>(fields[i].integer));
  }
  return 0;
}

int ShpTable::FreeMemCache() {
  int64_t freed = 0;
  for (int i = 0; i < m_store.count; ++i) freed += GetRecord(i)->FreeCache();
  return static_cast<int>(std::min<int64_t>(freed, INT32_MAX));
}
