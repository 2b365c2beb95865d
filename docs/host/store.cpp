// Asking a store: by identifier, by area, by field, and as XML.
#include "tiny_store.h"

#include <cstdio>

int main() {
  TinyStore store;
  if (!store.Add("KSEA", "SEATTLE-TACOMA INTL", 47.45, -122.31)) return 1;
  if (!store.Add("NZAA", "AUCKLAND", -37.01, 174.79)) return 1;

  const std::unique_ptr<K7NavQueryResult> south(
      store.AreaQuery(K7NAV_AIRPORT, K7ChartRect(-30, -50, -170, 160)));
  while (const K7NavRec* const rec = south ? south->Next() : nullptr) {
    K7String line;
    if (store.GetDescriptionByKey(rec->key, line) == 0) std::puts(line);
  }

  const std::unique_ptr<K7NavQueryResult> found(store.IdentQuery(K7NAV_AIRPORT, "ksea"));
  const K7NavRec* const rec = found ? found->Next() : nullptr;
  if (!rec) return 1;
  K7NavField lat;
  if (K7NavData::GetField(rec, K7NavData::GetFieldIndex(K7NAV_AIRPORT, "Lat"), &lat))
    std::printf("%.4f\n", lat.d);
  K7String xml;
  if (store.ToXML(const_cast<K7NavRec*>(rec), K7XML_DISPLAY, xml) != 0) return 1;
  std::puts(xml);
}
