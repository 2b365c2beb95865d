#include "web/record_rows.h"

#include "layers/layer_table.h"
#include "store/text_1252.h"

#include <k7/io/xml_elem.h>

namespace {

std::string NameOf(const K7XmlElem& element) {
  const char* const spelled = element.AttribValue("Name");
  return Utf8Of1252(spelled ? spelled : static_cast<const char*>(element.Name()));
}

}  // namespace

RecordRows RowsOf(const std::string& document) {
  RecordRows rows;
  K7XmlElem root;
  if (!root.Parse(document.c_str())) return rows;
  std::string above;
  const K7XmlElem* element = root.FirstChild();
  while (element) {
    if (!element->Text().IsEmpty())
      rows.emplace_back(above + NameOf(*element), Utf8Of1252(static_cast<const char*>(element->Text())));
    if (element->FirstChild()) {
      above += NameOf(*element) + "/";
      element = element->FirstChild();
      continue;
    }
    while (element != &root && !element->NextSibling()) {
      element = element->Parent();
      if (element != &root) above.erase(above.size() - NameOf(*element).size() - 1);
    }
    if (element == &root) break;
    element = element->NextSibling();
  }
  return rows;
}

std::vector<RecordRows> RowsOf(const Picked& thing) {
  std::vector<RecordRows> records;
  if (!thing.records) return records;
  for (const std::string& document : thing.records(K7XML_DISPLAY)) records.push_back(RowsOf(document));
  return records;
}

std::string ChartLayerOf(const Picked& thing) {
  const LayerRow* const row = LayerOfFile(thing.layer);
  return row ? row->name : thing.layer;
}
