// Shape layers: records of a shapefile set, found by area, asked for attributes, drawn the host's own way.
#include <k7/core.h>

#include <cstdio>
#include <memory>

namespace {

/// Rivers, the great ones drawn wider: a layer that the library reads and the host draws.
class Rivers : public K7ShpLayer {
 public:
  int Render(K7Grfx* g, K7MapPath& path, K7ShapeRec* record) override {
    K7ShapeTable* const table = GetTable(record);
    if (!g || !table) return K7_ERR_NOT_FOUND;
    const int attrib = table->FindAttrib("scalerank");
    K7ShapeAttrib rank(9);
    if (attrib >= 0 && table->AttribType(attrib) == K7_ATTRIB_INT) table->GetAttrib(*record, attrib, rank);
    g->LineStyle(static_cast<int>(rank) < 3 ? 2 : 1, nullptr, 0);
    return K7ShpLayer::Render(g, path, record);
  }
};

void PrintRecords(K7Shape& layer, K7ShapeTable& table, const K7ChartRect& area) {
  const int name = table.FindAttrib("name");
  const std::unique_ptr<K7ShapeQuery> query(table.AreaQuery(area));
  while (K7ShapeRec* const record = query ? query->Next() : nullptr) {
    K7ShapeAttrib value;
    const bool named = name >= 0 && table.GetAttrib(*record, name, value) == 0;
    int points = 0;
    for (int i = 0; i < record->GetPolyCount(); ++i) points += record->GetPolySize(i);
    K7String line;
    if (layer.GetDescription(record, line) != 0) continue;
    std::printf("%d: %s, %d points; \"%s\"\n", record->GetKey(),
                named ? static_cast<const char*>(value) : "-", points, static_cast<const char*>(line));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 1;
  Rivers rivers;
  if (int code = rivers.Read(argv[1], K7IO::Inst())) {
    std::puts(K7ErrorString::ErrorString(code));
    return 1;
  }
  K7ShapeTable* const table = rivers.Table();
  if (!table) return 1;
  std::printf("%s: %d records of %d attributes\n", rivers.Name(), table->RecordCount(), table->AttribCount());
  PrintRecords(rivers, *table, K7ChartRect(52, 46, 20, 12));  // north, south, east, west
}
