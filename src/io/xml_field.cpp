#include "io/xml_field.h"

#include <k7/foundation/error_string.h>
#include <k7/io/xml_elem.h>

#include <new>

int k7xml::AddElement(K7XmlElem& parent, const char* name, const char* label, const char* text) {
  K7XmlElem* child = new (std::nothrow) K7XmlElem;
  if (!child) return K7_ERR_MEMORY;
  int err = child->SetName(name);
  if (!err) err = child->SetText(text);
  if (!err && label) err = child->AddAttrib("Name", label);
  if (!err) err = parent.AddChild(child);
  if (err) delete child;
  return err;
}
