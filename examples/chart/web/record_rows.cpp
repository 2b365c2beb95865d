#include "web/record_rows.h"

#include "layers/layer_table.h"
#include "store/text_1252.h"

#include <k7/io/xml_elem.h>

namespace {

std::string NameOf(const K7XmlElem& element) {
  const char* const spelled = element.AttribValue("Name");
  return Utf8Of1252(spelled ? spelled : static_cast<const char*>(element.Name()));
}

std::string TextOf(const K7XmlElem& element) { return Utf8Of1252(static_cast<const char*>(element.Text())); }

// Elements with children of their own are left to `waiting`.
RecordCard CardOf(const K7XmlElem& element, std::vector<const K7XmlElem*>& waiting) {
  const K7XmlElem* const type = element.Child("Type");
  RecordCard card = {type ? TextOf(*type) : NameOf(element), {}};
  for (const K7XmlElem* child = element.FirstChild(); child; child = child->NextSibling()) {
    if (child->FirstChild())
      waiting.push_back(child);
    else if (child != type && !child->Text().IsEmpty())
      card.rows.emplace_back(NameOf(*child), TextOf(*child));
  }
  return card;
}

std::vector<std::string> DocumentsOf(const Picked& thing) {
  return thing.records ? thing.records(K7XML_DISPLAY) : std::vector<std::string>();
}

// What a document of the library says; empty for one that cannot be read.
RecordRows RowsOf(const std::string& document) {
  RecordRows rows;
  K7XmlElem root;
  if (!root.Parse(document.c_str())) return rows;
  std::string above;
  const K7XmlElem* element = root.FirstChild();
  while (element) {
    if (!element->Text().IsEmpty()) rows.emplace_back(above + NameOf(*element), TextOf(*element));
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

}  // namespace

std::vector<RecordRows> RowsOf(const Picked& thing) {
  std::vector<RecordRows> records;
  for (const std::string& document : DocumentsOf(thing)) records.push_back(RowsOf(document));
  return records;
}

std::vector<RecordCard> CardsOf(const Picked& thing) {
  std::vector<RecordCard> cards;
  for (const std::string& document : DocumentsOf(thing)) {
    K7XmlElem root;
    if (!root.Parse(document.c_str())) continue;
    std::vector<const K7XmlElem*> waiting = {&root};
    for (size_t i = 0; i < waiting.size(); ++i) cards.push_back(CardOf(*waiting[i], waiting));
  }
  return cards;
}

std::string ChartLayerOf(const Picked& thing) {
  const LayerRow* const row = LayerOfFile(thing.layer);
  return row ? row->name : thing.layer;
}
