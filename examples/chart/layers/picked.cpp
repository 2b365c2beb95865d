#include "layers/picked.h"

#include <k7/geometry/shape.h>
#include <k7/navdata/nav_data.h>

Picked PickedRecords(std::string text, K7NavData& data, std::vector<K7NavKey> keys) {
  const auto records = [&data, keys = std::move(keys)](K7XmlOutputType_t type) {
    std::vector<std::string> documents;
    for (const K7NavKey& key : keys) {
      // A store owns its records; rendering leaves them as they are.
      auto* const record = const_cast<K7NavRec*>(data.GetRec(key));
      K7String document;
      if (record && data.ToXML(record, type, document) == 0) documents.emplace_back(document);
    }
    return documents;
  };
  return {std::move(text), records};
}

Picked PickedShape(std::string text, K7Shape& shape, K7ShapeRec& record) {
  const auto records = [&shape, &record](K7XmlOutputType_t type) {
    K7String document;
    std::vector<std::string> documents;
    if (shape.ToXML(&record, type, document) == 0) documents.emplace_back(document);
    return documents;
  };
  return {std::move(text), records};
}
