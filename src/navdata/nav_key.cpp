#include "navdata/nav_xml_forms.h"

#include <k7/foundation/error_string.h>
#include <k7/navdata/nav_data.h>
#include <k7/navdata/nav_key.h>

#include <algorithm>

int K7NavKey::Comp(const void* a, const void* b) {
  const K7NavKey& x = *static_cast<const K7NavKey*>(a);
  const K7NavKey& y = *static_cast<const K7NavKey*>(b);
  if (x == y) return 0;
  const uint32_t difference = x.m_navType != y.m_navType ? x.m_navType - y.m_navType : x.m_idx - y.m_idx;
  return static_cast<int32_t>(difference) > 0 ? 1 : -1;
}

int K7NavKey::typeString(K7String& out) const {
  return std::min(out.Create(K7NavData::TypeName(NavType())), 0);
}

int K7NavKey::ToXML(K7NavData*, K7XmlOutputType_t, K7XmlElem& elem) const {
  k7xml::XmlTree tree(elem);
  K7XmlText text;
  k7nav::WriteWords(tree, text, *this);
  return text.Failed() ? int{K7_ERR_MEMORY} : tree.Result();
}

int K7NavKey::ToXML(K7NavData* data, K7XmlOutputType_t type, K7String& out, const char* name) const {
  K7XmlElem elem(name ? name : "NavKey");
  out.Clear();
  const int err = ToXML(data, type, elem);
  return err ? err : elem.Write(out);
}

K7NavKeyArray::K7NavKeyArray(int growBy) : K7Array(sizeof(K7NavKey), growBy, K7NavKey::Comp) {}
